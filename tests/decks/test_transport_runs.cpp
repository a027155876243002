#include "support/closed_forms.hpp"
#include "support/deck_run.hpp"
#include "support/small_deck.hpp"
#include "support/tecplot_check.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

// Whole runs of the mass and age steps: wiring, the saltwater heads, the Peclet file and
// the refusal of a retardation that would divide by zero.

namespace {

std::vector<std::vector<double>> rows_of(const std::string& text, int skip)
{
    std::vector<std::vector<double>> rows;
    std::istringstream in(text);
    std::string line;
    for (int i = 0; std::getline(in, line); ++i) {
        if (i < skip) continue;
        std::istringstream ls(line);
        std::vector<double> r;
        for (double v; ls >> v;) r.push_back(v);
        rows.push_back(r);
    }
    return rows;
}

TEST(TransportRuns, FixedHeadsCarryTheWeightOfTheSaltColumn)
{
    // salt enters from the top; every fixed head of the x faces becomes its deck value plus
    // gammac times the concentration column above it, trapezoidal by half layers
    const double gammac = 0.5;
    const DeckRun r = run_deck(small_deck({{"[nwtl]", "0 0.0 0.5"},
                                           {"[mass kb]", "0 0 0 0 0 1 0\n1 4 1 2 1.0 0"},
                                           {"[disp]", "1.0 0.1 0.1 0.01 1.0e-6 1.0 0.0 0.0 0"}}));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has("mass transport(v2) solution complete at t= "));
    EXPECT_TRUE(r.has(" h_adjust: i,j,k,t2,zdiff,beta,fc,htide: "));
    // columns of 3 nodes at z = 0, 1, 2; row n - 1 of the field file is node n
    const auto rows = rows_of(r.dir->read("tc3d2_gelmor.out"), 3);
    ASSERT_EQ(rows.size(), 24u);
    int checked = 0;
    for (int ix : {1, 4})
        for (int iy = 1; iy <= 2; ++iy) {
            const int base = (ix - 1) * 2 * 3 + (iy - 1) * 3;
            const double c1 = rows[base][4], c2 = rows[base + 1][4], c3 = rows[base + 2][4];
            const double fc0 = ix == 1 ? 10.0 : 9.0;
            EXPECT_GT(c2, 1e-6) << "salt has moved down";
            const double want[] = {fc0 + gammac * (0.5 * c3 + c2 + 0.5 * c1), fc0 + gammac * (0.5 * c3 + c2),
                                   fc0 + gammac * 0.5 * c3};
            for (int k = 0; k < 3; ++k) {
                // six digits in the file: half a unit of the last near 10 m
                EXPECT_NEAR(rows[base + k][5], want[k], 6e-5) << ix << "," << iy << "," << k + 1;
                ++checked;
            }
        }
    EXPECT_EQ(checked, 12);
    // the setup echo walks the top nodes of the last y row: 6, 12, 18, 24
    EXPECT_NE(r.listing.find("    ix, node       x           conc.       u0(m)\n           1           6 "),
              std::string::npos);
}

TEST(TransportRuns, PecletFileWithAndWithoutDispersion)
{
    for (const char* disp : {"1.0 0.1 0.1 0.01 1.0e-9 1.0 0.0 0.0 0", "0.0 0.0 0.0 0.0 0.0 1.0 0.0 0.0 1"}) {
        const DeckRun r = run_deck(small_deck({{"[disp]", disp}}));
        ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
        const std::string pe = r.dir->read("gelmor_Pe_Co_xz.plt");
        const CheckReport rep = check_plot_text(pe, e_rows(6, 15, 6));
        EXPECT_TRUE(rep.ok()) << rep.text();
        // with D = 0 the Peclet numbers are 1.0E+30, signed like the velocity
        const bool none = disp[0] == '0';
        EXPECT_EQ(pe.find("0.100000E+31") != std::string::npos, none) << pe;
        EXPECT_EQ(pe.find("NaN") == std::string::npos && pe.find("Inf") == std::string::npos, true);
    }
}

TEST(TransportRuns, AgeRunHasNoMassBoundarySection)
{
    // kmass 2: no heat or mass boundary sections, no initial concentrations; the age of
    // still water grows by agefx dt a step everywhere
    const DeckRun r = run_deck(small_deck({{"[options]", "0 2 0 0 0 0 1 2 0 0 0 2 0 0"},
                                           {"[heat kb]", ""},
                                           {"[heat bottom]", ""},
                                           {"[heat top]", ""},
                                           {"[mass kb]", ""},
                                           {"[cinit]", ""},
                                           {"[ivel]", "1 0.0 0.0 0.0 1"},
                                           {"[disp]", "1.0 0.1 0.1 0.01 1.0e-9 1.0 0.0 1.0 0"}}));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has("age transport option in effect"));
    EXPECT_FALSE(r.has("mass transport boundary arrays"));
    EXPECT_TRUE(r.has("mass transport(v2) solution complete at t= "));
    EXPECT_TRUE(r.has("     dcmx=   -999.0"));
    // two daily steps: age 2 days in seconds at every node
    for (const auto& row : rows_of(r.dir->read("tc3d2_gelmor.out"), 3)) EXPECT_NEAR(row[4], 2 * 86400.0, 1e-3);
    EXPECT_EQ(r.dir->read("gelmor_cxz.plt").find("zone"), std::string::npos);
}

TEST(TransportRuns, RetardationOfZeroIsRefused)
{
    for (const char* opts : {"0 0 0 0 0 0 1 3 0 0 0 1 0 0", "0 0 0 0 0 0 1 1 0 0 0 1 0 0"}) {
        std::vector<std::pair<std::string, std::string>> rep = {{"[options]", opts},
                                                                {"[disp]", "1.0 0.1 0.1 0.01 1.0e-9 0.0 0.0 0.0 0"}};
        if (opts[14] == '1') {
            rep.push_back({"[heat kb]", ""});
            rep.push_back({"[heat bottom]", ""});
            rep.push_back({"[heat top]", ""});
        }
        const DeckRun r = run_deck(small_deck(rep));
        EXPECT_EQ(r.status, 0);
        EXPECT_TRUE(r.has_message("error, retardation ret must be greater than 0 for mass or age transport"))
            << r.listing;
        EXPECT_TRUE(r.has_message("program stopping ..."));
        EXPECT_FALSE(r.has("normal exit"));
    }
    // heat alone never divides by ret
    const DeckRun h = run_deck(small_deck({{"[options]", "0 0 0 0 0 0 1 0 0 0 0 2 0 0"},
                                           {"[mass kb]", ""},
                                           {"[cinit]", ""},
                                           {"[disp]", "1.0 0.1 0.1 0.01 1.0e-9 0.0 0.0 0.0 0"}}));
    EXPECT_TRUE(h.has("**** normal exit ****")) << h.listing;
}

TEST(TransportRuns, FreezingPassesThatDoNotSettleEndAtTheLimit)
{
    // the top held at -5 C freezes the ground in both formulations; with cct far below
    // what the passes reach every step ends after maxit1 + 1 = 4 passes and goes on
    for (const char* opts : {"0 0 0 0 0 0 1 3 0 0 0 1 0 0", "0 0 0 0 0 0 1 3 0 0 0 2 0 0"}) {
        const DeckRun r = run_deck(small_deck({{"[options]", opts},
                                               {"[heat top]", "1 4 1 2 -5.0 0"},
                                               {"[cc]", "1.0e-4 1.0e-14 1.0e-2 1.0e-3 3 3"}}));
        ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
        const std::string done = opts[22] == '1' ? "heat transport(v1) solution complete at t= "
                                                 : "heat transport(v2) solution complete at t= ";
        EXPECT_EQ(count_of(r.listing, done), 8) << opts;
        EXPECT_EQ(count_of(r.listing, " non-linear iteration # (kit):            3\n"), 2);
        EXPECT_EQ(count_of(r.listing, " thermal/concentration iteration limit reached at this time step"), 2);
        EXPECT_FALSE(r.has("thermal solution has converged in"));
    }
}

TEST(TransportRuns, WellInTheSoluteColumnSeesTheFrontPass)
{
    // a well screened over the whole height at x = 20 m: its peak concentration follows
    // the Ogata-Banks breakthrough there, step by step
    std::string deck = example_deck("solute_column");
    const std::string none = "0 0 0 0 0                     monitor wells: none (one dummy record)";
    ASSERT_NE(deck.find(none), std::string::npos);
    deck.replace(deck.find(none), none.size(), "41 1 1 2 0");
    const DeckRun r = run_deck(deck);
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    std::istringstream in(r.dir->read("break.plt"));
    std::string line;
    int rows = 0;
    while (std::getline(in, line)) {
        std::istringstream ls(line);
        double t, havg, tavg, tpk, tmin, cpk;
        if (!(ls >> t >> havg >> tavg >> tpk >> tmin >> cpk)) continue;
        ++rows;
        EXPECT_NEAR(cpk, ogata_banks(20.0, t * 86400.0, 1e-5, 0.5e-5), 0.01) << "t = " << t;
        EXPECT_DOUBLE_EQ(havg, 10.0);  // the uniform initial head, never solved (ivel 1)
        EXPECT_DOUBLE_EQ(tavg, 5.0);
    }
    EXPECT_EQ(rows, 800);
}

}  // namespace
