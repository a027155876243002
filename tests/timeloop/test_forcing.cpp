#include "base/stop.hpp"
#include "support/box_grid.hpp"
#include "timeloop/forcing.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

constexpr double pi = 3.14159265358979;

// A saturated box of 4 x 2 x 2 unit bricks (x = 0..4, 5 x rows, 3 y rows, 3 levels), a
// deck whose cosine curves are all flat at their minimum, and the listing kept as text.
struct Top {
    Grid g = box_grid(4, 2, 2, 1.0, 1.0, 1.0);
    Deck d;
    ForcingTables aux;
    Patches patches;
    std::vector<double> areacol;
    Forcing fo;
    FieldIndex flow, heat;
    std::ostringstream out;
    Listing lst{&out};

    Top()
    {
        for (CosineSet* s : {&d.tsurf_sets[1], &d.tsurf_sets[2], &d.bz_thick, &d.bz_sat, &d.tide}) {
            *s = CosineSet{0, 0, 1.0, 0.0, 365.0, 0.0, -100.0, 0.0, 0.0};
        }
        d.tsurf_sets[1].ix1 = 1;
        d.tsurf_sets[1].ix2 = g.nx;
        patches.kbct.assign(g.nnt + 1, 0);
        areacol.assign(g.nxy + 1, 0.0);
        for (int c = 1; c <= g.nxy; ++c) areacol[c] = 0.5 * c;
        size_forcing(fo, g.nx, g.nxy);
        flow.fc.assign(g.nn + 1, 0.0);
        flow.qnode.assign(g.nn + 1, 0.0);
        flow.idir.assign(g.nn + 1, 0);
        heat.fc.assign(g.nnt + 1, 0.0);
    }
    void step(double tdays, int ktair = 0)
    {
        surface_forcing(SurfaceInputs{d, aux, g, patches, areacol, ktair, tdays}, fo, heat.fc, flow.qnode, lst);
    }
    int top(int ix, int iy) const { return grid_node(ix, iy, g.nzt, g.ny, g.nzt); }
    int column(int ix, int iy) const { return (ix - 1) * g.ny + iy; }
};

BzPoint bz_row(double time, double tdiff, std::initializer_list<BzZone> zones)
{
    BzPoint p;
    p.time = time;
    p.tdiff = tdiff;
    p.zone.assign(1, BzZone{});
    for (const BzZone& z : zones) {
        p.zone.push_back(z);
        ++p.nzones;
    }
    return p;
}

TEST(Forcing, AirTableEdges)
{
    Top s;
    s.aux.tair_t = {0, 10, 20, 30};
    s.aux.tair_v = {0, 1, 3, 7};
    s.aux.ntair = 3;
    s.fo.tsurf.assign(s.g.nx + 2, 42.0);
    s.step(5, 1);  // before the first time: unchanged
    EXPECT_EQ(s.fo.tsurf[1], 42.0);
    s.step(10, 1);  // at the first time: still unchanged
    EXPECT_EQ(s.fo.tsurf[3], 42.0);
    s.step(15, 1);
    EXPECT_DOUBLE_EQ(s.fo.tsurf[2], 2.0);
    s.step(20, 1);  // a table time takes the interval that ends there, f = 1
    for (int ix = 1; ix <= s.g.nx; ++ix) EXPECT_EQ(s.fo.tsurf[ix], 3.0) << ix;
    s.step(31, 1);  // beyond the table: the last temperature
    EXPECT_EQ(s.fo.tsurf[s.g.nx], 7.0);
    EXPECT_EQ(s.fo.tsurf[s.g.nx + 1], 42.0);
}

TEST(Forcing, FlatCosineIsTrendWithFloor)
{
    Top s;
    CosineSet& a = s.d.tsurf_sets[1];
    CosineSet& b = s.d.tsurf_sets[2];
    a = CosineSet{1, 2, 2.0, 0.0, 365.0, 0.0, -5.0, 0.1, 0.5};
    b = CosineSet{3, 5, -10.0, 0.0, 365.0, 0.0, -5.0, -0.1, 0.25};
    s.d.bz_sat = CosineSet{0, 0, 0.2, 0.0, 365.0, 0.0, 0.0, 0.01, 0.0};
    s.d.tide = CosineSet{0, 0, 1.0, 0.0, 30.0, 0.0, 1.5, 0.0, 0.0};
    s.step(10);
    EXPECT_DOUBLE_EQ(s.fo.tsurf[1], 3.0);  // 2 + 0.1*10
    EXPECT_DOUBLE_EQ(s.fo.tsurf[5], -5.0); // -11 is under the floor
    EXPECT_DOUBLE_EQ(s.fo.sat, 0.3);
    EXPECT_DOUBLE_EQ(s.fo.htide, 1.5);
    // with an amplitude, surfmin is the minimum of the curve: the top is surfmin + 2 amp
    s.d.bz_thick = CosineSet{0, 0, 0.5, 0.25, 20.0, 0.0, 0.0, 0.0, 0.0};
    s.step(20);
    EXPECT_NEAR(s.fo.bz[1], 1.0, 1e-12);
    EXPECT_EQ(s.fo.bzflx[3], 0.0);
}

// Free leaky nodes take tsurf + gradx*x, the gradient of set 1 on row 1 and of set 2 on
// row 2, none beyond; patched nodes follow the air only when the last patch was -999.
TEST(Forcing, TopTemperatures)
{
    Top s;
    s.fo.lleaky = true;
    s.d.tsurf_sets[1] = CosineSet{1, 5, 4.0, 0.0, 365.0, 0.0, -50.0, 0.0, 0.5};
    s.d.tsurf_sets[2].gradx = 0.25;
    s.patches.kbct[s.top(4, 2)] = 1;
    s.heat.fc[s.top(4, 2)] = 9.0;
    s.patches.tpatch = 9.0;
    s.step(1);
    EXPECT_DOUBLE_EQ(s.heat.fc[s.top(1, 1)], 4.0);
    EXPECT_DOUBLE_EQ(s.heat.fc[s.top(2, 3)], 4.25);
    EXPECT_DOUBLE_EQ(s.heat.fc[s.top(3, 1)], 4.0);
    EXPECT_EQ(s.heat.fc[s.top(4, 2)], 9.0);
    s.patches.tpatch = -999;
    s.step(2);
    EXPECT_EQ(s.heat.fc[s.top(4, 2)], 4.0);
    EXPECT_NE(s.out.str().find(" reference surface air temperature (x=0,XL) = "), std::string::npos);
}

TEST(Forcing, LayerTableByZones)
{
    Top s;
    s.aux.lbzin = true;
    s.aux.bz = {BzPoint{}, bz_row(10, 1.0, {{1, 2, 0.5, 2.0, 1e-8}, {3, 5, 0.7, 4.0, 3e-8}}),
                bz_row(20, 3.0, {{1, 2, 1.5, 6.0, 2e-8}, {3, 5, 0.9, 8.0, 5e-8}})};
    s.fo.bzfmult = 1.0;
    s.fo.rtdiff = -1.0;
    s.step(15);
    const int c1 = s.column(2, 3), c2 = s.column(4, 1);
    EXPECT_DOUBLE_EQ(s.fo.bz[c1], 1.0);
    EXPECT_DOUBLE_EQ(s.fo.bz[c2], 0.8);
    EXPECT_DOUBLE_EQ(s.fo.bzflx[c2], 6.0);
    EXPECT_DOUBLE_EQ(s.fo.bzq[c1], 1.5e-8);
    EXPECT_DOUBLE_EQ(s.fo.rtdiff, 2.0);
    EXPECT_DOUBLE_EQ(s.fo.rech[c2], 4e-8);
    EXPECT_DOUBLE_EQ(s.flow.qnode[c2 * s.g.nz], 4e-8 * 0.5 * c2);
    s.step(25);  // beyond: the last row, rtdiff as it was
    EXPECT_EQ(s.fo.bz[c1], 1.5);
    EXPECT_EQ(s.fo.bzq[c2], 5e-8);
    EXPECT_DOUBLE_EQ(s.fo.rtdiff, 2.0);
}

// The interval's flux factor acts on the stored flux every step: refreshed inside the
// table, compounding before its first row.
TEST(Forcing, FluxFactorCompoundsBeforeTheTable)
{
    Top s;
    s.aux.lbzin = true;
    s.aux.bz = {BzPoint{}, bz_row(10, 0, {{1, 5, 0.5, 2.0, 0}}), bz_row(20, 0, {{1, 5, 0.5, 4.0, 0}})};
    s.fo.bzflx.assign(s.g.nxy + 1, 2.0);
    s.fo.bz.assign(s.g.nxy + 1, 0.5);
    s.fo.bzfmult = 1.5;
    s.step(1);
    s.step(2);
    EXPECT_DOUBLE_EQ(s.fo.bzflx[7], 4.5);  // 2 * 1.5 * 1.5
    s.step(15);
    s.step(15);
    EXPECT_DOUBLE_EQ(s.fo.bzflx[7], 4.5);  // 3 * 1.5 each time
}

TEST(Forcing, LeakyTopNeedsLayerAndSaturation)
{
    Top s;
    s.fo.lleaky = true;
    EXPECT_NO_THROW(s.step(1));
    s.d.bz_sat.surfmin = 0.0;
    EXPECT_THROW(s.step(2), RunStopped);
    EXPECT_NE(s.out.str().find("\n          or check bzin.data file for bz <= 0\n"), std::string::npos);
}

TEST(Forcing, IntervalFactors)
{
    Top s;
    for (int c = 1; c <= s.g.nxy; ++c) {
        s.fo.rech[c] = 1e-8;
        s.flow.qnode[c * s.g.nz] = 2e-8;
    }
    IntervalRecord iv;
    iv.hinc = 0.5;
    iv.rinc = 1.0;
    iv.rtdiff = 3.0;
    iv.bzfmult = 2.0;
    start_interval_forcing(iv, false, s.g, s.flow, s.fo);
    EXPECT_EQ(s.fo.rech[4], 1e-8);
    EXPECT_EQ(s.flow.fc[7], 0.5);
    EXPECT_EQ(s.fo.rtdiff, 3.0);
    EXPECT_EQ(s.fo.bzfmult, 2.0);
    iv.rinc = 0.0;
    start_interval_forcing(iv, false, s.g, s.flow, s.fo);
    iv.rinc = 2.0;
    start_interval_forcing(iv, false, s.g, s.flow, s.fo);
    EXPECT_EQ(s.fo.rech[4], 0.0);  // zeroed for good
    EXPECT_EQ(s.flow.qnode[4 * s.g.nz], 0.0);
    // on a cosine top hinc leaves the heads alone
    s.flow.kb[6] = 6;
    start_interval_forcing(iv, false, s.g, s.flow, s.fo);
    EXPECT_EQ(s.flow.fc[7], 1.5);
}

// Cosine top about rise = 5 with one cosine wave over the 4 m and slope 0.1.
struct CosineTop : Top {
    CosineHead wt;
    CosineTop()
    {
        flow.kb[6] = 6;
        wt.rise = 5.0;
        wt.amp_cos = 1.0;
        wt.wave_cos = 1.0;
        wt.slope = 0.1;
    }
    double top_head(int ix) const { return flow.fc[column(ix, 2) * g.nz]; }
};

TEST(Forcing, CosineTopAmplitudeScaledByHinc)
{
    CosineTop s;
    boundary_heads(s.aux, s.g, 1.0, 0.5, s.wt, s.fo, s.flow, s.lst);
    EXPECT_NEAR(s.top_head(1), 5.5, 1e-12);
    EXPECT_NEAR(s.top_head(2), 5.1, 1e-12);  // cos(pi/2) = 0
    EXPECT_NEAR(s.top_head(3), 4.7, 1e-12);
    boundary_heads(s.aux, s.g, 1.0, 0.0, s.wt, s.fo, s.flow, s.lst);
    for (int ix = 1; ix <= s.g.nx; ++ix) EXPECT_NEAR(s.top_head(ix), 5.0 + 0.1 * (ix - 1), 1e-12);
    EXPECT_NE(s.out.str().find(" wt amplitude updated by *hinc:"), std::string::npos);
}

// hb = 11 halfway along the table; the right top head 11 + 1 + 0.1*4 sets the right
// plane and the new slope 1.4/4, and the top row is rebuilt about rise with that slope.
TEST(Forcing, HeadTableSetsRightPlaneAndSlope)
{
    CosineTop s;
    s.aux.lhbdy = true;
    s.aux.hbdy_t = {0, 0, 10};
    s.aux.hbdy_h = {0, 10, 12};
    s.aux.nhbdy = 2;
    const int plane = (s.g.nx - 1) * s.g.ny * s.g.nz;
    s.flow.idir[plane + 1] = 1;
    s.flow.idir[plane + 5] = 1;
    boundary_heads(s.aux, s.g, 5.0, 1.0, s.wt, s.fo, s.flow, s.lst);
    EXPECT_DOUBLE_EQ(s.fo.hb, 11.0);
    EXPECT_NEAR(s.flow.fc[plane + 1], 12.4, 1e-12);
    EXPECT_NEAR(s.flow.fc[plane + 5], 12.4, 1e-12);
    EXPECT_EQ(s.flow.fc[plane + 4], 0.0);  // not fixed
    EXPECT_NEAR(s.wt.slope, 0.35, 1e-12);
    EXPECT_NEAR(s.top_head(5), 5.0 + 1.0 + 0.35 * 4, 1e-12);
    EXPECT_NEAR(s.top_head(2), 5.0 + std::cos(pi / 2) + 0.35, 1e-12);
}

}  // namespace
