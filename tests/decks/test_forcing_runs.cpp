#include "support/deck_run.hpp"
#include "support/small_deck.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// The rows of the last zone of a profile file, each row's numbers.
std::vector<std::vector<double>> last_zone(const std::string& text)
{
    std::vector<std::vector<double>> rows;
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) {
        if (l.rfind("zone", 0) == 0) {
            rows.clear();
            continue;
        }
        std::istringstream ls(l);
        std::vector<double> v;
        for (double x; ls >> x;) v.push_back(x);
        if (!v.empty()) rows.push_back(v);
    }
    return rows;
}

// A leaky top (heat kb(6) = 4) with its air at 3 C over ground at 5 C.
std::vector<std::pair<std::string, std::string>> leaky_top(const std::string& bz_line)
{
    return {{"[heat kb]", "0 0 0 0 0 4 0"},
            {"[heat bottom]", ""},
            {"[heat top]", ""},
            {"[tinit]", "1 4 1 2 1 3 5.0 5.0 0"},
            {"[tsets]", "1 4 3.0 0.0 365.0 0.0 -50.0 0.0 0.0 -1"},
            {"[bz]", bz_line}};
}

TEST(ForcingRuns, PatchOffTheGridStops)
{
    const DeckRun r = run_deck(small_deck({{"[T3]", "1 9 1 1 5.0 0"}}));
    EXPECT_TRUE(r.has(" boundary patch node at i,j:            4           1 is Dirichlet\n")) << r.listing;
    EXPECT_TRUE(r.has("\n          warning - surface temp patch i,j,node ")) << r.listing;
    EXPECT_TRUE(r.has_message("is not valid"));
    EXPECT_TRUE(r.has_message("program stopping ..."));
    EXPECT_FALSE(r.has("**** normal exit ****"));
}

TEST(ForcingRuns, LeakyTopWithoutLayerStops)
{
    const DeckRun r = run_deck(small_deck(leaky_top("0.0 0.0 365.0 0.0 0.0 0.0 0.0")));
    EXPECT_TRUE(r.has(" surface layer thickness bz 1,mid,nx  = ")) << r.listing;
    EXPECT_TRUE(r.has_message("error: bz or sat <= 0; check sin curve parameters")) << r.listing;
    EXPECT_TRUE(r.has_message("or check bzin.data file for bz <= 0"));
    EXPECT_FALSE(r.has("**** normal exit ****"));
}

// tcon/bz (T - Tair) = 2/0.1 * (T - 3) W/m2 upward at each top node of the row, T as the
// field file of the same day holds it (the leak has cooled the top from 5 C).
TEST(ForcingRuns, LeakyTopTransferFlux)
{
    const DeckRun r = run_deck(small_deck(leaky_top("0.1 0.0 365.0 0.0 0.0 0.0 0.0")));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has(" reference surface air temperature (x=0,XL) = "));
    const auto rows = last_zone(r.dir->read("t1dx_hflux_xl.plt"));
    ASSERT_EQ(rows.size(), 4u);
    std::istringstream field(r.dir->read("tc3d2_gelmor.out"));
    std::vector<double> T;
    std::string line;
    for (int i = 0; std::getline(field, line); ++i) {
        std::istringstream ls(line);
        double v[6];
        if (i >= 3 && (ls >> v[0] >> v[1] >> v[2] >> v[3] >> v[4] >> v[5])) T.push_back(v[3]);
    }
    ASSERT_EQ(T.size(), 24u);
    for (int ix = 1; ix <= 4; ++ix) {
        const double top = T[(ix - 1) * 6 + 2];  // node (ix, 1, 3)
        EXPECT_LT(top, 5.0);
        EXPECT_NEAR(rows[ix - 1][1], 20.0 * (top - 3.0), 2e-4) << ix;
    }
}

// Three y rows and a conductance layer whose zones differ along x: the profile at
// knoy(1) = 2 shows the values of the columns (ix, 2).
TEST(ForcingRuns, LayerProfileReadsItsOwnColumns)
{
    const std::string row = " 2  1 2 0.5 1.0 1.0e-8  3 4 0.7 2.0 3.0e-8  0.0\n";
    const DeckRun r = run_deck(small_deck({{"[yg]", "2.0"},
                                           {"[nly]", "2"},
                                           {"[ranges]", "1 12 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0"},
                                           {"[flow face 1]", "1 3 1 3 10.0 0"},
                                           {"[flow face 2]", "1 3 1 3 9.0 0"},
                                           {"[heat top]", "1 4 1 3 5.0 0"},
                                           {"[tinit]", "1 4 1 3 1 3 8.0 5.0 0"},
                                           {"[cinit]", "1 4 1 3 1 3 0.0 0.0 0"},
                                           {"[knoy]", "2 0 0 0 0"}}),
                               {{"bzin.data", "layer\n2\n0.0" + row + "10.0" + row}});
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    const auto rows = last_zone(r.dir->read("t1dx_bzq.plt"));
    ASSERT_EQ(rows.size(), 4u);
    const double bz[] = {0.5, 0.5, 0.7, 0.7}, bzf[] = {1.0, 1.0, 2.0, 2.0}, bzq[] = {1e-8, 1e-8, 3e-8, 3e-8};
    for (int i = 0; i < 4; ++i) {
        EXPECT_DOUBLE_EQ(rows[i][3], bz[i]) << i;
        EXPECT_DOUBLE_EQ(rows[i][4], bzf[i]) << i;
        EXPECT_DOUBLE_EQ(rows[i][5], bzq[i]) << i;
    }
}

}  // namespace
