#include "grid/deformation.hpp"
#include "support/box_grid.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

TEST(Deformation, FreezingColumnHeavesByTheIceExpansionAndThawingSettlesIt)
{
    // one stack of 5 bricks, 2 m each, porosity 0.3, saturated: freezing from Wu = 1 to p
    // expands each brick by (1 - p)(1000 - rhoi)/rhoi of its pore water
    Grid g = box_grid(1, 1, 5, 1.0, 1.0, 2.0);
    std::ostringstream out;
    Media m;
    size_media(m, g, false, Listing{&out});
    for (int e = 1; e <= g.net; ++e) {
        m.por[e] = 0.3;
        m.sw[e] = 1.0;
    }
    Fields f;
    size_fields(f, g.nn, g.nnt);
    const FreezeParams wu{0.05, 20.0, 0.0, 1.0, 1, 0};  // Wu(-10 C) = p to 1e-87
    const double rhoi = 917.0;
    Deformation d;
    size_deformation(d, g);
    EXPECT_EQ(d.ncolcnt[1], 1);
    const std::vector<double> z0 = g.z;

    for (int n = 1; n <= g.nnt; ++n) {
        f.t10[n] = 1.0;
        f.t1[n] = -10.0;
    }
    deformation_update(g, m, f, wu, rhoi, false, 0, d);
    const double per_brick = (0.05 - 1.0) * (1000.0 - rhoi) * (0.3 * 2.0) / rhoi;
    double sum = 0;
    for (int e = 1; e <= g.net; ++e) {
        EXPECT_NEAR(d.dzel[e], per_brick, 1e-15);
        sum += d.dzel[e];
    }
    for (int c = 1; c <= g.nxy; ++c) EXPECT_NEAR(d.dzcol[c], sum, 1e-14);
    EXPECT_DOUBLE_EQ(d.dmin, d.dzcol[1]);
    // six nodes a column, all under the 120 that move: each rises by -dzcol/6
    for (int n = 1; n <= g.nnt; ++n) EXPECT_NEAR(g.z[n] - z0[n], -sum / 6, 1e-14) << n;
    EXPECT_NEAR(g.dze[g.net], 2.0, 1e-14) << "a uniform shift leaves the layers as they were";

    std::ostringstream lst_out;
    const Listing lst{&lst_out};
    dztot_update(g, d, lst);
    for (int c = 1; c <= g.nxy; ++c) EXPECT_NEAR(d.dztot[c], -sum, 1e-14);
    EXPECT_GT(d.dztot[1], 0.0) << "heave is positive";
    EXPECT_NE(lst_out.str().find(" cumulative max dztot (+ve = heave     ) : "), std::string::npos);

    // a second pass of the same step moves the top again; dztot waits for the step's end
    deformation_update(g, m, f, wu, rhoi, false, 0, d);
    for (int n = 1; n <= g.nnt; ++n) EXPECT_NEAR(g.z[n] - z0[n], -2 * sum / 6, 1e-14);

    // thawing brings the column back
    for (int n = 1; n <= g.nnt; ++n) std::swap(f.t10[n], f.t1[n]);
    deformation_update(g, m, f, wu, rhoi, false, 0, d);
    dztot_update(g, d, lst);
    for (int c = 1; c <= g.nxy; ++c) EXPECT_NEAR(d.dztot[c], 0.0, 1e-14);
}

TEST(Deformation, ColumnsCountTheStacksAboutThem)
{
    Grid g = box_grid(2, 2, 1, 1.0, 1.0, 1.0);
    Deformation d;
    size_deformation(d, g);
    // 3 x 3 columns: corners 1, edges 2, the centre 4
    const int want[] = {0, 1, 2, 1, 2, 4, 2, 1, 2, 1};
    for (int c = 1; c <= 9; ++c) EXPECT_EQ(d.ncolcnt[c], want[c]) << c;
}

}  // namespace
