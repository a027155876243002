#include "support/deck_run.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

// Whole flow runs with a free water table, against the Dupuit solution.

namespace {

// A section 100 m long over a flat base, 20 columns of 5 m, ten layers of 1 m up to 10 m,
// heads h1 at x = 0 and h2 at x = 100 m on the whole faces, K = 1e-5 m/s, flow only with
// a free top (kwt 1) over all ten layers; one long step to the steady state.
const char* const one_zone = "1 1 1\n100.0\n1.0\n10.0\n20\n1\n10";
std::string dupuit_deck(const std::string& options, double h2, const std::string& z_intervals = one_zone,
                        const std::string& flow_top = "", int nzt = 11)
{
    std::ostringstream d;
    d << "dupuit\nunconfined flow between two fixed heads\nflow only\n"
      << options << "\n" << z_intervals << "\n"
      << "10 0.0 0.0\n0 0 0 0 0\n0 0 0 0 0 0 0 0 0.0 0\n"
      << (flow_top.empty() ? "1 1 0 0 0 0 0\n" : "1 1 0 0 0 1 0\n")
      << "1 2 1 11 10.0 0\n1 2 1 11 " << h2 << " 0\n" << flow_top
      << "1 " << (nzt - 1) * 20 << " 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0\n"
         "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n1.0e-4\n0 8.0\n0 0 0 0 0 0 0\n2.0 0.3 1.0\n"
         "1 21 5.0 0.0 365.0 0.0 -50.0 0.0 0.0 -1\n0.1 0.0 365.0 0.0 0.0 0.0 0.0\n"
         "1.0 0.0 365.0 0.0 0.0 0.0 0.0\n0.0 0.0 1.0 0.0 0.0 0.0 0.0\n0 0.0 0.0 0.0 1\n"
         "0.0 0.0 0.0 0.0 0.0 1.0 0.0 0.0 0\n4186.0 1000.0 2100.0 917.0 0.6 2.24 334000.0\n"
         "0.05 1.0 -1.0 1.0 0 0\n0.05 1.0 -1.0 1.0 0 0\n"
      << "1 21 1 2 1 " << nzt << " 5.0 5.0 0\n"
      << "1.0e-6 1.0e-3 1.0e-4 1.0e-3 3 50\n0.0 0.0 5.0\n0 0 0 0 0\n1 0 0 0 0\n0 0 0 0 0\n"
         "1000.0 0.0 0.0 0.0 0.0\n0.0 1000.0 1000.0 1 1 1 1 0\n0.0 1.0 0.0 1.0\n"
         "0 0 0 0 0.0 0\n0 0 0 0 0 0 0.0 0.0 0.0 0\n0 0 0 0 0.0 0.0 0.0 0\n";
    return d.str();
}

// x, z, H of every node of the field file, z fastest.
std::vector<std::vector<double>> field_rows(const std::string& text)
{
    std::vector<std::vector<double>> rows;
    std::istringstream in(text);
    std::string line;
    for (int i = 0; std::getline(in, line); ++i) {
        if (i < 3) continue;
        std::istringstream ls(line);
        std::vector<double> r(6);
        for (double& v : r) ls >> v;
        rows.push_back(r);
    }
    return rows;
}

TEST(WaterTableRuns, UnsaturatedLayersKeepTheirTopAtTheDecks)
{
    // two more layers of transport grid above the flow grid, up to 12 m
    const DeckRun r = run_deck(
        dupuit_deck("0 1 1 0 0 0 0 0 0 0 0 1 0 0", 6.0, "1 1 2\n100.0\n1.0\n10.0 12.0\n20\n1\n10 2", "", 13));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    const auto rows = field_rows(r.dir->read("tc3d1_gelmor.out"));
    ASSERT_EQ(rows.size(), 21u * 2 * 13);
    for (int i = 0; i <= 20; ++i) {
        const auto col = [&](int k) { return rows[(std::size_t)i * 26 + k]; };
        EXPECT_DOUBLE_EQ(col(12)[2], 12.0);
        EXPECT_LT(col(10)[2], 10.0 + 1e-9);  // the water table under it
        // evenly respaced, to the six digits of the file
        EXPECT_NEAR(col(11)[2] - col(10)[2], col(12)[2] - col(11)[2], 2e-4);
    }
}

TEST(WaterTableRuns, TableDrawnBelowTheBaseStops)
{
    const DeckRun r = run_deck(dupuit_deck("0 1 1 0 0 0 1 0 0 0 0 1 0 0", -1.0));
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.has("\n          negative dz detected ... surface node# ")) << r.listing;
    for (const char* l : {"your flow grid is trying to deform down too much",
                          "check flow boundary conditions, number of deformable",
                          "layers (nwtl), datum, grid coordinates and dimensions"})
        EXPECT_TRUE(r.has_message(l)) << l;
    EXPECT_FALSE(r.has("normal exit"));
}

TEST(WaterTableRuns, NoFreeColumnPassesAtOnce)
{
    // kwt 2 and every top node held: no column may move
    const DeckRun r = run_deck(dupuit_deck("0 1 2 0 0 0 1 0 0 0 0 1 0 0", 6.0, one_zone, "1 21 1 2 8.0 0\n"));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has(" max. difference at free watertable:    999.00000000000000       node:         -999\n"))
        << r.listing;
    EXPECT_TRUE(r.has(" watertable has converged in            0  iterations"));
}

}  // namespace
