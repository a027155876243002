#include <gtest/gtest.h>

#include <cmath>

#include "element/tables.hpp"

// The direct-integration templates: sample entries and row sums (their agreement with
// Gauss integration on a brick: test_hex.cpp).

namespace {

struct Tables {
    ElementTables et;
    double cmat[9][9];
    Tables()
    {
        for (auto& r : cmat)
            for (double& v : r) v = 7.0;  // must come back cleared
        fill_element_tables(et, cmat);
    }
};

double row_sum(const double t[9][9], int i)
{
    double s = 0.0;
    for (int j = 1; j <= 8; ++j) s += t[i][j];
    return s;
}

}  // namespace

TEST(Tables, SampleEntriesFixTheSigns)
{
    const Tables t;
    const ElementTables& e = t.et;
    EXPECT_EQ(e.sxx[1][1], 4.0);
    EXPECT_EQ(e.sxx[1][2], -4.0);
    EXPECT_EQ(e.sxx[1][7], -1.0);
    EXPECT_EQ(e.sxy[1][3], -2.0);
    EXPECT_EQ(e.sxy[1][5], 1.0);
    EXPECT_EQ(e.cx[2][1], -4.0);
    EXPECT_EQ(e.cx[1][2], 4.0);
    EXPECT_EQ(e.amcons[1][1], 8.0);
    EXPECT_EQ(e.amcons[1][7], 1.0);
    // a few more by hand from the entry formulas
    EXPECT_EQ(e.szz[1][5], -4.0);  // (-1)(1) (3+1)(3+1)/4
    EXPECT_EQ(e.syz[1][8], -2.0);  // ((-1)(1) + (-1)(1)) (3+1)/4
    EXPECT_EQ(e.syz[1][2], 1.0);   // ((-1)(-1) + (-1)(-1)) (3-1)/4
    EXPECT_EQ(e.sxz[2][5], 2.0);   // ((1)(1) + (-1)(-1)) (3+1)/4
}

TEST(Tables, RowSumsLumpedMassAndClearedGrowthMatrix)
{
    const Tables t;
    const ElementTables& e = t.et;
    for (int i = 1; i <= 8; ++i) {
        // a constant field carries no diffusive or advective flux
        for (auto* m : {e.sxx, e.syy, e.szz, e.sxy, e.sxz, e.syz, e.cx, e.cy, e.cz})
            EXPECT_EQ(row_sum(m, i), 0.0) << i;
        // consistent and lumped mass give a node the same total
        EXPECT_EQ(row_sum(e.amcons, i), 27.0);
        EXPECT_EQ(e.amlump[i][i], 27.0);
        for (int j = 1; j <= 8; ++j) EXPECT_EQ(t.cmat[i][j], 0.0);
    }
    for (int i = 1; i <= 4; ++i) {
        const double(*f[6])[5] = {e.fxx, e.fyy, e.fxy, e.fcx, e.fcy, e.fm};
        for (int k = 0; k < 6; ++k) {
            double s = 0.0;
            for (int j = 1; j <= 4; ++j) s += f[k][i][j];
            EXPECT_EQ(s, k < 5 ? 0.0 : 9.0) << k;  // fm: l1 l2/4 per node over the scale l1 l2/36
        }
    }
    // every Gauss rule integrates 1 and x^2 exactly
    for (int n = 2; n <= 4; ++n) {
        double ws = 0.0, m2 = 0.0;
        for (int k = gauss_first(n); k < gauss_first(n) + n; ++k) {
            ws += e.gauss.wg[k];
            m2 += e.gauss.wg[k] * e.gauss.xg[k] * e.gauss.xg[k];
        }
        EXPECT_NEAR(ws, 2.0, 1e-7) << n;
        EXPECT_NEAR(m2, 2.0 / 3.0, 1e-7) << n;
    }
}
