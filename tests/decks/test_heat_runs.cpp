#include "support/deck_run.hpp"

#include <gtest/gtest.h>

#include <sstream>

// A whole heat run with freezing.  The closed forms of heat (conduction, the periodic top,
// the Stefan front, the balance) are checked end to end by the cases of verification/.

namespace {

TEST(HeatRuns, SeasonalFrostExampleFreezesAndThawsTheTop)
{
    const DeckRun r = run_deck(example_deck("seasonal_frost"));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    // late winter (90 days): frozen from the top down to the front where half the water
    // is ice (-0.35 C).  A one-phase Neumann front at the winter's mean air temperature
    // (-5.7 C) with all latent heat freed at 0 C would stand at 1.4 m; the deck's gentle
    // freezing curve frees much of it below -0.35 C, so the half-frozen front runs deeper.
    std::istringstream rows(r.dir->read("tc3d1_gelmor.out"));
    std::string line;
    for (int i = 0; i < 3; ++i) std::getline(rows, line);
    double front = 0;
    double zlast = 0, Tlast = 0;
    while (std::getline(rows, line)) {
        std::istringstream ls(line);
        double x, y, z, T, C, H;
        ls >> x >> y >> z >> T >> C >> H;
        if (x != 0 || y != 0) continue;
        if (z > 0 && Tlast > -0.35 && T <= -0.35) front = 10.0 - (zlast + (z - zlast) * (Tlast + 0.35) / (Tlast - T));
        zlast = z;
        Tlast = T;
    }
    EXPECT_GT(front, 1.2);
    EXPECT_LT(front, 2.6);
    EXPECT_GT(Tlast, 0.0) << "the top thaws as the air warms";
}

}  // namespace
