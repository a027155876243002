#include "support/deck_run.hpp"
#include "support/small_deck.hpp"

#include <gtest/gtest.h>

// Headers, zone lines and first rows of the result files of the small deck, as text.
// The deck: 4 x 2 x 3 nodes of unit spacing, T = 8, 6.5, 5 C at z = 0, 1, 2 (Wu = 1 above
// 0 C), C = 0, heads 10 m with 10 and 9 m fixed on the two x faces; two steps of a day,
// every plot each step, print times 1 and 2 days; sections knox 2, knoy 1, knoz 3.

namespace {

const DeckRun& small_run()
{
    static const DeckRun r = run_deck(small_deck({{"[knox]", "2 0 0 0 0"}}));
    return r;
}

// The first n lines of a result file.
std::string head_of(const DeckRun& r, const std::string& file, int n)
{
    const std::vector<std::string> lines = split_lines(r.dir->read(file));
    std::vector<std::string> out(lines.begin(), lines.begin() + std::min<std::size_t>(n, lines.size()));
    return join_lines(out);
}

std::vector<std::string> lines_of(const DeckRun& r, const std::string& file) { return split_lines(r.dir->read(file)); }

TEST(PlotFiles, TheRunEnds)
{
    ASSERT_TRUE(small_run().has("**** normal exit ****")) << small_run().listing;
}

TEST(PlotFiles, XzTemperatureSections)
{
    const DeckRun& r = small_run();
    EXPECT_EQ(head_of(r, "gelmor_txz.plt", 5),
              "variables=\"x\",\"z\",\"Temp.\",\"Wu\"\n"
              "text x=75., y=70.,f=helv,cs=frame,hu=point,h=20,zn=     1,c=black,bx=filled,bxf=white,bxo=white,"
              "t=\" 0.000000E+00 days \"\n"
              "zone i=     3, j=     4, T=\"t = 0 days, knoy=     1\"\n"
              "   0.000000E+00   0.000000E+00   0.800000E+01   0.100000E+01   0.000000E+00\n"
              "   0.100000E+01   0.650000E+01   0.100000E+01   0.000000E+00   0.200000E+01\n");
    // 12 nodes of 4 values: 9 full records and one of 3; then the zone of the first step
    const std::vector<std::string> l = lines_of(r, "gelmor_txz.plt");
    ASSERT_GT(l.size(), 16u);
    EXPECT_EQ(l[11], "   0.300000E+01   0.100000E+01   0.650000E+01   0.100000E+01   0.300000E+01");
    EXPECT_EQ(l[12], "   0.200000E+01   0.500000E+01   0.100000E+01");
    EXPECT_EQ(l[13], "text x=75., y=70.,f=helv,cs=frame,hu=point,h=20,zn=     2,c=black,bx=filled,bxf=white,"
                     "bxo=white,t=\" 0.100000E+01 days \"");
    EXPECT_EQ(l[14], "zone i=     3, j=     4, D=(1,2), T=\"t= 0.100000E+01 days, knoy=     1\"");
    EXPECT_EQ(l[15], "   0.800000E+01   0.100000E+01   0.650000E+01   0.100000E+01   0.500000E+01");
}

TEST(PlotFiles, ConcentrationAndDifferenceSections)
{
    const DeckRun& r = small_run();
    EXPECT_EQ(head_of(r, "gelmor_cxz.plt", 3),
              "variables=\"x\",\"z\",\"conc\"\n"
              "zone i=     3, j=     4, T=\"t = 0 days, knoy=     1\"\n"
              "   0.000000E+00   0.000000E+00   0.000000E+00   0.000000E+00   0.100000E+01\n");
    // the profile is the same in every column: no difference to the first column
    EXPECT_EQ(head_of(r, "tdif.out", 4),
              "variables=\"x\",\"z\",\"T-Tbck\"\n"
              "zone i=     3, j=     4, T=\"t = 0 days, knoy=     1\"\n"
              "   0.000000E+00   0.000000E+00   0.000000E+00   0.000000E+00   0.100000E+01\n"
              "   0.000000E+00   0.000000E+00   0.200000E+01   0.000000E+00   0.100000E+01\n");
}

TEST(PlotFiles, HeadSectionsOneNodeARecord)
{
    const DeckRun& r = small_run();
    EXPECT_EQ(head_of(r, "gelmor_hxz.plt", 5),
              "variables=\"x\",\"z\",\"head\"\n"
              "zone i=     3, j=     4,t=\" 0.000000E+00 days; knoy=     1\"\n"
              "   0.000000E+00   0.000000E+00   0.100000E+02\n"
              "   0.000000E+00   0.100000E+01   0.100000E+02\n"
              "   0.000000E+00   0.200000E+01   0.100000E+02\n");
    const std::vector<std::string> l = lines_of(r, "gelmor_hxz.plt");
    EXPECT_EQ(l[11], "   0.300000E+01   0.000000E+00   0.900000E+01");  // the fixed 9 m face
    EXPECT_EQ(l[14], "zone i=     3, j=     4,t=\" 0.100000E+01 days; knoy=     1\"");
    EXPECT_EQ(head_of(r, "gelmor_hyz.plt", 4),
              "title=\"yz head\"\n"
              "variables=\"y\",\"z\",\"head\"\n"
              "zone i=     3, j=     2, T=\" 0.000000E+00 days; yz section      2\"\n"
              "   0.000000E+00   0.000000E+00   0.100000E+02\n");
    EXPECT_EQ(head_of(r, "gelmor_hxy.plt", 5),
              "title=\"xy head\"\n"
              "variables=\"x\",\"y\",\"head\"\n"
              "zone i=     2, j=     4, T=\" 0.000000E+00 days; xy section      3\"\n"
              "   0.000000E+00   0.000000E+00   0.100000E+02   0.000000E+00   0.100000E+01\n"
              "   0.100000E+02   0.100000E+01   0.000000E+00   0.100000E+02   0.100000E+01\n");
}

TEST(PlotFiles, YzAndXySections)
{
    const DeckRun& r = small_run();
    EXPECT_EQ(head_of(r, "gelmor_tyz.plt", 4),
              "title=\"yz temp\"\n"
              "variables=\"y\",\"z\",\"Temp\",\"Wu\"\n"
              "zone i=     3, j=     2, T=\" 0.000000E+00 days; yz section      2\"\n"
              "   0.000000E+00   0.000000E+00   0.800000E+01   0.100000E+01   0.000000E+00\n");
    EXPECT_EQ(head_of(r, "gelmor_txy_cxy.plt", 4),
              "title=\"xy temp\"\n"
              "variables=\"x\",\"y\",\"Temp\",\"Wu\",\"Conc\"\n"
              "zone i=     2, j=     4, T=\" 0.000000E+00 days; xy section      3\"\n"
              "   0.000000E+00   0.000000E+00   0.500000E+01   0.100000E+01   0.000000E+00\n");
    const std::vector<std::string> l = lines_of(r, "gelmor_txy_cxy.plt");
    EXPECT_EQ(l[11], "zone i=     2, j=     4, D=(1,2), T=\" 0.100000E+01 days; xy section      3\"");
    EXPECT_EQ(l[12], "   0.500000E+01   0.100000E+01   0.000000E+00   0.500000E+01   0.100000E+01");
}

TEST(PlotFiles, VerticalAndHorizontalProfiles)
{
    const DeckRun& r = small_run();
    EXPECT_EQ(head_of(r, "t1dz.plt", 4),
              "title=\"1d vertical head, T and C profile\"\n"
              "variables=\"z\",\"h(m)\",\"T(degC)\",\"C\",\"Wu\",\"Wu*Sw\",\"dzl(m)\"\n"
              "zone i=     3, t=\"k1dx=     2, 0.000000E+00 days\"\n"
              "    0.00000E+00    0.10000E+02    0.80000E+01    0.00000E+00    0.10000E+01    0.10000E+01"
              "    0.00000E+00\n");
    EXPECT_EQ(head_of(r, "t1dx.plt", 3),
              "variables=\"x\",\"Temp\",\"Wu\"\n"
              "zone i=     4, T=\" 0.000000E+00, days, kz=     3\"\n"
              "   0.000000E+00   0.500000E+01   0.100000E+01\n");
    EXPECT_EQ(head_of(r, "tbck.out", 6),
              "title=\"1d vertical temp. profile: background\"\n"
              "variables=\"z\",\"T(degC)\",\"Wu\"\n"
              "zone i=     3, T= \" vertical strip  0.000000E+00 days\"\n"
              "   0.000000E+00   0.800000E+01   0.100000E+01\n"
              "   0.100000E+01   0.650000E+01   0.100000E+01\n"
              "   0.200000E+01   0.500000E+01   0.100000E+01\n");
    // unfrozen everywhere: no thaw depth; no deformation or conductance layer values yet
    EXPECT_EQ(head_of(r, "t1dx_bzq.plt", 3),
              "variables=\"x\",\"dztot(m)\",\"depth_Ts(m)\",\"bz(m)\",\"bzf(W/m2)\",\"bzq(m/s)\"\n"
              "zone i=     4, T=\" 0.000000E+00 days\"\n"
              "   0.000000E+00   0.000000E+00   0.000000E+00   0.000000E+00   0.000000E+00   0.000000E+00\n");
}

TEST(PlotFiles, PeakMapsStartAtTheirLimits)
{
    const DeckRun& r = small_run();
    EXPECT_EQ(head_of(r, "gelmor_tpeak.plt", 4),
              "title=\"xy Tpeak and Tmin, and dz\"\n"
              "variables=\"x\",\"y\",\"Tpk\",\"Tmin\",\"dz\",\"dztot\"\n"
              "zone i=     2, j=     4, T=\" 0.000000E+00 days\"\n"
              "   0.000000E+00   0.000000E+00  -0.100000E+34   0.100000E+34   0.000000E+00\n");
    // the first peak step takes the column's 8 and 5 C
    const std::vector<std::string> l = lines_of(r, "gelmor_tpeak.plt");
    EXPECT_EQ(l[13], "zone i=     2, j=     4, D=(1,2), T=\" 0.100000E+01 days\"");
    EXPECT_EQ(l[14], "   0.800000E+01   0.500000E+01   0.000000E+00   0.000000E+00   0.800000E+01");
    EXPECT_EQ(head_of(r, "peaktrace.plt", 3),
              "variables=\"time(d)\",\"peak temp(C)\",\"minimum temp(C)\"\n"
              "zone i=9999, T=\"replace with real # on last line\"\n"
              "  0.10000000E+01  0.80000000E+01  0.50000000E+01\n");
}

TEST(PlotFiles, KSectionAtAPlotAndPeakStep)
{
    // element 1 at the mean of 8 and 6.5 C: K = 1e-5 / rvisc_w(7.25) = 1.241032e-5 m/s
    const std::vector<std::string> l = lines_of(small_run(), "k.plt");
    ASSERT_GE(l.size(), 4u);
    EXPECT_EQ(l[0], "title=\"2d K section \"");
    EXPECT_EQ(l[1], "variables=\"x\",\"z\",\"Ksat\",\"K(T).kr\",\"log(K(T).kr)\",\"porosity\",\"Thermal K_pm\"");
    EXPECT_EQ(l[2], "zone i=     3, j=     4, T=\" 0.100000E+01 days\"");
    EXPECT_EQ(l[3].substr(0, 96), "   0.0000000E+00   0.0000000E+00   0.1000000E-04   0.1241032E-04  -0.4906217E+01"
                                  "   0.3000000E+00");
}

TEST(PlotFiles, HeatTotalsAndTheirCount)
{
    const std::vector<std::string> l = lines_of(small_run(), "htot_flux.plt");
    ASSERT_EQ(l.size(), 7u);
    EXPECT_EQ(l[2], "zone i=9999, T=\"htot(J); replace 9999 with bottom #\"");
    EXPECT_EQ(l[3], "  0.00000000E+00  0.00000000E+00  0.00000000E+00  0.00000000E+00  0.00000000E+00  0.00000000E+00");
    EXPECT_EQ(l[4].substr(0, 16), "  0.10000000E+01");
    EXPECT_EQ(l[6], "number of print times:        3 (replace 9999 above)");
    const std::vector<std::string> b = lines_of(small_run(), "heatflux_bndy.plt");
    ASSERT_EQ(b.size(), 5u);
    EXPECT_EQ(b[4], "number of print times:        2 (replace 9999 above)");
}

TEST(PlotFiles, TimePlotsAndTheirRewrite)
{
    const DeckRun& r = small_run();
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
    EXPECT_EQ(r.dir->read("t1dz_tdum.plt"), head + "zone i=     3,j= 9999,T=\"at knox1,knoy1\"\n" + rows +
                                                "number of print times:        2 (replace 9999 above)\n");
    EXPECT_EQ(r.dir->read("t1dz_time.plt"), head + "zone i=     3,j=        2,T=\"at knox1,knoy1\"\n" + rows);
    // along x only every 100th step: the setup profile alone
    EXPECT_EQ(head_of(r, "t1dx_time.plt", 4),
              "title=\"1D horizontal temperature profile - time plot\"\n"
              "variables=\"t(d)\",\"x(m)\",\"T(degC)\",\"Wu\"\n"
              "zone i=     4,j=        1,T=\"at knoy1,knoz1\"\n"
              "    0.00000E+00    0.00000E+00    0.50000E+01    0.10000E+01\n");
}

TEST(PlotFiles, FieldFilesOfThePrintTimes)
{
    const DeckRun& r = small_run();
    EXPECT_EQ(head_of(r, "tc3d1_gelmor.out", 5),
              "          Title=\"T,C,H at t=  0.100000E+01 days\"\n"
              "          variables=\"x\",\"y\",\"z\",\"T\",\"C\",\"H\"\n"
              "          zone i=      3, j=      2, k=      4, T=\"T,C,H\"\n"
              "   0.000000E+00   0.000000E+00   0.000000E+00   0.800000E+01   0.000000E+00   0.100000E+02\n"
              "   0.000000E+00   0.000000E+00   0.100000E+01   0.650000E+01   0.000000E+00   0.100000E+02\n");
    EXPECT_EQ(lines_of(r, "tc3d1_gelmor.out").size(), 3u + 24u);
    EXPECT_EQ(head_of(r, "tc3d2_gelmor.out", 1), "          Title=\"T,C,H at t=  0.200000E+01 days\"\n");
    EXPECT_EQ(r.dir->read("tc3d3_gelmor.out"), "");
}

TEST(PlotFiles, MovieFrames)
{
    const std::vector<std::string> l = lines_of(small_run(), "tc3d_gelmormovie.out");
    ASSERT_GT(l.size(), 30u);
    EXPECT_EQ(l[0], "Title=\"temperature 3D\"");
    EXPECT_EQ(l[1], "variables=\"x\",\"y\",\"z\",\"Temperature\",\"Concentration\"");
    EXPECT_EQ(l[2], "zone i=     3, j=     2, k=     4, T=\" 0.100000E+01 days\"");
    EXPECT_EQ(l[3], "   0.000000E+00   0.000000E+00   0.000000E+00   0.800000E+01   0.000000E+00");
    EXPECT_EQ(l[27], "text x=80., y=90.,f=helv,cs=frame,hu=point,h=20,c=black,bx=filled,bxf=white,bxo=white,"
                     "t=\" 0.100000E+01 days \",zn=     1");
    EXPECT_EQ(l[28], "zone i=     3, j=     2, k=     4, T=\" 0.200000E+01 days\",D=(1,2,3)");
    EXPECT_EQ(l[29], "   0.800000E+01   0.000000E+00   0.650000E+01   0.000000E+00   0.500000E+01");
}

TEST(PlotFiles, VectorAndPecletHeaders)
{
    const DeckRun& r = small_run();
    // no kprt: vectors only at the two print times
    const std::vector<std::string> v = lines_of(r, "veloc2dxz.out");
    ASSERT_GT(v.size(), 3u);
    EXPECT_EQ(v[0], "title=\"2d xz vectors\"");
    EXPECT_EQ(v[1], "variables=\"x\",\"z\",\"vx\",\"vz\"");
    EXPECT_EQ(v[2], "zone i=      3, j=      2, T=\" 0.100000E+01 days\"");
    EXPECT_EQ(v[3].substr(0, 28), "  0.500000E+00  0.500000E+00");
    EXPECT_EQ(head_of(r, "veloc2dyz.out", 3),
              "title=\"2d yz vectors\"\nvariables=\"y\",\"z\",\"vy\",\"vz\"\nzone i=      1, j=      2, T=\" 0.100000E+01 days\"\n");
    EXPECT_EQ(head_of(r, "veloc3d.out", 3),
              "title=\"3d vectors\"\nvariables=\"x\",\"y\",\"z\",\"vx\",\"vy\",\"vz\"\n"
              "zone i=      3, j=      1, k=      2, T=\" 0.100000E+01 days\"\n");
    // first step of the interval only (10 kmomfreq = 10 is not reached)
    const std::vector<std::string> p = lines_of(r, "gelmor_Pe_Co_xz.plt");
    ASSERT_EQ(p.size(), 2u + 6u);
    EXPECT_EQ(p[0], "variables=\"x\",\"z\",\"Pe_x\",\"Pe_z\",\"Co_x\",\"Co_z\"");
    EXPECT_EQ(p[1], "zone i=      3, j=      2,T=\" 0.100000E+01 days\"");
}

TEST(PlotFiles, SurfaceFluxHeaders)
{
    const DeckRun& r = small_run();
    EXPECT_EQ(head_of(r, "heatflux_2Dsurface.plt", 4),
              "Title=\"2D conductive heatflux top & bot; + heat leaving\"\n"
              "variables=\"x\",\"y\",\"fluxtop W/m^2\",\"fluxbot W/m^2\"\n"
              "zone i=     3, j=     1, T=\" 0.100000E+01 days\"\n"
              "   0.500000E+00   0.500000E+00   0.000000E+00   0.000000E+00\n");
    const std::vector<std::string> t = lines_of(r, "heatfluxtop.plt");
    ASSERT_GT(t.size(), 3u);
    EXPECT_EQ(t[1], "variables=\"x\",\"y\",\"element_x\",\"alpha\",\"beta\",\"vmag\",\"vperp\",  \"vz\",\"area\","
                    "\"Tref2\",\"conv.flux W/m^2\",\"cond.flux W/m2\",\"totalflx W/m2\",\"T(degC)\",\"head(m)\"");
    // centre of the top element of stack 1, its index; T of the top element 5.75 C
    EXPECT_EQ(t[3].substr(0, 30), "  0.5000E+00  0.5000E+00     1");
    EXPECT_EQ(t[3].substr(30 + 10 * 15, 15), "    0.57500E+01");
}

}  // namespace
