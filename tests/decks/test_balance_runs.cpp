#include "support/deck_run.hpp"
#include "support/small_deck.hpp"
#include "support/tecplot_check.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

// Heat and fluid balances, monitor wells, freezing fronts and heater means of whole runs,
// against hand sums and closed forms.

namespace {

// The numbers that follow each occurrence of `label` in the listing.
std::vector<double> values_after(const DeckRun& r, const std::string& label)
{
    std::vector<double> v;
    for (std::size_t p = r.listing.find(label); p != std::string::npos; p = r.listing.find(label, p + 1)) {
        std::istringstream in(r.listing.substr(p + label.size(), 40));
        double x = 0;
        if (in >> x) v.push_back(x);
    }
    return v;
}

// Data rows of a result file after its header lines.
std::vector<std::vector<double>> rows(const std::string& text, int skip)
{
    std::vector<std::vector<double>> out;
    int n = 0;
    for (const std::string& l : split_lines(text)) {
        if (n++ < skip || l.empty()) continue;
        std::istringstream in(l);
        std::vector<double> row;
        double x = 0;
        while (in >> x) row.push_back(x);
        if (!row.empty()) out.push_back(row);
    }
    return out;
}

// Heat only with v1, no heat boundaries, equal heads on both x faces: nothing crosses the
// boundary and the stored heat must stay.
const std::vector<std::pair<std::string, std::string>> insulated = {
    {"[options]", "0 0 0 0 0 0 1 0 0 0 0 1 0 0"},
    {"[flow face 2]", "1 2 1 3 10.0 0"},
    {"[heat kb]", "0 0 0 0 0 0 0"},
    {"[heat bottom]", ""},
    {"[heat top]", ""},
    {"[mass kb]", ""},
    {"[cinit]", ""},
    {"[T1]", "0.0 10.0 1.0 1 1 1 1 0"},
};

std::vector<std::pair<std::string, std::string>> with(std::vector<std::pair<std::string, std::string>> base,
                                                      const std::vector<std::pair<std::string, std::string>>& more)
{
    base.insert(base.begin(), more.begin(), more.end());  // the first match of a tag wins
    return base;
}

}  // namespace

TEST(BalanceRuns, SoluteRunHasNoHeatContent)
{
    const DeckRun r = run_deck(small_deck({{"[options]", "0 0 0 0 0 0 1 1 0 0 0 1 0 0"},
                                           {"[heat kb]", "0 0 0 0 0 0 0"},
                                           {"[heat bottom]", ""},
                                           {"[heat top]", ""},
                                           {"[tinit]", ""}}));
    ASSERT_EQ(r.status, 0) << r.listing;
    EXPECT_FALSE(r.has("heat balance (%)"));
    EXPECT_FALSE(r.has("initial absolute heat content"));
    for (const auto& row : rows(r.dir->read("htot_flux.plt"), 3))
        if (row.size() == 6) {
            EXPECT_EQ(row[1], 0.0);
            EXPECT_EQ(row[2], 0.0);
        }
}

// A doublet: 1e-6 m3/s a node injected at 20 C over the column x = 1, the same withdrawn
// at x = 2, in ground between 20 C at the bottom and 5 C at the top.  The fluid lines are q dt; the efficiency is the ratio of the two totals.
TEST(BalanceRuns, DoubletFluidLinesAndRecovery)
{
    const double q = 1.0e-6, dt = 86400.0;
    const DeckRun r = run_deck(small_deck(with(insulated, {{"[T5]", "2 1 1 3 1.0e-6 20.0 0.0 1\n3 1 1 3 -1.0e-6 0.0 0.0 0"},
                                                                {"[tinit]", "1 4 1 2 1 3 20.0 5.0 0"}})));
    ASSERT_EQ(r.status, 0) << r.listing;
    const auto in = values_after(r, "fluid volume injected  this step: ");
    const auto out = values_after(r, "fluid volume withdrawn this step: ");
    ASSERT_EQ(in.size(), 10u);
    ASSERT_EQ(out.size(), 10u);
    for (double v : in) EXPECT_NEAR(v, 3 * q * dt, 1e-12);
    for (double v : out) EXPECT_NEAR(v, -3 * q * dt, 1e-12);

    const double hin = values_after(r, "total thermal energy injected  above ambient:").at(0);
    const double hout = values_after(r, "total thermal energy recovered above ambient:").at(0);
    const double eff = values_after(r, "thermal recovery efficiency (%) ... ").at(0);
    EXPECT_GT(hin, 0);
    EXPECT_NEAR(eff, 100 * std::fabs(hout / hin), 1e-9 * eff);
    // the fixed heads of the x faces let some of the injected water and its heat leave
    // unseen, so the balance is not closed: it stays within 5 % a step (3 % in this run)
    for (double b : values_after(r, "heat balance (%) ..................  ")) EXPECT_LT(std::fabs(b), 5.0) << b;
}

TEST(BalanceRuns, RecoveryUndefinedWithoutInjection)
{
    const DeckRun r = run_deck(small_deck(with(insulated, {{"[T5]", "4 1 1 3 -1.0e-6 0.0 0.0 0"}})));
    ASSERT_EQ(r.status, 0) << r.listing;
    EXPECT_TRUE(r.has(" thermal energy recovery undefined"));
    EXPECT_FALSE(r.has("thermal recovery efficiency"));
}

// Two wells in the steady deck: heads fall linearly from 10 m at x = 0 to 9 m at x = 3,
// temperatures from 8 C at the bottom to 5 C at the top, no solute; to the solvers' 1e-4.
TEST(HistoryRuns, WellMeansAndExtremes)
{
    const DeckRun r = run_deck(small_deck({{"[wells]", "2 1 1 3 1\n3 2 2 3 0"}}));
    ASSERT_EQ(r.status, 0) << r.listing;
    const std::string brk = r.dir->read("break.plt");
    EXPECT_TRUE(check_plot_text(brk, e_rows(6, 15, 6)).ok()) << check_plot_text(brk, e_rows(6, 15, 6)).text();
    EXPECT_EQ(split_lines(brk).at(0), "title=\"breakthrough data set at      2 wells\"");
    EXPECT_EQ(split_lines(brk).at(2), "zone i=      2, T=\"monitor   1\"");
    const auto w = rows(brk, 3);  // two rows of each well
    ASSERT_EQ(w.size(), 4u);
    const double well1[] = {10.0 - 1.0 / 3.0, 6.5, 8.0, 5.0, 0.0};
    const double well2[] = {10.0 - 2.0 / 3.0, 5.75, 6.5, 5.0, 0.0};
    for (int n = 0; n < 2; ++n)
        for (int c = 1; c <= 5; ++c) {
            EXPECT_NEAR(w[n][c], well1[c - 1], 2e-4) << n << " " << c;
            EXPECT_NEAR(w[2 + n][c], well2[c - 1], 2e-4) << n << " " << c;
        }
    EXPECT_NEAR(w[1][0], 2.0, 1e-6);
}

TEST(HistoryRuns, WellsOffTheGridAndNone)
{
    const DeckRun bad = run_deck(small_deck({{"[wells]", "9 1 1 3 0"}}));
    EXPECT_TRUE(bad.has_message("error in breakthrough curve nodes ixw() etc.")) << bad.listing;
    EXPECT_TRUE(bad.has_message("btc node =           49"));
    EXPECT_TRUE(bad.has_message("stopping ..."));

    const DeckRun none = run_deck(small_deck({}));
    ASSERT_EQ(none.status, 0);
    EXPECT_EQ(none.dir->read("break.plt"), "title=\"breakthrough data set at      0 wells\"\n"
                                           "variables=\"time\",\"Havg\",\"Tavg\",\"Tpeak\",\"Tmin\",\"cpkwell\"\n");
}

namespace {
// One short step of heat only, insulated, on the grid and initial field given: the field
// hardly moves, so the fronts are those of the initial field.
std::vector<std::pair<std::string, std::string>> frozen_start(std::vector<std::pair<std::string, std::string>> grid)
{
    return with(with(insulated, {{"[T1]", "0.0 0.001 0.001 1 1 1 1 0"}}), grid);
}
}  // namespace

// Rows x = 0..3 at -4, -2, 0, 2 C on a grid of one element layer: Ts = -1 C lies half way
// between x = 1 and x = 2.  A row all above Ts has its front at x(1).
TEST(HistoryRuns, FrontAlongX)
{
    const std::vector<std::pair<std::string, std::string>> row = {
        {"[nlz]", "1"},
        {"[ranges]", "1 3 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0"},
        {"[flow face 1]", "1 2 1 2 10.0 0"},
        {"[flow face 2]", "1 2 1 2 10.0 0"},
        {"[knoz]", "1 0 0 0 0"}};
    auto deck = row;
    deck.push_back({"[tinit]", "1 1 1 2 1 2 -4.0 -4.0 1\n2 2 1 2 1 2 -2.0 -2.0 1\n3 3 1 2 1 2 0.0 0.0 1\n"
                               "4 4 1 2 1 2 2.0 2.0 0"});
    const DeckRun r = run_deck(small_deck(frozen_start(deck)));
    ASSERT_EQ(r.status, 0) << r.listing;
    const std::string xf = r.dir->read("gelmor_1dxfront.plt");
    EXPECT_TRUE(check_plot_text(xf, e_rows(2, 15, 5)).ok()) << xf;
    EXPECT_EQ(split_lines(xf).at(0), "title=\"freezing front location: 1dx at knoy(1),knoz(1)\"");
    EXPECT_NEAR(rows(xf, 3).at(0).at(1), 1.5, 1e-3);

    // one element along x, both x faces held at 5 C: the first pair is equal and above Ts
    const DeckRun w = run_deck(small_deck(frozen_start(
        {{"[xg]", "3.0"}, {"[nlx]", "1"}, {"[nlz]", "1"}, {"[ranges]", "1 1 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0"},
         {"[flow face 1]", "1 2 1 2 10.0 0"}, {"[flow face 2]", "1 2 1 2 10.0 0"}, {"[knoz]", "1 0 0 0 0"},
         {"[heat kb]", "1 1 0 0 0 0 0\n1 2 1 2 5.0 0\n1 2 1 2 5.0 0"}, {"[tinit]", "1 2 1 2 1 2 5.0 5.0 0"}})));
    ASSERT_EQ(w.status, 0) << w.listing;
    const std::string wf = w.dir->read("gelmor_1dxfront.plt");
    EXPECT_EQ(wf.find("NaN"), std::string::npos);
    EXPECT_TRUE(check_plot_text(wf, e_rows(2, 15, 5)).ok()) << wf;
    EXPECT_EQ(rows(wf, 3).at(0).at(1), 0.0);
}

// On a grid neither one layer nor one row deep the fronts are not looked for.
TEST(HistoryRuns, NoFrontsOnOtherGrids)
{
    const DeckRun w = run_deck(small_deck(insulated));
    ASSERT_EQ(w.status, 0);
    for (const char* f : {"gelmor_1dxfront.plt", "gelmor_1dzfront.plt"}) {
        const auto rs = rows(w.dir->read(f), 3);
        ASSERT_EQ(rs.size(), 10u) << f;
        for (const auto& row : rs)
            for (std::size_t c = 1; c < row.size(); ++c) EXPECT_EQ(row[c], 0.0) << f;
    }
}

// A column from 3 C at the bottom to -3 C at the top, 2 m high: T = Ts = -1 C at 2/3 m
// below the top, found from above by both walks.
TEST(HistoryRuns, FrontDownTheColumn)
{
    const DeckRun r = run_deck(small_deck(frozen_start({
        {"[xg]", "3.0"},
        {"[nlx]", "1"},
        {"[nlz]", "4"},
        {"[ranges]", "1 4 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0"},
        {"[flow face 1]", "1 2 1 5 10.0 0"},
        {"[flow face 2]", "1 2 1 5 10.0 0"},
        {"[tinit]", "1 2 1 2 1 5 3.0 -3.0 0"},
    })));
    ASSERT_EQ(r.status, 0) << r.listing;
    const std::string zf = r.dir->read("gelmor_1dzfront.plt");
    EXPECT_TRUE(check_plot_text(zf, e_rows(3, 15, 5)).ok()) << zf;
    EXPECT_EQ(split_lines(zf).at(1), "variables=\"time(days)\",\" z_T>0\",\"z_T<0\"");
    const auto z = rows(zf, 3).at(0);
    EXPECT_NEAR(z.at(1), 2.0 / 3.0, 1e-3);
    EXPECT_NEAR(z.at(2), 2.0 / 3.0, 1e-3);
}

// T = z in a column of 25 layers of 2 cm with a heater over its whole height: the levels
// are the layers 12 cm clear of both ends (z1 = 0.12 .. 0.36), and each mean is the mean
// node height of its window, 4 cm below the layer to 8 cm above it: z1 + 0.02.
TEST(HistoryRuns, HeaterMeansOfALinearField)
{
    const DeckRun r = run_deck(small_deck(frozen_start({
        {"[xg]", "1.0"},
        {"[zg]", "0.5"},
        {"[nlx]", "1"},
        {"[nlz]", "25"},
        {"[ranges]", "1 25 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0"},
        {"[flow face 1]", "1 2 1 26 10.0 0"},
        {"[flow face 2]", "1 2 1 26 10.0 0"},
        {"[tinit]", "1 2 1 2 1 26 0.0 0.5 0"},
        {"[knoz]", "1 0 0 0 0"},
        {"[T4]", "1 1 1 1 1 25 0.0 0.0 0.0 0"},
    })));
    ASSERT_EQ(r.status, 0) << r.listing;
    const std::string pz = r.dir->read("heatercolumnavg_1Dz.plt");
    EXPECT_TRUE(check_plot_text(pz, e_rows(2, 15, 5)).ok()) << pz;
    const auto lv = rows(pz, 3);
    ASSERT_EQ(lv.size(), 13u);
    for (int m = 0; m < 13; ++m) {
        const double z1 = 0.12 + 0.02 * m;
        EXPECT_NEAR(lv[m][0], z1 + 0.01, 1e-6);
        EXPECT_NEAR(lv[m][1], z1 + 0.02, 1e-4);
    }
    const std::string pt = r.dir->read("heatercolumnavg_vs_t.plt");
    EXPECT_TRUE(check_plot_text(pt, e_rows(2, 15, 6)).ok()) << pt;
    EXPECT_EQ(check_plot_text(pt, e_rows(2, 15, 6)).zones, 13);
}

// The steady deck at its moment steps: 1.5 C/m upward through 3 m2 of top and bottom at
// the bulk conductivity of water-filled ground, all 1.8 m3 of pore water unfrozen.
TEST(BalanceRuns, BoundaryFluxesOfTheSteadyDeck)
{
    const DeckRun r = run_deck(small_deck({}));
    ASSERT_EQ(r.status, 0) << r.listing;
    const std::string bf = r.dir->read("heatflux_bndy.plt");
    EXPECT_TRUE(check_plot_text(bf, e_rows(10, 15, 5)).ok()) << bf;
    const double s = 0.3 * std::sqrt(0.58) + 0.7 * std::sqrt(2.0);
    const auto q = rows(bf, 2);
    ASSERT_EQ(q.size(), 2u);
    for (const auto& row : q) {
        EXPECT_NEAR(row[5], 4.5 * s * s, 1e-3 * 4.5 * s * s);
        EXPECT_NEAR(row[6], 4.5 * s * s, 1e-3 * 4.5 * s * s);
        EXPECT_NEAR(row[7], 1.8, 1e-4);
    }
}

namespace {

// The same steady deck: its surface files at the moment steps, and the peak trace.
TEST(BalanceRuns, SurfaceFluxesAndPeakTraceOfTheSteadyDeck)
{
    const DeckRun r = run_deck(small_deck({}));
    ASSERT_EQ(r.status, 0) << r.listing;
    const double s = 0.3 * std::sqrt(0.58) + 0.7 * std::sqrt(2.0), k = s * s;
    // conduction only (the water flows along x): 1.5 C/m times k out of every top stack
    const std::string top = r.dir->read("heatfluxtop.plt");
    int n = 0;
    std::istringstream in(top);
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream ls(line);
        std::vector<double> v;
        for (double x; ls >> x;) v.push_back(x);
        if (v.size() != 15) continue;
        EXPECT_NEAR(std::fabs(v[11]), 1.5 * k, 2e-3 * 1.5 * k) << line;  // cond.flux W/m2
        EXPECT_NEAR(v[13], 5.75, 1e-4);                                    // T of the top element
        ++n;
    }
    EXPECT_GT(n, 0);
    // the peak and the minimum of the y plane: the base and the top
    const auto pk = rows(r.dir->read("peaktrace.plt"), 2);
    ASSERT_FALSE(pk.empty());
    for (const auto& row : pk) {
        EXPECT_NEAR(row[1], 8.0, 1e-6);
        EXPECT_NEAR(row[2], 5.0, 1e-6);
    }
}

}  // namespace
