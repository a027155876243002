#include "output/field_files.hpp"
#include "output/profile_files.hpp"
#include "output/section_files.hpp"
#include "output/series_files.hpp"
#include "output/vector_files.hpp"
#include "support/box_grid.hpp"
#include "support/deck_run.hpp"
#include "support/tecplot_check.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

namespace {

// A box of unit bricks, nx x ny nodes, nz flow levels and nzt transport levels, with
// node coordinates (i-1, j-1, k-1) and all fields zero.
struct Box {
    Grid g;
    Fields f;
    Deck d;
    Options o;
    Media m;
    Velocities v;
    Fractures fr;
    Forcing fo;
    std::vector<double> heat_fc;
    std::string b;
    PlotContext ctx(double tdays = 0, bool setup = false) const
    {
        return PlotContext{g, f, d, o, m, v, fr, fo, heat_fc, tdays, 86400.0, setup};
    }
};

Box make_box(int nx, int ny, int nz, int nzt)
{
    Box x;
    x.g = flow_box(nx - 1, ny - 1, nz - 1, nx - 1, ny - 1, nz - 1, nzt - nz, true);
    size_fields(x.f, x.g.nn, x.g.nnt);
    size_forcing(x.fo, x.g.nx, x.g.nxy);
    x.heat_fc.assign(x.g.nnt + 1, 0.0);
    for (auto* a : {&x.v.vx, &x.v.vy, &x.v.vz}) a->assign(x.g.net + 1, 0.0);
    x.d.medium = FreezeParams{0.05, 1.0, -1.0, 1.0, 1, 1};
    return x;
}

std::string write(const std::function<void(std::ostream&, std::string&)>& w, std::string& b)
{
    std::ostringstream os;
    w(os, b);
    return os.str();
}

TEST(PlotRows, LongZonesGoOutInBlocksWithoutLosingARecord)
{
    std::string b;
    std::ostringstream os;
    Rows r = begin_rows(os, b, 6, 15, 6);
    const int n = 60000;  // well past one block
    for (int k = 0; k < n; ++k) put(r, 1.0);
    end_rows(r);
    const std::string s = os.str();
    EXPECT_EQ(s.size(), (std::size_t)n / 6 * (6 * 15 + 1));
    EXPECT_TRUE(check_plot_text("variables=\"a\"\nzone i= 60000\n" + s, e_rows(6, 15, 6)).ok());
}

TEST(FieldFile, HeadByFlowIndexAndZeroPastTheFlowGrid)
{
    // two flow levels under one unsaturated level: H is taken by index, not by point
    Box x = make_box(2, 2, 2, 3);
    for (int n = 1; n <= x.g.nn; ++n) x.f.u[n] = 100 + n;
    for (int n = 1; n <= x.g.nnt; ++n) x.f.t1[n] = n, x.f.t2[n] = -n;
    const std::string s = write([&](std::ostream& os, std::string& b) { write_field_file(os, x.ctx(2.5), b); }, x.b);
    // node 9..12 are past nn = 8: no head
    const std::vector<std::string> rows = split_lines(s);
    ASSERT_EQ(rows.size(), 3u + 12u);
    EXPECT_EQ(rows[3], "   0.000000E+00   0.000000E+00   0.000000E+00   0.100000E+01  -0.100000E+01   0.101000E+03");
    EXPECT_EQ(rows[10].substr(75), "   0.108000E+03");
    EXPECT_EQ(rows[11].substr(75), "   0.000000E+00");
    EXPECT_TRUE(check_plot_text(s, e_rows(6, 15, 6)).ok());
}

TEST(Profiles, ThawDepthWalksDownToTheFirstUnfrozenNode)
{
    Box x = make_box(2, 2, 5, 5);  // column (1,1) = nodes 1..5, top z = 4
    x.d.medium.Ts = 0.0;
    auto column = [&](std::initializer_list<double> t) {
        int k = 1;
        for (double v : t) x.f.t1[k++] = v;
    };
    column({2, 1, 0.5, -1, -2});
    // front between z = 2 (0.5 C) and z = 3 (-1 C) at Ts = 0: z = 3 - 1/1.5
    EXPECT_NEAR(thaw_depth(x.ctx(), 1, 1), 1.0 + 1.0 / 1.5, 1e-12);
    column({2, 1, 0.0, -0.005, -2});  // a step below 0.01 C: the mid point
    EXPECT_DOUBLE_EQ(thaw_depth(x.ctx(), 1, 1), 1.5);
    column({2, 1, 1, 1, 1});          // unfrozen top
    EXPECT_DOUBLE_EQ(thaw_depth(x.ctx(), 1, 1), 0.0);
    column({-2, -1, -1, -1, -1});     // frozen to the base
    EXPECT_DOUBLE_EQ(thaw_depth(x.ctx(), 1, 1), 4.0);
}

TEST(Vectors, SectionIndicesOfZeroAndOfTheFarFaceFallInsideTheGrid)
{
    Box x = make_box(3, 3, 3, 3);
    for (int e = 1; e <= x.g.net; ++e) x.v.vx[e] = e;
    x.d.knoy[1] = 0;  // the first element row
    std::string s = write([&](std::ostream& os, std::string& b) { write_vectors(os, x.ctx(1), VectorPlane::xz, b); }, x.b);
    EXPECT_TRUE(check_plot_text("variables=\"x\",\"z\",\"vx\",\"vz\"\n" + s, e_rows(6, 14, 6)).ok()) << s;
    EXPECT_NE(s.find("  0.500000E+00  0.500000E+00  0.100000E+01"), std::string::npos) << s;
    x.d.knoy[1] = 3;  // the node plane y = 2 is the far face: the last element row
    s = write([&](std::ostream& os, std::string& b) { write_vectors(os, x.ctx(1), VectorPlane::xz, b); }, x.b);
    EXPECT_NE(s.find("  0.500000E+00  0.500000E+00  0.300000E+01"), std::string::npos) << s;
}

}  // namespace
