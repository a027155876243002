#include "support/deck_run.hpp"
#include "support/small_deck.hpp"

#include <gtest/gtest.h>

// Headers, zone lines and first rows of the result files of the small deck, as text.
// The deck: 4 x 2 x 3 nodes of unit spacing, T = 8, 6.5, 5 C at z = 0, 1, 2 (Wu = 1 above
// 0 C) and not transported (kmass 1), C = 0, heads 10 m with 10 and 9 m fixed on the two
// x faces; two steps of a day, every plot each step, print times 1 and 2 days; sections
// knox 2, knoy 1, knoz 3.

namespace {

const DeckRun& small_run()
{
    // kmass 1: temperatures stay at their initial profile
    static const DeckRun r = run_deck(small_deck({{"[knox]", "2 0 0 0 0"},
                                                  {"[options]", "0 0 0 0 0 0 1 1 0 0 0 1 0 0"},
                                                  {"[heat kb]", ""},
                                                  {"[heat bottom]", ""},
                                                  {"[heat top]", ""}}));
    return r;
}

std::vector<std::string> lines_of(const std::string& file) { return split_lines(small_run().dir->read(file)); }

// The first lines of a file, exactly.
struct Head {
    const char* file;
    const char* text;
};
const Head kHeads[] = {
    {"gelmor_txz.plt",
     "variables=\"x\",\"z\",\"Temp.\",\"Wu\"\n"
     "text x=75., y=70.,f=helv,cs=frame,hu=point,h=20,zn=     1,c=black,bx=filled,bxf=white,bxo=white,"
     "t=\" 0.000000E+00 days \"\n"
     "zone i=     3, j=     4, T=\"t = 0 days, knoy=     1\"\n"
     "   0.000000E+00   0.000000E+00   0.800000E+01   0.100000E+01   0.000000E+00\n"},
    {"gelmor_hxz.plt",
     "variables=\"x\",\"z\",\"head\"\n"
     "zone i=     3, j=     4,t=\" 0.000000E+00 days; knoy=     1\"\n"
     "   0.000000E+00   0.000000E+00   0.100000E+02\n"},
    {"gelmor_hyz.plt",
     "title=\"yz head\"\n"
     "variables=\"y\",\"z\",\"head\"\n"
     "zone i=     3, j=     2, T=\" 0.000000E+00 days; yz section      2\"\n"
     "   0.000000E+00   0.000000E+00   0.100000E+02\n"},
    {"gelmor_hxy.plt",
     "title=\"xy head\"\n"
     "variables=\"x\",\"y\",\"head\"\n"
     "zone i=     2, j=     4, T=\" 0.000000E+00 days; xy section      3\"\n"
     "   0.000000E+00   0.000000E+00   0.100000E+02   0.000000E+00   0.100000E+01\n"},
    {"gelmor_txy_cxy.plt",
     "title=\"xy temp\"\n"
     "variables=\"x\",\"y\",\"Temp\",\"Wu\",\"Conc\"\n"
     "zone i=     2, j=     4, T=\" 0.000000E+00 days; xy section      3\"\n"
     "   0.000000E+00   0.000000E+00   0.500000E+01   0.100000E+01   0.000000E+00\n"},
    {"t1dz.plt",
     "title=\"1d vertical head, T and C profile\"\n"
     "variables=\"z\",\"h(m)\",\"T(degC)\",\"C\",\"Wu\",\"Wu*Sw\",\"dzl(m)\"\n"
     "zone i=     3, t=\"k1dx=     2, 0.000000E+00 days\"\n"
     "    0.00000E+00    0.10000E+02    0.80000E+01    0.00000E+00    0.10000E+01    0.10000E+01"
     "    0.00000E+00\n"},
    {"t1dx.plt",
     "variables=\"x\",\"Temp\",\"Wu\"\n"
     "zone i=     4, T=\" 0.000000E+00, days, kz=     3\"\n"
     "   0.000000E+00   0.500000E+01   0.100000E+01\n"},
    {"gelmor_tpeak.plt",
     "title=\"xy Tpeak and Tmin, and dz\"\n"
     "variables=\"x\",\"y\",\"Tpk\",\"Tmin\",\"dz\",\"dztot\"\n"
     "zone i=     2, j=     4, T=\" 0.000000E+00 days\"\n"
     "   0.000000E+00   0.000000E+00  -0.100000E+34   0.100000E+34   0.000000E+00\n"},
    {"tc3d1_gelmor.out",
     "          Title=\"T,C,H at t=  0.100000E+01 days\"\n"
     "          variables=\"x\",\"y\",\"z\",\"T\",\"C\",\"H\"\n"
     "          zone i=      3, j=      2, k=      4, T=\"T,C,H\"\n"
     "   0.000000E+00   0.000000E+00   0.000000E+00   0.800000E+01   0.000000E+00   0.100000E+02\n"},
    {"tc3d2_gelmor.out",
     "          Title=\"T,C,H at t=  0.200000E+01 days\"\n"},
    {"veloc3d.out",
     "title=\"3d vectors\"\nvariables=\"x\",\"y\",\"z\",\"vx\",\"vy\",\"vz\"\n"
     "zone i=      3, j=      1, k=      2, T=\" 0.100000E+01 days\"\n"},
};

// Single lines further down: later zones, boundary values, closing counts.
struct Line {
    const char* file;
    std::size_t n;  // zero-based
    const char* text;
};
const Line kLines[] = {
    // 12 nodes of 4 values: 9 full records and one of 3; then the zone of the first step
    {"gelmor_txz.plt", 11, "   0.300000E+01   0.100000E+01   0.650000E+01   0.100000E+01   0.300000E+01"},
    {"gelmor_txz.plt", 12, "   0.200000E+01   0.500000E+01   0.100000E+01"},
    {"gelmor_txz.plt", 13, "text x=75., y=70.,f=helv,cs=frame,hu=point,h=20,zn=     2,c=black,bx=filled,bxf=white,"
                           "bxo=white,t=\" 0.100000E+01 days \""},
    {"gelmor_txz.plt", 14, "zone i=     3, j=     4, D=(1,2), T=\"t= 0.100000E+01 days, knoy=     1\""},
    {"gelmor_txz.plt", 15, "   0.800000E+01   0.100000E+01   0.650000E+01   0.100000E+01   0.500000E+01"},
    {"gelmor_hxz.plt", 11, "   0.300000E+01   0.000000E+00   0.900000E+01"},  // the fixed 9 m face
    {"gelmor_hxz.plt", 14, "zone i=     3, j=     4,t=\" 0.100000E+01 days; knoy=     1\""},
    {"gelmor_txy_cxy.plt", 11, "zone i=     2, j=     4, D=(1,2), T=\" 0.100000E+01 days; xy section      3\""},
    {"gelmor_txy_cxy.plt", 12, "   0.500000E+01   0.100000E+01   0.000000E+00   0.500000E+01   0.100000E+01"},
    // the first peak step takes the column's 8 and 5 C
    {"gelmor_tpeak.plt", 13, "zone i=     2, j=     4, D=(1,2), T=\" 0.100000E+01 days\""},
    {"gelmor_tpeak.plt", 14, "   0.800000E+01   0.500000E+01   0.000000E+00   0.000000E+00   0.800000E+01"},
    {"k.plt", 1, "variables=\"x\",\"z\",\"Ksat\",\"K(T).kr\",\"log(K(T).kr)\",\"porosity\",\"Thermal K_pm\""},
    {"k.plt", 2, "zone i=     3, j=     4, T=\" 0.100000E+01 days\""},
    {"htot_flux.plt", 2, "zone i=9999, T=\"htot(J); replace 9999 with bottom #\""},
    {"htot_flux.plt", 3, "  0.00000000E+00  0.00000000E+00  0.00000000E+00  0.00000000E+00  0.00000000E+00  0.00000000E+00"},
    {"htot_flux.plt", 6, "number of print times:        3 (replace 9999 above)"},
    {"heatflux_bndy.plt", 4, "number of print times:        2 (replace 9999 above)"},
    {"tc3d_gelmormovie.out", 2, "zone i=     3, j=     2, k=     4, T=\" 0.100000E+01 days\""},
    {"tc3d_gelmormovie.out", 27, "text x=80., y=90.,f=helv,cs=frame,hu=point,h=20,c=black,bx=filled,bxf=white,bxo=white,"
                                 "t=\" 0.100000E+01 days \",zn=     1"},
    {"tc3d_gelmormovie.out", 28, "zone i=     3, j=     2, k=     4, T=\" 0.200000E+01 days\",D=(1,2,3)"},
    {"tc3d_gelmormovie.out", 29, "   0.800000E+01   0.000000E+00   0.650000E+01   0.000000E+00   0.500000E+01"},
    // no kprt: vectors only at the two print times
    {"veloc2dxz.out", 2, "zone i=      3, j=      2, T=\" 0.100000E+01 days\""},
    {"gelmor_Pe_Co_xz.plt", 1, "zone i=      3, j=      2,T=\" 0.100000E+01 days\""},
    {"heatfluxtop.plt", 1, "variables=\"x\",\"y\",\"element_x\",\"alpha\",\"beta\",\"vmag\",\"vperp\",  \"vz\",\"area\","
                           "\"Tref2\",\"conv.flux W/m^2\",\"cond.flux W/m2\",\"totalflx W/m2\",\"T(degC)\",\"head(m)\""},
};

TEST(PlotFiles, HeadersZonesAndRows)
{
    ASSERT_TRUE(small_run().has("**** normal exit ****")) << small_run().listing;
    for (const Head& h : kHeads) {
        const std::vector<std::string> want = split_lines(h.text);
        std::vector<std::string> got = lines_of(h.file);
        got.resize(std::min(got.size(), want.size()));
        EXPECT_EQ(join_lines(got), h.text) << h.file;
    }
    for (const Line& l : kLines) {
        const std::vector<std::string> got = lines_of(l.file);
        ASSERT_GT(got.size(), l.n) << l.file;
        EXPECT_EQ(got[l.n], l.text) << l.file << " line " << l.n + 1;
    }
    EXPECT_EQ(lines_of("htot_flux.plt").size(), 7u);
    EXPECT_EQ(lines_of("heatflux_bndy.plt").size(), 5u);
    EXPECT_EQ(lines_of("tc3d1_gelmor.out").size(), 3u + 24u);
    EXPECT_EQ(lines_of("gelmor_Pe_Co_xz.plt").size(), 2u + 6u);  // the first step of the interval only
    EXPECT_EQ(small_run().dir->read("tc3d3_gelmor.out"), "");
    // no heat transported, so no viscosity: K(T).kr = K = 1e-5 m/s
    EXPECT_EQ(lines_of("k.plt").at(3).substr(0, 96), "   0.0000000E+00   0.0000000E+00   0.1000000E-04   "
                                                     "0.1000000E-04  -0.5000000E+01   0.3000000E+00");
    // centre of the top element of stack 1, its index; T of the top element 5.75 C
    const std::string top = lines_of("heatfluxtop.plt").at(3);
    EXPECT_EQ(top.substr(0, 30), "  0.5000E+00  0.5000E+00     1");
    EXPECT_EQ(top.substr(30 + 10 * 15, 15), "    0.57500E+01");
}

TEST(PlotFiles, TimePlotsAndTheirRewrite)
{
    // the setup profile and the one of step 2
    const std::string rows =
        "    0.00000E+00    0.00000E+00    0.80000E+01    0.10000E+01\n"
        "    0.00000E+00    0.10000E+01    0.65000E+01    0.10000E+01\n"
        "    0.00000E+00    0.20000E+01    0.50000E+01    0.10000E+01\n"
        "    0.20000E+01    0.00000E+00    0.80000E+01    0.10000E+01\n"
        "    0.20000E+01    0.10000E+01    0.65000E+01    0.10000E+01\n"
        "    0.20000E+01    0.20000E+01    0.50000E+01    0.10000E+01\n";
    const std::string head = "title=\"1D vertical temperature profile - time plot\"\n"
                             "variables=\"t(d)\",\"z(m)\",\"T(degC)\",\"Wu\"\n";
    const ScratchDir& dir = *small_run().dir;
    EXPECT_EQ(dir.read("t1dz_tdum.plt"), head + "zone i=     3,j= 9999,T=\"at knox1,knoy1\"\n" + rows +
                                             "number of print times:        2 (replace 9999 above)\n");
    EXPECT_EQ(dir.read("t1dz_time.plt"), head + "zone i=     3,j=        2,T=\"at knox1,knoy1\"\n" + rows);
}

}  // namespace
