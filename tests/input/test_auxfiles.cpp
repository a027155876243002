#include "base/options.hpp"
#include "base/stop.hpp"
#include "grid/gengrid.hpp"
#include "input/auxfiles.hpp"
#include "output/fortran_format.hpp"
#include "support/box_grid.hpp"
#include "support/scratch.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

namespace {

// A saturated box of 2 x 1 x 2 bricks (3 x 2 x 3 nodes) with both grid passes done.
struct AuxCase {
    Grid g;
    Options opt;
    Fields f;
    Velocities v;
    ForcingTables t;
    AuxCase()
    {
        g = box_grid(2, 1, 2, 1.0, 1.0, 2.0);
        opt.ksat = 1;
        size_fields(f, g.nn, g.nnt);
        for (auto* a : {&v.vx, &v.vy, &v.vz}) a->assign(g.net + 1, 0.0);
    }
};

struct Outcome {
    bool stopped = false;
    std::string listing;
    bool has_message(const std::string& w) const { return listing.find("\n          " + w) != std::string::npos; }
    bool has(const std::string& w) const { return listing.find(w) != std::string::npos; }
};

// Runs `step` on a file table opened in a scratch directory holding `files`.
Outcome with_files(const std::vector<std::pair<std::string, std::string>>& files,
                   const std::function<void(Files&, const Listing&)>& step)
{
    ScratchDir dir("aux");
    dir.write("gelmor.data", "");
    for (const auto& [name, text] : files) dir.write(name, text);
    Files fs;
    EXPECT_TRUE(open_files(fs, dir.path));
    std::ostringstream out;
    Listing lst{&out};
    Outcome o;
    try {
        step(fs, lst);
    } catch (const RunStopped&) {
        o.stopped = true;
    }
    o.listing = out.str();
    return o;
}

TEST(AuxFiles, Grid3dReadsCoordinatesAndChecksItsHead)
{
    AuxCase s;
    std::string text = "title\ntitle\n" + std::string("zone i=") + fmt_i(3, 8) + ", j=" + fmt_i(2, 8) + ", k=" +
                       fmt_i(3, 8) + "\n";
    for (int n = 1; n <= 18; ++n) text += std::to_string(n) + " 0.5 " + std::to_string(2 * n) + " 99\n";
    Outcome o = with_files({{"grid3d.plt", text}}, [&](Files& f, const Listing& l) { read_grid3d(f, l, s.opt, s.g); });
    ASSERT_FALSE(o.stopped) << o.listing;
    EXPECT_DOUBLE_EQ(s.g.x[18], 18.0);
    EXPECT_DOUBLE_EQ(s.g.z[7], 14.0);
    EXPECT_EQ(s.g.nnt, 18);

}

TEST(AuxFiles, HinputGivesOneSectionUniformInY)
{
    AuxCase s;
    std::string text = "heads\n";
    for (int i = 1; i <= 3; ++i)
        for (int k = 1; k <= 3; ++k) text += fmt_e(i, 15, 6) + fmt_e(k, 15, 6) + fmt_e(10 * i + k, 15, 6) + "\n";
    Outcome o = with_files({{"hinput.data", text}}, [&](Files& f, const Listing& l) { read_hinput(f, l, s.g, s.f); });
    ASSERT_FALSE(o.stopped) << o.listing;
    EXPECT_DOUBLE_EQ(s.f.u[grid_node(2, 1, 3, s.g.ny, s.g.nz)], 23.0);
    EXPECT_DOUBLE_EQ(s.f.u[grid_node(2, 2, 3, s.g.ny, s.g.nz)], 23.0);
    EXPECT_DOUBLE_EQ(s.f.u0[grid_node(3, 2, 1, s.g.ny, s.g.nz)], 31.0);
    EXPECT_TRUE(o.has(" initial condition for flow has been read in"));

}

TEST(AuxFiles, TablesOfTheSurfaceForcing)
{
    AuxCase s;
    Outcome o = with_files({{"tair.data", "air\n3\n0 -5.0  10 2.0\n20 4.5\n"}},
                           [&](Files& f, const Listing& l) { read_tair(f, l, s.t); });
    ASSERT_FALSE(o.stopped) << o.listing;
    EXPECT_EQ(s.t.ntair, 3);
    EXPECT_DOUBLE_EQ(s.t.tair_v[3], 4.5);
    EXPECT_TRUE(o.has(" # data points ...            3\n"));
    o = with_files({{"hbdy.data", "heads\n2\n0 10.0\n5 11.0\n"}}, [&](Files& f, const Listing& l) { read_hbdy(f, l, s.t); });
    EXPECT_TRUE(s.t.lhbdy);
    EXPECT_DOUBLE_EQ(s.t.hbdy_h[2], 11.0);
    // two time points of one and two zones, read as one list across lines
    o = with_files({{"bzin.data", "bz\n2\n0.0 1  1 3 0.5 0.0 0.0  0.0\n10.0 2 1 1 0.4 1.0 2.0\n 2 3 0.6 0 0 1.5\n"}},
                   [&](Files& f, const Listing& l) { read_bzin(f, l, s.t); });
    ASSERT_FALSE(o.stopped) << o.listing;
    ASSERT_EQ(s.t.bz.size(), 3u);
    EXPECT_EQ(s.t.bz[2].nzones, 2);
    EXPECT_DOUBLE_EQ(s.t.bz[2].zone[2].bz, 0.6);
    EXPECT_DOUBLE_EQ(s.t.bz[2].tdiff, 1.5);
    // more than eight zones are taken: storage follows the file
    std::string nine = "bz\n1\n0.0 9";
    for (int z = 1; z <= 9; ++z) nine += " " + std::to_string(z) + " " + std::to_string(z) + " 0.5 0.0 " + std::to_string(z);
    o = with_files({{"bzin.data", nine + " 0.0\n"}}, [&](Files& f, const Listing& l) { read_bzin(f, l, s.t); });
    ASSERT_FALSE(o.stopped) << o.listing;
    EXPECT_EQ(s.t.bz[1].nzones, 9);
    EXPECT_DOUBLE_EQ(s.t.bz[1].zone[9].bzq, 9.0);
    // but not more zones than a grid has columns: the largest integer would ask for 64 GB
    o = with_files({{"bzin.data", "bz\n1\n0.0 2147483647 1 1 0.5 0 0\n"}},
                   [&](Files& f, const Listing& l) { read_bzin(f, l, s.t); });
    ASSERT_TRUE(o.stopped);
    EXPECT_TRUE(o.has("\n          error, bzin.data point 1 has nzones = 2147483647\n"
                      "          more zones than the 251001 columns a grid can have\n")) << o.listing;
}

TEST(AuxFiles, GivenVelocitiesAndSeabedTable)
{
    AuxCase s;
    std::string text = "a\nb\nc\n";
    for (int e = 1; e <= 4; ++e) text += "0 0 " + std::to_string(e) + ".0e-6 -" + std::to_string(e) + ".0e-7\n";
    Outcome o = with_files({{"veloc2d_in.data", text}}, [&](Files& f, const Listing& l) { read_veloc2d(f, l, s.g, s.v); });
    ASSERT_FALSE(o.stopped) << o.listing;
    // k runs innermost in the file: lines 1..4 are elements 1, 3, 2, 4
    EXPECT_DOUBLE_EQ(s.v.vx[3], 2.0e-6);
    EXPECT_DOUBLE_EQ(s.v.vx[2], 3.0e-6);
    EXPECT_DOUBLE_EQ(s.v.vz[1], -1.0e-7);
    EXPECT_DOUBLE_EQ(s.v.vy[4], 0.0);

    std::vector<double> heat_fc(s.g.nnt + 1, 0.0);
    o = with_files({{"slope_zt.data", "sea\n1 5.0 -1.5\n2 6.0 -1.0\n3 7.0 -0.5\n4 8.0 0.0\n"}},
                   [&](Files& f, const Listing& l) { read_slope_zt(f, l, s.g, true, s.t, heat_fc, s.f); });
    ASSERT_FALSE(o.stopped) << o.listing;
    EXPECT_EQ(s.t.nslope, 4);
    EXPECT_DOUBLE_EQ(s.t.hwcol[2], 6.0);
    EXPECT_TRUE(o.has_message("warning: node slope index i1 (") || o.has("warning: node slope index i1 ("));
    const int top = grid_node(3, 2, s.g.nzt, s.g.ny, s.g.nzt);
    EXPECT_DOUBLE_EQ(heat_fc[top], -0.5);
    EXPECT_DOUBLE_EQ(s.f.t10[top], -0.5);
}

// A field file as the 3D outputs write it: three head lines, then x y z T C H a node.
std::string field_file(const Grid& g, double dx)
{
    std::string t = "title\nvariables\nzone\n";
    for (int n = 1; n <= g.nnt; ++n)
        t += fmt_e(g.x[n] + dx, 15, 6) + fmt_e(g.y[n], 15, 6) + fmt_e(g.z[n], 15, 6) + fmt_e(100 + n, 15, 6) +
             fmt_e(200 + n, 15, 6) + fmt_e(300 + n, 15, 6) + "\n";
    return t;
}

TEST(AuxFiles, RestartOverwritesWhatKgoAsks)
{
    for (int kgo : {1, 2, 3}) {
        AuxCase s;
        s.opt.kgo = kgo;
        std::vector<double> fc(s.g.nn + 1, 0.0);
        const Outcome o = with_files({{"therm_in.data", field_file(s.g, 0.0)}}, [&](Files& f, const Listing& l) {
            read_restart(f, l, s.opt, s.g, s.f, true, fc);
        });
        ASSERT_FALSE(o.stopped) << o.listing;
        EXPECT_EQ(s.f.u[5], kgo != 2 ? 305.0 : 0.0) << kgo;
        EXPECT_EQ(fc[5], kgo != 2 ? 305.0 : 0.0) << kgo;
        EXPECT_EQ(s.f.t10[7], kgo != 1 ? 107.0 : 0.0) << kgo;
        EXPECT_EQ(s.f.t2i[7], kgo == 3 ? 207.0 : 0.0) << kgo;
        EXPECT_TRUE(o.has(" restart read successfull:"));
        EXPECT_FALSE(o.has("is not "));
    }
    AuxCase s;
    s.opt.kgo = 3;
    std::vector<double> fc(s.g.nn + 1, 0.0);
    Outcome o = with_files({{"therm_in.data", field_file(s.g, 0.5)}},
                           [&](Files& f, const Listing& l) { read_restart(f, l, s.opt, s.g, s.f, false, fc); });
    EXPECT_TRUE(o.has(" !! x(nn) in restart file therm_in.data is not ")) << o.listing;
    EXPECT_DOUBLE_EQ(s.g.x[1], 0.5);  // the file's coordinates replace the grid's
    EXPECT_EQ(fc[5], 0.0);
}

// Missing and broken files: a message behind 10 blanks, or a remark when the file may be
// missing.
TEST(AuxFiles, MissingAndBrokenFilesGiveTheirWords)
{
    AuxCase s;
    std::vector<double> fc(s.g.nn + 1, 0.0);
    using Step = std::function<void(Files&, const Listing&)>;
    const Step grid3d = [&](Files& f, const Listing& l) { read_grid3d(f, l, s.opt, s.g); };
    const Step hinput = [&](Files& f, const Listing& l) { read_hinput(f, l, s.g, s.f); };
    const Step tair = [&](Files& f, const Listing& l) { read_tair(f, l, s.t); };
    const Step hbdy = [&](Files& f, const Listing& l) { read_hbdy(f, l, s.t); };
    const Step restart = [&](Files& f, const Listing& l) { read_restart(f, l, s.opt, s.g, s.f, false, fc); };
    const struct {
        const char* file;
        const char* text;
        Step step;
        const char* words;  // a message, or with a leading blank a remark
    } cases[] = {
        {"", "", grid3d, "but this file does not exist"},
        {"grid3d.plt", "t\nt\nzone i=    abc\n", grid3d, "zone i=    nz, j=    ny, k=    nx (7x,i8,4x,i8,4x,i8)"},
        {"grid3d.plt", "t\nt\nzone i=       3, j=       2, k=       4\n", grid3d,
         "grid dimensions are not the same as in gelmor.data"},
        {"grid3d.plt", "t\nt\nzone i=       3, j=       2, k=       3\n1 2 3 4\n", grid3d,
         "end of file detected in grid3d.plt"},
        {"", "", hinput, "rename a hxz.out file to hinput.data and try again"},
        {"hinput.data", "heads\n1 1 10\n1 2 11\n", hinput, "!!! end-of-file detected in hinput.data file !!! "},
        {"", "", tair, "(ktair>0), but this file does not exist"},
        {"tair.data", "air\n10001\n", tair, "error, #Tair points (      10001) > max (      10000)"},
        {"tair.data", "air\n2\n0 1 x 2\n", tair, "error reading air temperatures in file tair.data"},
        {"", "", hbdy, " no hbdy.data file found ... continuing"},
        {"hbdy.data", "heads\n2\n0 10.0\n5 q\n", hbdy, "error reading bdy heads in file hbdy.data"},
        {"", "", [&](Files& f, const Listing& l) { read_bzin(f, l, s.t); }, " no bzin.data file found ... ok, continuing"},
        {"", "", [&](Files& f, const Listing& l) { read_veloc2d(f, l, s.g, s.v); }, "(ivel=3), but this file does not exist"},
        {"", "", [&](Files& f, const Listing& l) { read_slope_zt(f, l, s.g, true, s.t, fc, s.f); },
         " no slope_zt.data file found, continuing ..."},
        {"", "", restart, "use kgo=0 or rename a t3d file to therm_in.data"},
        {"therm_in.data", "a\nb\nc\n1 2 3\n", restart, "end of file detected in therm_in.data"},
    };
    for (const auto& c : cases) {
        std::vector<std::pair<std::string, std::string>> files;
        if (*c.file) files.push_back({c.file, c.text});
        const Outcome o = with_files(files, c.step);
        EXPECT_TRUE(c.words[0] == ' ' ? o.has(c.words) : o.has_message(c.words)) << c.words << "\n" << o.listing;
    }
}

}  // namespace
