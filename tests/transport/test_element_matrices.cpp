#include "element/tables.hpp"
#include "transport/dispersion.hpp"
#include "transport/element_matrices.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace {

struct TensorCase {
    const char* what;
    Dispersivity d;
    double vx, vy, vz, dd;
    Tensor want;
};

// al = 2, alt = 3, ath = 0.5, atv = 0.25 throughout; hand values
const TensorCase kTensors[] = {
    // along x only: al|v|, ath|v|, atv|v| on the diagonal, nothing off it
    {"BF along -x", {2, 3, 0.5, 0.25, 0}, -4, 0, 0, 0.1, {8.1, 2.1, 1.1, 0, 0, 0}},
    // at 45 degrees in xz, |v| = sqrt(2): Dxx = (al + atv)/sqrt2, Dxz = (al - atv)/sqrt2
    {"BF in xz", {2, 3, 0.5, 0.25, 0}, 1, 0, 1, 0,
     {2.25 / std::sqrt(2.0), 0.75 / std::sqrt(2.0), 2.25 / std::sqrt(2.0), 0, 1.75 / std::sqrt(2.0), 0}},
    // straight down: the vertical limit diag(ath, ath, alt)|vz|
    {"Lichtner vertical", {2, 3, 0.5, 0.25, 1}, 0, 0, -2, 0.1, {1.1, 1.1, 6.1, 0, 0, 0}},
    // horizontal flow: cs = 0, so aL = al and aT = atv; f = 1
    {"Lichtner along y", {2, 3, 0.5, 0.25, 1}, 0, 3, 0, 0, {1.5, 6.0, 0.75, 0, 0, 0}},
    // still water: diffusion alone, in both forms
    {"BF still", {2, 3, 0.5, 0.25, 0}, 0, 0, 0, 1e-9, {1e-9, 1e-9, 1e-9, 0, 0, 0}},
    {"Lichtner still", {2, 3, 0.5, 0.25, 1}, 0, 0, 0, 1e-9, {1e-9, 1e-9, 1e-9, 0, 0, 0}},
};

TEST(Dispersion, TensorsByHand)
{
    for (const TensorCase& c : kTensors) {
        const Tensor t = dispersion_tensor(c.d, c.vx, c.vy, c.vz, c.dd);
        const double got[] = {t.xx, t.yy, t.zz, t.xy, t.xz, t.yz};
        const double want[] = {c.want.xx, c.want.yy, c.want.zz, c.want.xy, c.want.xz, c.want.yz};
        for (int k = 0; k < 6; ++k) EXPECT_NEAR(got[k], want[k], 1e-14) << c.what << " component " << k;
    }
}

TEST(Dispersion, LichtnerApproachesItsVerticalLimit)
{
    const Dispersivity d{2, 3, 0.5, 0.25, 1};
    const Tensor lim = dispersion_tensor(d, 0, 0, 1e-5, 0);
    const Tensor near = dispersion_tensor(d, 1e-12, 2e-12, 1e-5, 0);
    EXPECT_NEAR(near.xx, lim.xx, 1e-12);
    EXPECT_NEAR(near.yy, lim.yy, 1e-12);
    EXPECT_NEAR(near.zz, lim.zz, 1e-12);
    // at the velocity floor the closed form is still finite and gives the same limit
    const Tensor floor = dispersion_tensor(d, 1e-40, 1e-40, 1e-5, 0);
    EXPECT_NEAR(floor.xx, lim.xx, 1e-12);
    EXPECT_NEAR(floor.zz, lim.zz, 1e-12);
}

struct Brick {
    ElementTables et;
    double cmat[9][9];
    std::vector<double> x, y, z;
    int nodes[9] = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    Brick(double dx, double dy, double dz)
    {
        fill_element_tables(et, cmat);
        const double sx[] = {0, 0, 1, 1, 0, 0, 1, 1, 0}, sy[] = {0, 0, 0, 1, 1, 0, 0, 1, 1};
        const double sz[] = {0, 0, 0, 0, 0, 1, 1, 1, 1};
        x.assign(9, 0);
        y.assign(9, 0);
        z.assign(9, 0);
        for (int i = 1; i <= 8; ++i) {
            x[i] = sx[i] * dx + 3.0;
            y[i] = sy[i] * dy - 1.0;
            z[i] = sz[i] * dz + 7.0;
        }
    }
};

TransportScheme scheme(double dt)
{
    TransportScheme s;
    s.dtinv = 1.0 / dt;
    s.dthalf = dt / 2;
    return s;
}

TEST(ElementMatrices, TablesAgreeWithGaussPointsAndKeepTheirStructure)
{
    const double dx = 2.0, dy = 0.5, dz = 1.5, V = dx * dy * dz, R = 1.7, dt = 3.0e4;
    Brick b(dx, dy, dz);
    const Dispersivity d{1.0, 0.4, 0.2, 0.05, 0};
    const double vx = 2e-5, vy = -1e-5, vz = 3e-6;
    const TransportScheme s = scheme(dt);
    const ElementCoefficients c = element_coefficients(dispersion_tensor(d, vx, vy, vz, 1e-9), vx, vy, vz, s);

    double an[9][9], bn[9][9], ad[9][9], bd[9][9], cd[9][9];
    elmatn(c, s.dtinv, b.x, b.y, b.z, b.nodes, an, bn, R, b.et.gauss);
    ElementCoefficients scaled = c;
    elmatd(scaled, b.et, s.dtinv, dx, dy, dz, R, 0.0, 0.0, ad, bd, cd);
    for (int i = 1; i <= 8; ++i) {
        double ra = 0, rb = 0;
        for (int j = 1; j <= 8; ++j) {
            // the Gauss abscissae are single-precision values
            EXPECT_NEAR(an[i][j], ad[i][j], 1e-6 * std::fabs(ad[i][i])) << i << "," << j;
            EXPECT_NEAR(bn[i][j], bd[i][j], 1e-6 * std::fabs(bd[i][i])) << i << "," << j;
            EXPECT_EQ(ad[i][j], ad[j][i]);
            EXPECT_NEAR(an[i][j], an[j][i], 1e-15 * std::fabs(an[i][i]));
            ra += ad[i][j];
            rb += bd[i][j];
        }
        // a uniform field is a steady state: no dispersion or advection of a constant
        EXPECT_NEAR(ra + rb, 0.0, 1e-12 * ra);
        EXPECT_NEAR(ra, s.dtinv * V / 8, 1e-12 * ra);
    }

    // decay adds decay V/8 to every row of amat alone; growth agefx V/8 on the diagonal
    const double decay = 1e-6;
    double ad2[9][9], bd2[9][9], cd2[9][9];
    scaled = c;
    elmatd(scaled, b.et, s.dtinv, dx, dy, dz, R, decay, 0.0, ad2, bd2, cd2);
    for (int i = 1; i <= 8; ++i) {
        double ra = 0, rb = 0;
        for (int j = 1; j <= 8; ++j) {
            ra += ad2[i][j];
            rb += bd2[i][j];
        }
        EXPECT_NEAR(ra + rb, decay * V / 8, 1e-9 * decay * V);
    }
    scaled = c;
    elmatd(scaled, b.et, s.dtinv, dx, dy, dz, R, 0.0, 2.0, ad2, bd2, cd2);
    for (int i = 1; i <= 8; ++i)
        for (int j = 1; j <= 8; ++j) EXPECT_DOUBLE_EQ(cd2[i][j], i == j ? 2.0 * V / 8 : 0.0);
}

TEST(ElementMatrices, TablesPathRoundsAsThePlainFormula)
{
    // the paired evaluation must give every entry the roundings of the formula as written
    Brick b(0.7, 1.3, 0.45);
    const double dx = 0.7, dy = 1.3, dz = 0.45, dtinv = 1.0 / 3.3e3, R = 1.37, decay = 2.1e-7, agefx = 0.3;
    const TransportScheme s = scheme(3.3e3);
    const Tensor D = dispersion_tensor(Dispersivity{0.9, 0.4, 0.13, 0.07, 1}, 3e-6, -7e-6, 2e-6, 3e-9);
    ElementCoefficients c = element_coefficients(D, 3e-6, -7e-6, 2e-6, s);
    double a[9][9], bm[9][9], cm[9][9];
    elmatd(c, b.et, dtinv, dx, dy, dz, R, decay, agefx, a, bm, cm);  // c is now scaled
    const ElementTables& et = b.et;
    const double v = dx * dy * dz / 216.0, t = dtinv * v, d = decay * v, g = agefx * v;
    for (int i = 1; i <= 8; ++i)
        for (int j = 1; j <= 8; ++j) {
            const double sl = c.e.xx * et.sxx[i][j] + c.e.yy * et.syy[i][j] + c.e.zz * et.szz[i][j] +
                              c.e.xy * et.sxy[i][j] + c.e.xz * et.sxz[i][j] + c.e.yz * et.syz[i][j];
            const double sr = c.r.xx * et.sxx[i][j] + c.r.yy * et.syy[i][j] + c.r.zz * et.szz[i][j] +
                              c.r.xy * et.sxy[i][j] + c.r.xz * et.sxz[i][j] + c.r.yz * et.syz[i][j] +
                              c.ax * et.cx[i][j] + c.ay * et.cy[i][j] + c.az * et.cz[i][j];
            EXPECT_EQ(a[i][j], sl / R + t * et.amcons[i][j] + d * et.amcons[i][j]) << i << "," << j;
            EXPECT_EQ(bm[i][j], sr / R - t * et.amcons[i][j]) << i << "," << j;
            EXPECT_EQ(cm[i][j], g * et.amlump[i][j]) << i << "," << j;
        }
}

TEST(ElementMatrices, LineFractureByHand)
{
    // Df = 2, v = +-1, wf = 1, l = 2, R = 1, dt = 1: dl = (2 + 0.5*1*0.5)/2 = 1.125,
    // dr = (0.5*1*0.5)/2 = 0.125, adv = 0.5, m = 2/2 = 1
    const TransportScheme s = scheme(1.0);
    LineTerms t;
    line_dispersion(2.0, 1.0, 1.0, 2.0, s, t);
    EXPECT_DOUBLE_EQ(t.dl, 1.125);
    EXPECT_DOUBLE_EQ(t.dr, 0.125);
    t.adv = 0.5;
    t.m = 1.0;
    double a[3][3], b[3][3];
    line_fracture_matrices(t, 1.0, a, b);
    EXPECT_DOUBLE_EQ(a[1][1], 2.125);
    EXPECT_DOUBLE_EQ(a[2][2], 2.125);
    EXPECT_DOUBLE_EQ(a[1][2], -0.125);  // the mass stands off the diagonal of amat too
    EXPECT_DOUBLE_EQ(a[2][1], -0.125);
    EXPECT_DOUBLE_EQ(b[1][1], -1.375);
    EXPECT_DOUBLE_EQ(b[2][2], -0.375);
    EXPECT_DOUBLE_EQ(b[1][2], 0.375);
    EXPECT_DOUBLE_EQ(b[2][1], -0.625);
    // flow from node 2 to node 1 mirrors the advection; R divides all but storage and decay
    t.adv = -0.5;
    t.m = 0.5;
    t.lam = 0.5;
    line_fracture_matrices(t, 2.0, a, b);
    EXPECT_DOUBLE_EQ(a[1][1], 1.125 / 2 + 0.5 + 0.5);
    EXPECT_DOUBLE_EQ(a[1][2], -1.125 / 2 + 0.5 + 0.5);
    EXPECT_DOUBLE_EQ(b[1][1], (0.125 + 0.5) / 2 - 0.5);
    EXPECT_DOUBLE_EQ(b[2][1], -(0.125 - 0.5) / 2);
}

// Integrals of the bilinear rectangle l1 x l2 by a 2x2 Gauss rule, exact for these
// integrands: node order (a, b) = (-,-), (+,-), (+,+), (-,+), a along l1.
struct RectIntegrals {
    double nn[5][5] = {}, g11[5][5] = {}, g22[5][5] = {}, g12[5][5] = {}, n1[5][5] = {}, n2[5][5] = {};
    RectIntegrals(double l1, double l2)
    {
        const double sa[] = {0, -1, 1, 1, -1}, sb[] = {0, -1, -1, 1, 1}, gp = 1 / std::sqrt(3.0);
        for (double a : {-gp, gp})
            for (double b : {-gp, gp}) {
                double N[5], Na[5], Nb[5];
                for (int i = 1; i <= 4; ++i) {
                    N[i] = (1 + sa[i] * a) * (1 + sb[i] * b) / 4;
                    Na[i] = sa[i] * (1 + sb[i] * b) / 4 * 2 / l1;
                    Nb[i] = sb[i] * (1 + sa[i] * a) / 4 * 2 / l2;
                }
                const double w = l1 * l2 / 4;
                for (int i = 1; i <= 4; ++i)
                    for (int j = 1; j <= 4; ++j) {
                        nn[i][j] += w * N[i] * N[j];
                        g11[i][j] += w * Na[i] * Na[j];
                        g22[i][j] += w * Nb[i] * Nb[j];
                        g12[i][j] += w * (Na[i] * Nb[j] + Nb[i] * Na[j]);
                        n1[i][j] += w * N[i] * Na[j];
                        n2[i][j] += w * N[i] * Nb[j];
                    }
            }
    }
};

TEST(ElementMatrices, PlaneFractureMatchesTheIntegrals)
{
    ElementTables et;
    double cm[9][9];
    fill_element_tables(et, cm);
    const double l1 = 2.0, l2 = 0.5, R = 1.5, al = 1.0, at = 0.1, dd = 1e-3, decay = 1e-4, dt = 100.0;
    PlaneFracture pf{3e-3, -1e-3, l1, l2, l2 / l1, l1 * l2, 0.4};
    const TransportScheme s = scheme(dt);
    double a[5][5], b[5][5], c[5][5];
    plane_fracture_matrices(pf, PlaneCoefficients{al, at, dd, 1.0, 1.0, R, decay, 0.5}, s, et, a, b, c);

    const double u = pf.vx2d, v = pf.vy2d, vm = std::hypot(u, v);
    const double d11 = (al * u * u + at * v * v) / vm + dd, d22 = (al * v * v + at * u * u) / vm + dd;
    const double d12 = (al - at) * u * v / vm;
    const double h = dt / 2;
    const RectIntegrals I(l1, l2);
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 4; ++j) {
            const double left = (d11 + 0.5 * h * u * u) * I.g11[i][j] + (d22 + 0.5 * h * v * v) * I.g22[i][j] +
                                (d12 + 0.5 * h * u * v) * I.g12[i][j];
            const double right = 0.5 * h * (u * u * I.g11[i][j] + v * v * I.g22[i][j] + u * v * I.g12[i][j]) +
                                 u * I.n1[i][j] + v * I.n2[i][j];
            const double wa = pf.wf * (left / R + (1 / dt / R + decay) * I.nn[i][j]);
            const double wb = pf.wf * (right / R - I.nn[i][j] / dt / R);
            EXPECT_NEAR(a[i][j], wa, 1e-12 * std::fabs(a[i][i])) << i << "," << j;
            EXPECT_NEAR(b[i][j], wb, 1e-12 * std::fabs(a[i][i])) << i << "," << j;
            EXPECT_NEAR(c[i][j], pf.wf * 0.5 * I.nn[i][j], 1e-15) << i << "," << j;
            EXPECT_EQ(a[i][j], a[j][i]);
        }
}

}  // namespace
