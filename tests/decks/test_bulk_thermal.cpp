#include "output/fortran_format.hpp"
#include "support/deck_run.hpp"
#include "support/small_deck.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(BulkThermal, SquareRootMixingOfWaterIceAndSolid)
{
    // all nodes at 5 C: unfrozen (Wu = 1), so only water and solid mix
    const DeckRun r = run_deck(small_deck({{"[tinit]", "1 4 1 2 1 3 5.0 5.0 0"}}));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    const double s = 0.3 * std::sqrt(0.58) + 0.7 * std::sqrt(2.0);
    EXPECT_TRUE(r.has(" using square-root thermal K weighting\n Initial limits for bulk thermal K of porous medium:\n" +
                      free_line("minimum thermal K: ", s * s)))
        << r.listing;
    // element 1 at 5 C: saturated capacity 0.3 pw(5) cf + 0.7 csol; latent 0.3 rhoi wlh
    EXPECT_TRUE(r.has(free_line("latent heat coefficient (L*p*ww):       ", 0.3 * 917.0 * 334000.0)));
    EXPECT_TRUE(r.has(free_line("ww: unfrozen water content:             ", 1.0)));
}

TEST(BulkThermal, NoConductingPhaseStops)
{
    // no solid conductivity and an ice-free, water-free pore space cannot conduct
    const DeckRun r = run_deck(small_deck({{"[ranges]", "1 6 1.0e-5 1.0e-5 1.0e-5 0.0 800.0 2650.0 0.3 1.0 0"},
                                           {"[thermal]", "4186.0 1000.0 2100.0 917.0 0.0 0.0 334000.0"}}));
    EXPECT_TRUE(r.has_message("error ... bulk thermal K <= 0")) << r.listing;
}

}  // namespace
