#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "element/hex.hpp"
#include "element/tables.hpp"

// The direct-integration templates: sample entries, row sums, symmetry, and agreement
// with Gauss integration of the same bilinear forms on a brick.

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

// An axis-aligned brick [x0, x0+dx] x [y0, y0+dy] x [z0, z0+dz] as 8 one-based nodes.
struct Brick {
    std::vector<double> x, y, z;
    int nodes[9] = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    Brick(double x0, double y0, double z0, double dx, double dy, double dz)
        : x(9), y(9), z(9)
    {
        const int sx[9] = {0, -1, 1, 1, -1, -1, 1, 1, -1};
        const int sy[9] = {0, -1, -1, 1, 1, -1, -1, 1, 1};
        const int sz[9] = {0, -1, -1, -1, -1, 1, 1, 1, 1};
        for (int i = 1; i <= 8; ++i) {
            x[i] = x0 + (sx[i] > 0 ? dx : 0.0);
            y[i] = y0 + (sy[i] > 0 ? dy : 0.0);
            z[i] = z0 + (sz[i] > 0 ? dz : 0.0);
        }
    }
};

}  // namespace

TEST(Tables, SampleEntriesFixTheSigns)
{
    Tables t;
    const ElementTables& e = t.et;
    EXPECT_EQ(e.sxx[1][1], 4.0);
    EXPECT_EQ(e.sxx[1][2], -4.0);
    EXPECT_EQ(e.sxx[1][7], -1.0);
    EXPECT_EQ(e.sxy[1][1], 2.0);
    EXPECT_EQ(e.sxy[1][3], -2.0);
    EXPECT_EQ(e.sxy[1][5], 1.0);
    EXPECT_EQ(e.cx[1][1], -4.0);
    EXPECT_EQ(e.cx[2][1], -4.0);
    EXPECT_EQ(e.cx[1][2], 4.0);
    EXPECT_EQ(e.amcons[1][1], 8.0);
    EXPECT_EQ(e.amcons[1][2], 4.0);
    EXPECT_EQ(e.amcons[1][7], 1.0);
    // a few more by hand from the entry formulas
    EXPECT_EQ(e.szz[1][5], -4.0);  // (-1)(1) (3+1)(3+1)/4
    EXPECT_EQ(e.cz[1][5], 4.0);    // (+1) (3+1)(3+1)/4
    EXPECT_EQ(e.syz[1][8], -2.0);  // ((-1)(1) + (-1)(1)) (3+1)/4
    EXPECT_EQ(e.syz[1][6], 0.0);   // ((-1)(1) + (-1)(-1)) ...
    EXPECT_EQ(e.syz[1][2], 1.0);   // ((-1)(-1) + (-1)(-1)) (3-1)/4
    EXPECT_EQ(e.sxz[2][5], 2.0);   // ((1)(1) + (-1)(-1)) (3+1)/4
}

TEST(Tables, LumpedMassAndClearedGrowthMatrix)
{
    Tables t;
    for (int i = 1; i <= 8; ++i)
        for (int j = 1; j <= 8; ++j) {
            EXPECT_EQ(t.et.amlump[i][j], i == j ? 27.0 : 0.0);
            EXPECT_EQ(t.cmat[i][j], 0.0);
        }
}

TEST(Tables, RowSums)
{
    Tables t;
    const ElementTables& e = t.et;
    for (int i = 1; i <= 8; ++i) {
        // a constant field carries no diffusive or advective flux
        for (auto* m : {e.sxx, e.syy, e.szz, e.sxy, e.sxz, e.syz, e.cx, e.cy, e.cz})
            EXPECT_EQ(row_sum(m, i), 0.0) << i;
        // consistent and lumped mass give a node the same total
        EXPECT_EQ(row_sum(e.amcons, i), 27.0);
        EXPECT_EQ(row_sum(e.amlump, i), 27.0);
    }
    for (int i = 1; i <= 4; ++i) {
        double sxx = 0, syy = 0, sxy = 0, sm = 0, scx = 0, scy = 0;
        for (int j = 1; j <= 4; ++j) {
            sxx += e.fxx[i][j];
            syy += e.fyy[i][j];
            sxy += e.fxy[i][j];
            sm += e.fm[i][j];
            scx += e.fcx[i][j];
            scy += e.fcy[i][j];
        }
        EXPECT_EQ(sxx, 0.0);
        EXPECT_EQ(syy, 0.0);
        EXPECT_EQ(sxy, 0.0);
        EXPECT_EQ(scx, 0.0);
        EXPECT_EQ(scy, 0.0);
        EXPECT_EQ(sm, 9.0);  // l1 l2/4 per node over the scale l1 l2/36
    }
}

TEST(Tables, SymmetricFormsAreSymmetric)
{
    Tables t;
    const ElementTables& e = t.et;
    for (int i = 1; i <= 8; ++i)
        for (int j = 1; j <= 8; ++j)
            for (auto* m : {e.sxx, e.syy, e.szz, e.sxy, e.sxz, e.syz, e.amcons})
                EXPECT_EQ(m[i][j], m[j][i]);
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 4; ++j)
            for (auto* m : {e.fxx, e.fyy, e.fxy, e.fm}) EXPECT_EQ(m[i][j], m[j][i]);
}

TEST(Tables, SignVectorsAndGaussRules)
{
    Tables t;
    const ElementTables& e = t.et;
    const double sx[9] = {0, -1, 1, 1, -1, -1, 1, 1, -1};
    const double sy[9] = {0, -1, -1, 1, 1, -1, -1, 1, 1};
    const double sz[9] = {0, -1, -1, -1, -1, 1, 1, 1, 1};
    for (int i = 1; i <= 8; ++i) {
        EXPECT_EQ(e.sx[i], sx[i]);
        EXPECT_EQ(e.sy[i], sy[i]);
        EXPECT_EQ(e.sz[i], sz[i]);
    }
    const double sf[5] = {0, -1, -1, 1, 1};
    for (int i = 1; i <= 4; ++i) EXPECT_EQ(e.sf[i], sf[i]);
    // each abscissa and weight is the float nearest the exact value
    const GaussRules& g = e.gauss;
    EXPECT_EQ(g.xg[1], (double)(float)(-1.0 / std::sqrt(3.0)));
    EXPECT_EQ(g.xg[2], (double)(float)(1.0 / std::sqrt(3.0)));
    EXPECT_EQ(g.xg[5], (double)(float)std::sqrt(0.6));
    EXPECT_EQ(g.wg[3], (double)(float)(5.0 / 9.0));
    EXPECT_EQ(g.wg[4], (double)(float)(8.0 / 9.0));
    EXPECT_EQ(g.xg[4], 0.0);
    EXPECT_EQ(g.wg[1] + g.wg[2], 2.0);
    for (int n = 2; n <= 4; ++n) {
        double ws = 0.0, m2 = 0.0;
        for (int k = gauss_first(n); k < gauss_first(n) + n; ++k) {
            ws += g.wg[k];
            m2 += g.wg[k] * g.xg[k] * g.xg[k];
        }
        EXPECT_NEAR(ws, 2.0, 1e-7) << n;
        EXPECT_NEAR(m2, 2.0 / 3.0, 1e-7) << n;  // exact for x^2 on every rule
    }
}

// Gauss integration over a brick of each bilinear form must reproduce the table times
// its scale, up to the single-precision abscissae.
TEST(Tables, DirectAgreesWithGaussOnABrick)
{
    Tables t;
    const ElementTables& e = t.et;
    const double dx = 2.0, dy = 3.0, dz = 0.5;
    Brick b(10.0, -4.0, 100.0, dx, dy, dz);
    double kxx[9][9] = {}, kyy[9][9] = {}, kzz[9][9] = {}, kxy[9][9] = {}, kxz[9][9] = {},
           kyz[9][9] = {}, ncx[9][9] = {}, ncy[9][9] = {}, ncz[9][9] = {}, nm[9][9] = {};
    for (int g = 1; g <= 8; ++g) {
        double xi, eta, zeta, w, det, nx[9], ny[9], nz[9], n[9];
        gauss_point_2x2x2(e.gauss, g, xi, eta, zeta, w);
        hex_shape(b.x, b.y, b.z, b.nodes, xi, eta, zeta, det, nx, ny, nz, n);
        EXPECT_NEAR(det, dx * dy * dz / 8.0, 1e-14);
        const double wd = det * w;
        for (int i = 1; i <= 8; ++i)
            for (int j = 1; j <= 8; ++j) {
                kxx[i][j] += nx[i] * nx[j] * wd;
                kyy[i][j] += ny[i] * ny[j] * wd;
                kzz[i][j] += nz[i] * nz[j] * wd;
                kxy[i][j] += (nx[i] * ny[j] + ny[i] * nx[j]) * wd;
                kxz[i][j] += (nx[i] * nz[j] + nz[i] * nx[j]) * wd;
                kyz[i][j] += (ny[i] * nz[j] + nz[i] * ny[j]) * wd;
                ncx[i][j] += n[i] * nx[j] * wd;
                ncy[i][j] += n[i] * ny[j] * wd;
                ncz[i][j] += n[i] * nz[j] * wd;
                nm[i][j] += n[i] * n[j] * wd;
            }
    }
    const double tol = 1e-7;
    for (int i = 1; i <= 8; ++i)
        for (int j = 1; j <= 8; ++j) {
            EXPECT_NEAR(kxx[i][j], e.sxx[i][j] * dy * dz / (36.0 * dx), tol);
            EXPECT_NEAR(kyy[i][j], e.syy[i][j] * dx * dz / (36.0 * dy), tol);
            EXPECT_NEAR(kzz[i][j], e.szz[i][j] * dx * dy / (36.0 * dz), tol);
            EXPECT_NEAR(kxy[i][j], e.sxy[i][j] * dz / 12.0, tol);
            EXPECT_NEAR(kxz[i][j], e.sxz[i][j] * dy / 12.0, tol);
            EXPECT_NEAR(kyz[i][j], e.syz[i][j] * dx / 12.0, tol);
            EXPECT_NEAR(ncx[i][j], e.cx[i][j] * dy * dz / 72.0, tol);
            EXPECT_NEAR(ncy[i][j], e.cy[i][j] * dx * dz / 72.0, tol);
            EXPECT_NEAR(ncz[i][j], e.cz[i][j] * dx * dy / 72.0, tol);
            EXPECT_NEAR(nm[i][j], e.amcons[i][j] * dx * dy * dz / 216.0, tol);
        }
}

// The same for the fracture rectangle: bilinear M_i(a, b) on sides l1, l2, integrated
// here with its own 2x2 rule.
TEST(Tables, FractureTablesAgreeWithGauss)
{
    Tables t;
    const ElementTables& e = t.et;
    const double l1 = 1.5, l2 = 0.4;
    const double as[5] = {0, -1, 1, 1, -1}, bs[5] = {0, -1, -1, 1, 1};
    double kxx[5][5] = {}, kyy[5][5] = {}, kxy[5][5] = {}, mm[5][5] = {}, cxa[5][5] = {},
           cyb[5][5] = {};
    const double r = 1.0 / std::sqrt(3.0);
    for (double a : {-r, r})
        for (double b : {-r, r}) {
            const double wd = l1 * l2 / 4.0;  // Jacobian of the map, weights 1
            double m[5], ma[5], mb[5];
            for (int i = 1; i <= 4; ++i) {
                m[i] = (1 + as[i] * a) * (1 + bs[i] * b) / 4.0;
                ma[i] = as[i] * (1 + bs[i] * b) / 4.0 * (2.0 / l1);
                mb[i] = bs[i] * (1 + as[i] * a) / 4.0 * (2.0 / l2);
            }
            for (int i = 1; i <= 4; ++i)
                for (int j = 1; j <= 4; ++j) {
                    kxx[i][j] += ma[i] * ma[j] * wd;
                    kyy[i][j] += mb[i] * mb[j] * wd;
                    kxy[i][j] += (ma[i] * mb[j] + mb[i] * ma[j]) * wd;
                    mm[i][j] += m[i] * m[j] * wd;
                    cxa[i][j] += m[i] * ma[j] * wd;
                    cyb[i][j] += m[i] * mb[j] * wd;
                }
        }
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 4; ++j) {
            EXPECT_NEAR(kxx[i][j], e.fxx[i][j] * l2 / (6.0 * l1), 1e-13);
            EXPECT_NEAR(kyy[i][j], e.fyy[i][j] * l1 / (6.0 * l2), 1e-13);
            EXPECT_NEAR(kxy[i][j], e.fxy[i][j] * 0.5, 1e-13);
            EXPECT_NEAR(mm[i][j], e.fm[i][j] * l1 * l2 / 36.0, 1e-13);
            EXPECT_NEAR(cxa[i][j], e.fcx[i][j] * l2 / 12.0, 1e-13);
            EXPECT_NEAR(cyb[i][j], e.fcy[i][j] * l1 / 12.0, 1e-13);
        }
}
