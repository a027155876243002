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

TEST(PlotRuns, EveryFileOfTheExampleDeckPassesTheStrictReader)
{
    const DeckRun& r = example_run();
    ASSERT_TRUE(r.has("**** normal exit ****"));
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
    return small_deck({{"[options]", "0 0 0 0 0 " + std::to_string(kgo) + " 1 3 0 0 0 1 0 0"},
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

}  // namespace
