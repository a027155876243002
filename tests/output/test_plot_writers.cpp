#include "output/field_files.hpp"
#include "output/profile_files.hpp"
#include "output/section_files.hpp"
#include "output/series_files.hpp"
#include "output/vector_files.hpp"
#include "support/scratch.hpp"
#include "support/tecplot_check.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

namespace {

// A box of unit bricks, nx x ny nodes, nz flow levels and nzt transport levels, with
// node coordinates (i-1, j-1, k-1), the transport incidence, and all fields zero.
struct Box {
    Grid g;
    Fields f;
    Deck d;
    Options o;
    Media m;
    Velocities v;
    Fractures fr;
    std::string b;
    PlotContext ctx(double tdays = 0, bool setup = false) const { return PlotContext{g, f, d, o, m, v, fr, tdays, 86400.0, setup}; }
};

Box make_box(int nx, int ny, int nz, int nzt)
{
    Box x;
    Grid& g = x.g;
    g.nx = nx, g.ny = ny, g.nz = nz, g.nzt = nzt;
    g.nex = nx - 1, g.ney = ny - 1, g.nez = nz - 1, g.nezt = nzt - 1;
    g.nxy = nx * ny;
    g.nn = nx * ny * nz, g.nnt = nx * ny * nzt;
    g.ne = g.nex * g.ney * g.nez, g.net = g.nex * g.ney * g.nezt;
    g.x.assign(g.nnt + 1, 0), g.y.assign(g.nnt + 1, 0), g.z.assign(g.nnt + 1, 0);
    for (int i = 1; i <= nx; ++i)
        for (int j = 1; j <= ny; ++j)
            for (int k = 1; k <= nzt; ++k) {
                const int n = grid_node(i, j, k, ny, nzt);
                g.x[n] = i - 1, g.y[n] = j - 1, g.z[n] = k - 1;
            }
    g.int8.assign(8 * g.net + 1, 0);
    for (int ke = 1; ke <= g.nezt; ++ke)
        for (int je = 1; je <= g.ney; ++je)
            for (int ie = 1; ie <= g.nex; ++ie) {
                const int e = grid_element(ie, je, ke, g.nex, g.ney);
                const int c[8][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
                                     {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
                for (int l = 0; l < 8; ++l)
                    node_at(g.int8, e, l + 1) = grid_node(ie + c[l][0], je + c[l][1], ke + c[l][2], ny, nzt);
            }
    g.dxe.assign(g.net + 1, 1.0), g.dye.assign(g.net + 1, 1.0), g.dze.assign(g.net + 1, 1.0);
    size_fields(x.f, g.nn, g.nnt);
    x.v.vx.assign(g.net + 1, 0), x.v.vy.assign(g.net + 1, 0), x.v.vz.assign(g.net + 1, 0);
    x.d.medium = FreezeParams{0.05, 1.0, -1.0, 1.0, 1, 1};
    return x;
}

std::string write(const std::function<void(std::ostream&, std::string&)>& w, std::string& b)
{
    std::ostringstream os;
    w(os, b);
    return os.str();
}

TEST(PlotRows, FieldsWrapAcrossPointsAndTheLastRecordMayBeShort)
{
    std::string b;
    std::ostringstream os;
    Rows r = begin_rows(os, b, 5, 15, 6);
    for (int k = 1; k <= 7; ++k) put(r, k);
    end_rows(r);
    EXPECT_EQ(os.str(),
              "   0.100000E+01   0.200000E+01   0.300000E+01   0.400000E+01   0.500000E+01\n"
              "   0.600000E+01   0.700000E+01\n");
    EXPECT_TRUE(b.empty());
    // a full last record gets no empty line after it
    std::ostringstream os2;
    r = begin_rows(os2, b, 2, 9, 2);
    for (double v : {1.0, -2.0}) put(r, v);
    end_rows(r);
    EXPECT_EQ(os2.str(), " 0.10E+01-0.20E+01\n");
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
    const std::vector<std::string> want = {
        "          Title=\"T,C,H at t=  0.250000E+01 days\"",
        "          variables=\"x\",\"y\",\"z\",\"T\",\"C\",\"H\"",
        "          zone i=      3, j=      2, k=      2, T=\"T,C,H\"",
        "   0.000000E+00   0.000000E+00   0.000000E+00   0.100000E+01  -0.100000E+01   0.101000E+03",
        "   0.000000E+00   0.000000E+00   0.100000E+01   0.200000E+01  -0.200000E+01   0.102000E+03",
        "   0.000000E+00   0.000000E+00   0.200000E+01   0.300000E+01  -0.300000E+01   0.103000E+03",
    };
    std::istringstream in(s);
    std::string line;
    for (const std::string& w : want) {
        ASSERT_TRUE(std::getline(in, line));
        EXPECT_EQ(line, w);
    }
    // node 9..12 are past nn = 8: no head
    std::vector<std::string> rows;
    while (std::getline(in, line)) rows.push_back(line);
    ASSERT_EQ(rows.size(), 9u);
    EXPECT_EQ(rows[4].substr(75), "   0.108000E+03");
    EXPECT_EQ(rows[5].substr(75), "   0.000000E+00");
    EXPECT_TRUE(check_plot_text(s, e_rows(6, 15, 6)).ok());
}

TEST(Sections, TheFirstZoneCarriesTheCoordinatesAndTheSetupSaysSoInWords)
{
    Box x = make_box(2, 2, 2, 2);
    x.d.knoy[1] = 2;
    x.d.knoy[3] = 1;
    for (int n = 1; n <= x.g.nnt; ++n) x.f.t1[n] = 0.5 * n;
    int zones = 0;
    std::string s = write([&](std::ostream& os, std::string& b) {
        write_xz_sections(os, x.ctx(0, true), XzKind::concentration, zones, b);
    }, x.b);
    EXPECT_EQ(s,
              "zone i=     2, j=     2, T=\"t = 0 days, knoy=     2\"\n"
              "   0.000000E+00   0.000000E+00   0.000000E+00   0.000000E+00   0.100000E+01\n"
              "   0.000000E+00   0.100000E+01   0.000000E+00   0.000000E+00   0.100000E+01\n"
              "   0.100000E+01   0.000000E+00\n"
              "zone i=     2, j=     2, D=(1,2), T=\"t = 0 days, knoy=     1\"\n"
              "   0.000000E+00   0.000000E+00   0.000000E+00   0.000000E+00\n");
    // T minus the background column (1, 1) at the same level
    zones = 0;
    s = write([&](std::ostream& os, std::string& b) {
        write_xz_sections(os, x.ctx(1.0), XzKind::difference, zones, b);
    }, x.b);
    EXPECT_NE(s.find("T=\"t= 0.100000E+01 days, knoy=     2\""), std::string::npos) << s;
    // node (2,2,1) = 7 against node 1: 3.5 - 0.5
    EXPECT_NE(s.find("   0.100000E+01   0.000000E+00   0.300000E+01"), std::string::npos) << s;
}

TEST(Sections, HeadsAboveTheFlowGridAreTheTopFlowHead)
{
    Box x = make_box(2, 2, 2, 3);
    x.d.knoz[1] = 3;
    for (int n = 1; n <= x.g.nn; ++n) x.f.u[n] = n;
    int zones = 0;
    const std::string s = write([&](std::ostream& os, std::string& b) { write_hxy(os, x.ctx(1), zones, b); }, x.b);
    // columns (1,1), (1,2), (2,1), (2,2): top flow nodes 2, 4, 6, 8
    EXPECT_EQ(s,
              "zone i=     2, j=     2, T=\" 0.100000E+01 days; xy section      3\"\n"
              "   0.000000E+00   0.000000E+00   0.200000E+01   0.000000E+00   0.100000E+01\n"
              "   0.400000E+01   0.100000E+01   0.000000E+00   0.600000E+01   0.100000E+01\n"
              "   0.100000E+01   0.800000E+01\n");
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

TEST(Profiles, ParseEFieldsOfBothExponentForms)
{
    double v = 0;
    EXPECT_TRUE(parse_e_field("    0.12345E+01", v));
    EXPECT_DOUBLE_EQ(v, 1.2345);
    EXPECT_TRUE(parse_e_field("   -0.12345-101", v));
    EXPECT_DOUBLE_EQ(v, -0.12345e-101);
    EXPECT_FALSE(parse_e_field("number of print", v));
    EXPECT_FALSE(parse_e_field("               ", v));
    EXPECT_FALSE(parse_e_field("    *******    ", v));
}

TEST(Profiles, TimePlotRewrittenWithItsCount)
{
    ScratchDir dir("timeplot");
    const std::string row1 = "    0.00000E+00    0.10000E+01    0.80000E+01    0.10000E+01\n";
    const std::string row2 = "    0.20000E+01    0.10000E+01   -0.12345-101    0.10000E+01\n";
    dir.write("a.plt", "title=\"t\"\nvariables=\"t(d)\",\"z(m)\",\"T(degC)\",\"Wu\"\nzone i=     1,j= 9999,T=\"at knox1,knoy1\"\n" +
                           row1 + row2 + "number of print times:        2 (replace 9999 above)\n");
    rewrite_time_plot(dir.path / "a.plt", dir.path / "b.plt", 1, 2, "at knox1,knoy1");
    EXPECT_EQ(dir.read("b.plt"), "title=\"t\"\nvariables=\"t(d)\",\"z(m)\",\"T(degC)\",\"Wu\"\n"
                                 "zone i=     1,j=        2,T=\"at knox1,knoy1\"\n" + row1 + row2);
    // a file that ends early gives what it holds
    dir.write("c.plt", "title=\"t\"\n");
    rewrite_time_plot(dir.path / "c.plt", dir.path / "d.plt", 1, 0, "at knoy1,knoz1");
    EXPECT_EQ(dir.read("d.plt"), "title=\"t\"\n");
}

TEST(Series, CountLineAndOpenZoneHeaders)
{
    std::string b;
    std::ostringstream os;
    write_count_line(os, 366, b);
    EXPECT_EQ(os.str(), "number of print times:      366 (replace 9999 above)\n");
    htot_header(b);
    EXPECT_EQ(b, "Title=\"htotr=wrt_Tmpa;htota=wrt_Tref;hinr=pq;hts2=cum_leak2bdy;hqtop=cum_top_recharge\"\n"
                 "variables=\"time\",\"htotr(J)\",\"htota(J)\",\"hinr(J)\" ,\"hts2-leak(J)\",\"hqtop(J)\"\n"
                 "zone i=9999, T=\"htot(J); replace 9999 with bottom #\"\n");
    b.clear();
    bndy_header(b);
    EXPECT_NE(b.find("\"Sum_fluxright (J)\"\"hflxtop (W)\""), std::string::npos);
    EXPECT_NE(b.find("\nzone i= 9999,T=\"Boundary Heatfluxes\"\n"), std::string::npos);
}

TEST(Series, PeakLineKeepsItsLimitsWithoutAPlane)
{
    Box x = make_box(2, 2, 2, 2);
    for (int n = 1; n <= x.g.nnt; ++n) x.f.t1[n] = n;
    std::string s = write([&](std::ostream& os, std::string& b) { write_peak(os, x.ctx(3), b); }, x.b);
    EXPECT_EQ(s, "  0.30000000E+01 -0.99900000E+03  0.99900000E+03\n");
    x.d.knoy[1] = 2;  // nodes 3, 4, 7, 8
    s = write([&](std::ostream& os, std::string& b) { write_peak(os, x.ctx(3), b); }, x.b);
    EXPECT_EQ(s, "  0.30000000E+01  0.80000000E+01  0.30000000E+01\n");
}

TEST(Vectors, PecletZonesShareTheCentresAndCourantUsesTheStep)
{
    Box x = make_box(3, 2, 2, 2);  // two elements along x
    x.v.vx[1] = 1.0e-5, x.v.vz[1] = -2.0e-6, x.v.vx[2] = 2.0e-5;
    std::vector<double> dispx = {0, 1.0e-5, 0}, dispz;  // element 2 has no dispersion yet
    int zones = 0;
    std::string s = write([&](std::ostream& os, std::string& b) { write_peclet(os, x.ctx(1), dispx, dispz, zones, b); }, x.b);
    EXPECT_EQ(s,
              "zone i=      2, j=      1,T=\" 0.100000E+01 days\"\n"
              "   0.500000E+00   0.500000E+00   0.100000E+01   0.000000E+00   0.864000E+00  -0.172800E+00\n"
              "   0.150000E+01   0.500000E+00   0.000000E+00   0.000000E+00   0.172800E+01   0.000000E+00\n");
    s = write([&](std::ostream& os, std::string& b) { write_peclet(os, x.ctx(2), dispx, dispz, zones, b); }, x.b);
    EXPECT_EQ(s.substr(0, s.find('\n')), "zone i=      2, j=      1, D=(1,2),T=\" 0.200000E+01 days\"");
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
