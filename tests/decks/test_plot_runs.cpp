#include "output/profile_files.hpp"
#include "support/deck_run.hpp"
#include "support/small_deck.hpp"
#include "support/tecplot_check.hpp"

#include <gtest/gtest.h>

#include <cmath>

// Whole runs: every result file passes the strict reader, files stay empty where a run
// has nothing for them, and a field file restarts a run where it stood.

namespace {

// Checks every non-empty result file of a run; returns the names of those checked.
std::vector<std::string> check_all(const DeckRun& r)
{
    std::vector<std::string> checked;
    for (const ResultFile& f : result_files()) {
        const std::string text = r.dir->read(f.name);
        if (text.empty()) continue;
        const CheckReport rep = check_plot_text(text, f.layout);
        EXPECT_TRUE(rep.ok()) << f.name << ":\n" << rep.text();
        checked.push_back(f.name);
    }
    return checked;
}

bool has(const std::vector<std::string>& v, const std::string& s) { return std::find(v.begin(), v.end(), s) != v.end(); }

int count_of(const std::string& text, const std::string& what)
{
    int n = 0;
    for (std::size_t p = text.find(what); p != std::string::npos; p = text.find(what, p + 1)) ++n;
    return n;
}

TEST(PlotRuns, EveryFileOfTheExampleDeckPassesTheStrictReader)
{
    const DeckRun r = run_deck(example_deck());
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing.substr(r.listing.size() - 2000);
    const std::vector<std::string> checked = check_all(r);
    for (const char* f : {"gelmor_txz.plt", "gelmor_cxz.plt", "tdif.out", "gelmor_hxz.plt", "gelmor_txy_cxy.plt",
                          "gelmor_hxy.plt", "t1dx.plt", "t1dx_bzq.plt", "gelmor-debug_1dx.plt", "tbck.out",
                          "gelmor_tpeak.plt", "k.plt", "heatfluxtop.plt", "heatflux_2Dsurface.plt", "heatflux_bndy.plt",
                          "htot_flux.plt", "peaktrace.plt", "t1dx_tdum.plt", "t1dx_time.plt", "veloc2dxz.out",
                          "veloc3d.out", "gelmor_Pe_Co_xz.plt", "tc3d1_gelmor.out", "tc3d2_gelmor.out",
                          "tc3d_gelmormovie.out", "vfracxz.out"})
        EXPECT_TRUE(has(checked, f)) << f << " is empty";
    // 365 daily steps: every step in the heat totals, with the setup record
    EXPECT_NE(r.dir->read("htot_flux.plt").find("number of print times:      366 (replace 9999 above)"), std::string::npos);
    // no knox in this deck: the yz files and the vertical time plot stay empty
    EXPECT_EQ(r.dir->read("gelmor_tyz.plt"), "");
    EXPECT_FALSE(r.dir->exists("t1dz_time.plt"));
}

TEST(PlotRuns, AllKnoxZeroWritesNoYzFilesAndNoVerticalTimePlot)
{
    const DeckRun r = run_deck(small_deck());
    ASSERT_TRUE(r.has("**** normal exit ****"));
    check_all(r);
    for (const char* f : {"gelmor_tyz.plt", "gelmor_hyz.plt", "t1dz.plt", "t1dz_tdum.plt"})
        EXPECT_EQ(r.dir->read(f), "") << f;
    EXPECT_TRUE(r.dir->exists("t1dz_tdum.plt"));  // opened at the start all the same
    EXPECT_FALSE(r.dir->exists("t1dz_time.plt"));
    EXPECT_TRUE(r.dir->exists("t1dx_time.plt"));  // knoy(1) and knoz(1) are set
}

TEST(PlotRuns, NoPrintTimeInsideTheRunLeavesTheFieldFilesEmpty)
{
    const DeckRun r = run_deck(small_deck({{"[print times]", "5.0 6.0 0.0 0.0 0.0"}}));
    ASSERT_TRUE(r.has("**** normal exit ****"));
    check_all(r);
    for (int k = 1; k <= 5; ++k) EXPECT_EQ(r.dir->read("tc3d" + std::to_string(k) + "_gelmor.out"), "") << k;
    // nor any 3-D vectors: the header alone
    EXPECT_EQ(r.dir->read("veloc3d.out"), "title=\"3d vectors\"\nvariables=\"x\",\"y\",\"z\",\"vx\",\"vy\",\"vz\"\n");
}

TEST(PlotRuns, AFlowOnlyRunHasHeadSectionsAndNoTemperatureSections)
{
    const DeckRun r = run_deck(small_deck({{"[options]", "0 1 0 0 0 0 1 3 0 0 0 2 0 0"}, {"[knox]", "2 0 0 0 0"}}));
    ASSERT_TRUE(r.has("**** normal exit ****"));
    check_all(r);
    for (const char* f : {"gelmor_txz.plt", "gelmor_cxz.plt", "tdif.out", "gelmor_tyz.plt", "gelmor_txy_cxy.plt",
                          "t1dz.plt", "t1dx.plt", "tbck.out", "gelmor_tpeak.plt"})
        EXPECT_EQ(r.dir->read(f), "") << f;
    EXPECT_EQ(count_of(r.dir->read("gelmor_hxz.plt"), "zone"), 3);
    EXPECT_EQ(count_of(r.dir->read("gelmor_hyz.plt"), "zone"), 3);
    EXPECT_EQ(count_of(r.dir->read("gelmor_hxy.plt"), "zone"), 3);
}

TEST(PlotRuns, ExtraOutputsWithKprt)
{
    // velocity sections at every plot step, the mass sums at every peak step
    const DeckRun r = run_deck(small_deck({{"[options]", "1 0 0 0 0 0 1 3 0 0 0 2 0 0"},
                                           {"[print times]", "5.0 6.0 0.0 0.0 0.0"},
                                           {"[T1]", "0.0 4.0 1.0 2 1 1 1 0"}}));
    ASSERT_TRUE(r.has("**** normal exit ****"));
    check_all(r);
    EXPECT_EQ(count_of(r.dir->read("veloc2dxz.out"), "zone"), 2);  // steps 2 and 4
    EXPECT_EQ(count_of(r.dir->read("veloc2dxy.out"), "zone"), 2);
    const std::vector<std::string> m = split_lines(r.dir->read("gelmor_mass.out"));
    ASSERT_EQ(m.size(), 3u + 4u);
    EXPECT_EQ(m[0], "title=\"Mass in matrix, fractures and column\"");
    EXPECT_EQ(m[1], "variables=\"tdays\",\"Mass in matrix (kg)\",\"Mass in fractures\", \"Mass in column\"");
    EXPECT_EQ(m[2], "zone i=999");
    EXPECT_EQ(m[3], "   0.100000E+01   0.000000E+00   0.000000E+00   0.000000E+00");
}

TEST(PlotRuns, TriggersOfTheTimePlotsAndThePecletPlot)
{
    // 200 steps: vertical profile every second step, horizontal one every hundredth,
    // Peclet numbers at step 1 and every 10*kmomfreq = 20 steps
    const DeckRun r = run_deck(small_deck({{"[knox]", "2 0 0 0 0"},
                                           {"[print times]", "0.0 0.0 0.0 0.0 0.0"},
                                           {"[T1]", "0.0 2.0 0.01 50 1 1000 2 0"}}));
    ASSERT_TRUE(r.has("**** normal exit ****"));
    check_all(r);
    EXPECT_NE(r.dir->read("t1dz_time.plt").find("zone i=     3,j=      101,T=\"at knox1,knoy1\"\n"), std::string::npos);
    EXPECT_NE(r.dir->read("t1dx_time.plt").find("zone i=     4,j=        3,T=\"at knoy1,knoz1\"\n"), std::string::npos);
    EXPECT_EQ(count_of(r.dir->read("gelmor_Pe_Co_xz.plt"), "zone"), 1 + 10);
    EXPECT_EQ(count_of(r.dir->read("gelmor_Pe_Co_xz.plt"), "D=(1,2)"), 10);
    // plots at steps 50, 100, 150, 200 and the setup
    EXPECT_EQ(count_of(r.dir->read("gelmor_txz.plt"), "zone"), 5);
    // peak steps every second step
    EXPECT_NE(r.dir->read("peaktrace.plt").find("number of print times:      100 (replace 9999 above)"), std::string::npos);
    EXPECT_EQ(r.dir->read("tc3d_gelmormovie.out"), "Title=\"temperature 3D\"\n"
                                                   "variables=\"x\",\"y\",\"z\",\"Temperature\",\"Concentration\"\n");
}

// The rows of a field file: x, y, z, T, C, H per node.
std::vector<std::array<double, 6>> field_rows(const std::string& text)
{
    std::vector<std::array<double, 6>> rows;
    const std::vector<std::string> lines = split_lines(text);
    for (std::size_t n = 3; n < lines.size(); ++n) {
        std::array<double, 6> v{};
        for (int k = 0; k < 6; ++k) EXPECT_TRUE(parse_e_field(std::string_view(lines[n]).substr(15 * k, 15), v[k]));
        rows.push_back(v);
    }
    return rows;
}

// Largest difference of columns [c0, c1) between two field files of the same grid.
double largest_difference(const std::string& a, const std::string& b, int c0, int c1)
{
    const auto ra = field_rows(a), rb = field_rows(b);
    EXPECT_EQ(ra.size(), rb.size());
    double d = 0;
    for (std::size_t n = 0; n < std::min(ra.size(), rb.size()); ++n)
        for (int k = c0; k < c1; ++k) d = std::max(d, std::fabs(ra[n][k] - rb[n][k]));
    return d;
}

// A slow transient (large storage) so that the state at 2 days still matters at 4.
std::string restart_deck(int kgo, const char* interval)
{
    return small_deck({{"[options]", "0 0 0 0 0 " + std::to_string(kgo) + " 1 3 0 0 0 2 0 0"},
                       {"[ss]", "0.5"},
                       {"[print times]", "2.0 4.0 0.0 0.0 0.0"},
                       {"[T1]", interval}});
}

TEST(PlotRuns, ARunContinuedFromItsFieldFileGoesOnAsTheUninterruptedRun)
{
    const DeckRun whole = run_deck(restart_deck(0, "0.0 4.0 1.0 1 1 1 1 0"));
    ASSERT_TRUE(whole.has("**** normal exit ****"));
    const std::string at2 = whole.dir->read("tc3d1_gelmor.out");
    const std::string at4 = whole.dir->read("tc3d2_gelmor.out");
    ASSERT_FALSE(at2.empty());

    for (int kgo : {1, 3}) {
        const DeckRun cont = run_deck(restart_deck(kgo, "2.0 4.0 1.0 1 1 1 1 0"), {{"therm_in.data", at2}});
        ASSERT_TRUE(cont.has("restart read successfull:")) << cont.listing;
        ASSERT_TRUE(cont.has("**** normal exit ****"));
        const std::string cont4 = cont.dir->read("tc3d2_gelmor.out");
        // the print time of 2 days lies before the continued run's first step
        EXPECT_EQ(cont.dir->read("tc3d1_gelmor.out"), "");
        EXPECT_EQ(largest_difference(cont4, at4, 0, 3), 0.0) << kgo;
        // heads within the six digits of the file: a relative 5e-7 of 10 m
        EXPECT_LT(largest_difference(cont4, at4, 5, 6), 2.0e-5) << kgo;
        if (kgo == 3) {
            EXPECT_LT(largest_difference(cont4, at4, 3, 5), 2.0e-5);
        }
    }
    // without the restart the heads of 4 days differ clearly: the test can see a failure
    const DeckRun fresh = run_deck(restart_deck(0, "2.0 4.0 1.0 1 1 1 1 0"));
    EXPECT_GT(largest_difference(fresh.dir->read("tc3d2_gelmor.out"), at4, 5, 6), 1.0e-3);
}

// The small deck with an unsaturated top level: flow on 3 levels, transport on 4.
std::string unsat_deck(int kgo, const char* interval)
{
    return small_deck({{"[options]", "0 0 0 0 0 " + std::to_string(kgo) + " 0 3 0 0 0 2 0 0"},
                       {"[ngx]", "1 1 2"},
                       {"[zg]", "2.0 3.0"},
                       {"[nlz]", "2 1"},
                       {"[ranges]", "1 9 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0"},
                       {"[ss]", "0.5"},
                       {"[knox]", "2 0 0 0 0"},
                       {"[knoz]", "4 2 0 0 0"},
                       {"[tinit]", "1 4 1 2 1 4 8.0 5.0 0"},
                       {"[cinit]", "1 4 1 2 1 4 0.0 0.0 0"},
                       {"[print times]", "2.0 4.0 0.0 0.0 0.0"},
                       {"[T1]", interval}});
}

TEST(PlotRuns, AnUnsaturatedTopZoneKeepsHeadsByFlowIndex)
{
    const DeckRun whole = run_deck(unsat_deck(0, "0.0 4.0 1.0 1 1 1 1 0"));
    ASSERT_TRUE(whole.has("**** normal exit ****")) << whole.listing.substr(0, 3000);
    check_all(whole);
    // 32 transport nodes, 24 flow nodes: the H column holds u(1..24), then zeros
    const auto rows = field_rows(whole.dir->read("tc3d1_gelmor.out"));
    ASSERT_EQ(rows.size(), 32u);
    EXPECT_EQ(rows[3][2], 3.0);   // line 4 is the top of the first column, z = 3 ...
    EXPECT_GT(rows[3][5], 9.0);   // ... and holds the head of flow node 4, (1, 2, 1)
    for (int n = 24; n < 32; ++n) EXPECT_EQ(rows[n][5], 0.0) << n;
    // the vertical profile shows the top flow head above the flow grid
    const std::vector<std::string> l = split_lines(whole.dir->read("t1dz.plt"));
    EXPECT_EQ(l[6].substr(15, 15), l[5].substr(15, 15));
    // read back with kgo = 1 the heads come back where they were
    const DeckRun cont = run_deck(unsat_deck(1, "2.0 4.0 1.0 1 1 1 1 0"),
                                  {{"therm_in.data", whole.dir->read("tc3d1_gelmor.out")}});
    ASSERT_TRUE(cont.has("restart read successfull:")) << cont.listing;
    EXPECT_LT(largest_difference(cont.dir->read("tc3d2_gelmor.out"), whole.dir->read("tc3d2_gelmor.out"), 5, 6),
              2.0e-5);
}

TEST(PlotRuns, AHeadSectionCutToOneHeadLineIsAnInitialHeadFile)
{
    const DeckRun a = run_deck(small_deck({{"[T1]", "0.0 1.0 1.0 1 1 1 1 0"}}));
    std::vector<std::string> l = split_lines(a.dir->read("gelmor_hxz.plt"));
    ASSERT_GE(l.size(), 2u + 12u + 1u + 12u);
    // the zone of the first step (lines 15..26) under one title line
    std::vector<std::string> section = {"heads after one day"};
    section.insert(section.end(), l.begin() + 15, l.begin() + 27);
    const DeckRun b = run_deck(small_deck({{"[init]", "1 0.0"}, {"[T1]", "0.0 1.0 1.0 1 1 1 1 0"}}),
                               {{"hinput.data", join_lines(section)}});
    ASSERT_TRUE(b.has("initial condition for flow has been read in")) << b.listing;
    // the setup section of the second run shows the heads read, at every y
    std::vector<std::string> lb = split_lines(b.dir->read("gelmor_hxz.plt"));
    ASSERT_GE(lb.size(), 14u);
    for (int n = 0; n < 12; ++n) {
        const int k = n % 3, ix = n / 3;
        if (ix == 0 || ix == 3) continue;  // the fixed faces take their boundary heads
        EXPECT_EQ(lb[2 + n], l[15 + n]) << n << " k=" << k;
    }
}

}  // namespace
