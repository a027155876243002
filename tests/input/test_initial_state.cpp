#include "base/options.hpp"
#include "element/fluid.hpp"
#include "grid/gengrid.hpp"
#include "input/initial_state.hpp"
#include "support/box_grid.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// 3 x 2 x 3 nodes, unit bricks, saturated; a heat and a mass index with no fixed node.
struct State {
    Grid g;
    Options opt;
    Deck deck;
    FieldIndex heat, mass, flow;
    Fields f;
    std::ostringstream out;
    State()
    {
        g = box_grid(2, 1, 2, 1.0, 1.0, 1.0);
        opt.ksat = 1;
        opt.kmass = 3;
        for (FieldIndex* fi : {&heat, &mass, &flow}) {
            fi->nn = g.nnt;
            fi->idir.assign(g.nnt + 1, 0);
            fi->fc.assign(g.nnt + 1, 0.0);
        }
        size_fields(f, g.nn, g.nnt);
        deck.tinit.push_back({1, 3, 1, 2, 1, 3, 8.0, 5.0});
        deck.cinit.push_back({1, 3, 1, 2, 1, 3, 0.25, 0.25});
    }
    int node(int i, int j, int k) const { return grid_node(i, j, k, g.ny, g.nzt); }
    bool run() { return set_initial_transport(Listing{&out}, opt, deck, g, heat, mass, f); }
};

TEST(InitialState, BlocksRiseLinearlyAndFixedNodesKeepTheirValues)
{
    State s;
    const int fixed = s.node(2, 1, 3), unset = s.node(3, 2, 3);
    s.heat.idir[fixed] = 1;
    s.heat.fc[fixed] = 4.0;
    s.heat.idir[unset] = 1;
    s.heat.fc[unset] = -999.0;  // a fixed node without a value takes the block's
    EXPECT_FALSE(s.run());
    EXPECT_DOUBLE_EQ(s.f.t1[s.node(1, 1, 1)], 8.0);
    EXPECT_DOUBLE_EQ(s.f.t10[s.node(1, 2, 2)], 6.5);
    EXPECT_DOUBLE_EQ(s.f.t1i[s.node(3, 1, 3)], 5.0);
    EXPECT_DOUBLE_EQ(s.f.t1[fixed], 4.0);
    EXPECT_DOUBLE_EQ(s.heat.fc[unset], 5.0);
    EXPECT_DOUBLE_EQ(s.f.t2[s.node(2, 2, 2)], 0.25);
    EXPECT_NE(s.out.str().find(" min/max temps :    5.0000000000000000        8.0000000000000000"), std::string::npos);
}

TEST(InitialState, LeakyTopTurnsTheGradientOffAndColdValuesCanFreeze)
{
    State s;
    s.heat.kb[6] = 4;
    s.deck.tinit[0].t_bot = -1.0;
    EXPECT_TRUE(s.run());
    EXPECT_DOUBLE_EQ(s.f.t1[s.node(2, 1, 3)], -1.0);
}

TEST(InitialState, MinusNineNineNineOnTheTopMeansTheCosineAirTemperature)
{
    State s;
    s.heat.last_value = -999.0;
    s.deck.tsurf_sets[1] = {1, 2, 2.0, 3.0, 365.0, 10.0, -50.0, 0.0, 0.5};
    s.run();
    for (int ix = 1; ix <= 3; ++ix) {
        const int n = s.node(ix, 2, 3);
        const double want = ix <= 2 ? cosine_forcing(2.0, 3.0, 365.0, 10.0, 0.0, -50.0, 0.0) + 0.5 * (ix - 1) : 5.0;
        EXPECT_DOUBLE_EQ(s.f.t1[n], want) << ix;
        if (ix <= 2) {
            EXPECT_DOUBLE_EQ(s.heat.fc[n], want);
        }
    }
}

TEST(InitialState, SaltwaterHeadsUnderAConcentrationColumn)
{
    State s;
    ForcingTables t;
    t.hwcol.assign(10, 0.0);
    std::vector<double> fc0(s.g.nn + 1, 0.0), fc(s.g.nn + 1, 0.0);
    const int bottom = s.node(1, 1, 1), top = s.node(1, 1, 3);
    s.flow.idir[bottom] = s.flow.idir[top] = 1;
    fc0[bottom] = fc0[top] = 10.0;
    // without concentration nothing changes
    h_adjust(Listing{&s.out}, true, 0.0, 0.025, s.g, s.flow, fc0, t, fc, s.f);
    EXPECT_DOUBLE_EQ(fc[bottom], 10.0);
    EXPECT_DOUBLE_EQ(s.f.u0[top], 10.0);
    // a unit concentration column: half cells at both ends, so the weight is the column
    // height 2 m at the bottom and half the top cell, 0.5 m, at the top; plus 3 m of sea
    for (double& c : s.f.t2) c = 1.0;
    t.hwcol[1] = 3.0;
    h_adjust(Listing{&s.out}, true, 0.0, 0.025, s.g, s.flow, fc0, t, fc, s.f);
    EXPECT_DOUBLE_EQ(fc[bottom], 10.0 + 0.025 * (2.0 + 3.0));
    EXPECT_DOUBLE_EQ(fc[top], 10.0 + 0.025 * (0.5 + 3.0));
    EXPECT_DOUBLE_EQ(s.f.ui[bottom], fc[bottom]);
    // in a step the tide lifts the sea as well as the head
    h_adjust(Listing{&s.out}, false, 1.0, 0.025, s.g, s.flow, fc0, t, fc, s.f);
    EXPECT_DOUBLE_EQ(fc[bottom], 1.0 + 10.0 + 0.025 * (2.0 + 4.0));
}

}  // namespace
