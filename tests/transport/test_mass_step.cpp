#include "support/closed_forms.hpp"
#include "transport/transport_case.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace {

constexpr double day = 86400.0;

// A column of bricks along x, 100 m long, v = 1e-5 m/s, al = 0.5 m, C = 1 held on the
// face x = 0; the largest error against the closed form at 20 and 40 days (over R).
struct ColumnError { double at1 = 0, at2 = 0; };
ColumnError column_error(int nex, double dt_days, int kint, double ret)
{
    const double L = 100.0, v = 1e-5, al = 0.5;
    TransportCase c(nex, 1, 1, L / nex, 1.0, 1.0, "1 0 0 0 0 0 0\n1 2 1 2 1.0 0\n");
    c.velocity(v, 1e-40, 1e-40);  // the velocity floor across
    c.mp.kint = kint;
    c.mp.ret = ret;
    c.mp.disp = Dispersivity{al, 0, 0.1, 0.01, 0};
    c.fill(0.0);
    ColumnError err;
    const double dt = dt_days * day;
    int n = 0;
    for (double* slot : {&err.at1, &err.at2}) {
        const double t_end = (slot == &err.at1 ? 20.0 : 40.0) * day * ret;
        while ((n + 0.5) * dt < t_end) {
            c.step(dt);
            ++n;
        }
        for (int i = 1; i <= c.g.nx; ++i) {
            const double x = c.g.x[grid_node(i, 1, 1, c.g.ny, c.g.nzt)];
            *slot = std::max(*slot, std::fabs(c.at(i, 1, 1) - ogata_banks(x, n * dt, v, al * v, ret)));
        }
    }
    return err;
}

TEST(MassStep, OgataBanksColumnConvergesWithTheGrid)
{
    for (int kint : {0, 1})
        for (double ret : {1.0, 2.0}) {
            const ColumnError coarse = column_error(100, 0.1, kint, ret);
            const ColumnError fine = column_error(200, 0.05, kint, ret);
            EXPECT_LE(fine.at1, 0.01) << "kint " << kint << " ret " << ret;
            EXPECT_LE(fine.at2, 0.01) << "kint " << kint << " ret " << ret;
            EXPECT_LT(fine.at1, 0.7 * coarse.at1) << "kint " << kint << " ret " << ret;
            EXPECT_LT(fine.at2, 0.7 * coarse.at2) << "kint " << kint << " ret " << ret;
        }
}

TEST(MassStep, AgeIsTheTimeSinceRecharge)
{
    // every node free; strong zero-age sources at x = 0 make the inflowing water young
    const double L = 100.0, v = 1e-5, al = 0.5, dt = 0.05 * day, t = 60 * day;
    TransportCase c(200, 1, 1, 0.5, 1.0, 1.0, "");
    c.velocity(v, 1e-40, 1e-40);
    c.mp.lmass = false;
    c.mp.agefx = 1.0;  // age in seconds
    c.mp.disp = Dispersivity{al, 0, 0.1, 0.01, 0};
    for (int j = 1; j <= 2; ++j)
        for (int k = 1; k <= 2; ++k) c.qsrc[grid_node(1, j, k, c.g.ny, c.g.nzt)] = 1e-3;
    c.fill(0.0);
    int n = 0;
    for (; (n + 0.5) * dt < t; ++n) c.step(dt);
    const double tn = n * dt, front = v * tn, band = 3 * std::sqrt(2 * al * v * tn);
    int checked = 0;
    for (int i = 1; i <= c.g.nx; ++i) {
        const double x = c.g.x[grid_node(i, 1, 1, c.g.ny, c.g.nzt)];
        if (std::fabs(x - front) < band) continue;
        EXPECT_NEAR(c.at(i, 1, 1), std::min(tn, x / v), 0.02 * L / v) << "x = " << x;
        ++checked;
    }
    EXPECT_GT(checked, 100);
}

TEST(MassStep, StillWaterDecaysAndAges)
{
    const double dt = 1.0e4, decay = 1.0e-6;
    for (double ret : {1.0, 2.0}) {
        TransportCase c(3, 2, 2, 1.0, 2.0, 0.5, "");
        c.mp.ret = ret;
        c.mp.decay = decay;
        c.mp.dd = 1e-9;
        c.fill(1.0);
        for (int n = 1; n <= 10; ++n) {
            c.step(dt);
            const double want = std::pow(1 + decay * dt, -n);
            for (int i = 1; i <= c.g.nnt; ++i) ASSERT_NEAR(c.f.t2[i], want, 1e-8) << "ret " << ret << " step " << n;
        }
        EXPECT_EQ(c.m.co0[c.g.net], ret);
        EXPECT_EQ(c.m.co1[1], ret);
    }
    for (int kint : {0, 1}) {
        TransportCase c(3, 2, 2, 1.0, 2.0, 0.5, "");
        c.mp.kint = kint;
        c.mp.lmass = false;
        c.mp.agefx = 1.0;
        c.fill(5.0);
        for (int n = 1; n <= 4; ++n) c.step(dt);
        // the growth lives in the tables path; the Gauss path grows nothing
        const double want = kint == 0 ? 5.0 + 4 * dt : 5.0;
        for (int i = 1; i <= c.g.nnt; ++i) EXPECT_NEAR(c.f.t2[i], want, 1e-8 * want) << i;
    }
}

TEST(MassStep, TinyConcentrationsAreClearedButAgesKept)
{
    for (bool lmass : {true, false}) {
        TransportCase c(2, 1, 1, 1.0, 1.0, 1.0, "");
        c.mp.lmass = lmass;
        c.fill(1e-51);
        c.step(100.0);
        for (int i = 1; i <= c.g.nnt; ++i) {
            if (lmass)
                EXPECT_EQ(c.f.t2[i], 0.0);
            else
                EXPECT_NEAR(c.f.t2[i], 1e-51, 1e-60);
        }
    }
}

TEST(MassStep, UniformFieldStaysUniformInFlowWithPlaneFractures)
{
    // fixed nodes agree with the field; three-dimensional flow through bricks and fractures
    for (int kint : {0, 1})
        for (int idisp : {0, 1}) {
            TransportCase c(4, 3, 3, 1.0, 0.5, 2.0, "1 1 0 0 0 0 0\n1 4 1 4 3.0 0\n1 4 1 4 3.0 0\n");
            c.add_fracture(FractureRecord{1, 4, 2, 2, 1, 3, 2, 3, 1e-3});  // y-min faces
            c.add_fracture(FractureRecord{2, 3, 1, 3, 2, 2, 2, 5, 1e-3});  // lower faces
            for (int l = 1; l <= c.fr.nfrac; ++l) {
                c.v.vx2d[l] = 3e-4;
                c.v.vy2d[l] = -1e-4;
            }
            c.velocity(2e-5, -1e-5, 4e-6);
            c.mp.kint = kint;
            c.mp.disp = Dispersivity{1.0, 0.3, 0.1, 0.02, idisp};
            c.mp.dd = 1e-9;
            c.fill(3.0);
            for (int n = 0; n < 3; ++n) c.step(5.0e3);
            for (int i = 1; i <= c.g.nnt; ++i) EXPECT_NEAR(c.f.t2[i], 3.0, 1e-10) << "kint " << kint << " node " << i;
        }
}

TEST(MassStep, FracturesTakeThePorosityOfElementOneAndTheirTransverseDispersivity)
{
    // a plane on y faces (code 3) uses atv, a plane on x faces (code 1) ath; only por(1)
    // scales fractures and sources
    const auto run = [](int iloc, double ath, double atv, double por_other, double por1) {
        TransportCase c(3, 3, 2, 1.0, 1.0, 1.0, "1 0 0 0 0 0 0\n1 4 1 3 1.0 0\n");
        c.add_fracture(FractureRecord{1, 3, 2, 2, 1, 2, 2, iloc, 1e-2});
        for (int l = 1; l <= c.fr.nfrac; ++l) c.v.vx2d[l] = c.v.vy2d[l] = 1e-5;
        c.mp.disp = Dispersivity{0.5, 0, ath, atv, 0};  // the bricks hold still water
        c.mp.dd = 1e-9;
        for (int e = 2; e <= c.g.net; ++e) c.m.por[e] = por_other;
        c.m.por[1] = por1;
        c.fill(0.0);
        c.step(1.0e4);
        return c.f.t2;
    };
    const auto base3 = run(3, 0.1, 0.05, 0.3, 0.3);
    EXPECT_EQ(run(3, 0.2, 0.05, 0.3, 0.3), base3);
    EXPECT_NE(run(3, 0.1, 0.07, 0.3, 0.3), base3);
    const auto base1 = run(1, 0.1, 0.05, 0.3, 0.3);
    EXPECT_EQ(run(1, 0.1, 0.07, 0.3, 0.3), base1);
    EXPECT_NE(run(1, 0.2, 0.05, 0.3, 0.3), base1);
    EXPECT_EQ(run(3, 0.1, 0.05, 0.2, 0.3), base3);
    EXPECT_NE(run(3, 0.1, 0.05, 0.3, 0.2), base3);
}

TEST(MassStep, SlotsFoundInAdvanceAssembleBitForBit)
{
    // fixed nodes on two faces, fractures, a field with structure: the same a, b, rvec
    TransportCase c(4, 3, 3, 1.0, 0.5, 2.0, "1 0 0 0 0 1 0\n1 3 1 4 1.0 0\n1 4 1 3 0.5 0\n");
    c.add_fracture(FractureRecord{1, 4, 2, 2, 1, 3, 2, 3, 1e-3});
    c.add_fracture(FractureRecord{2, 3, 1, 1, 1, 3, 1, 2, 1e-3});
    for (int l = 1; l <= c.fr.nfrac; ++l) c.v.vlin[l] = c.v.vx2d[l] = c.v.vy2d[l] = 1e-4 * l;
    for (int e = 1; e <= c.g.net; ++e) {
        c.v.vx[e] = 1e-5 * std::sin(e);
        c.v.vy[e] = -2e-6 * e;
        c.v.vz[e] = 3e-6 * std::cos(e);
    }
    for (int n = 1; n <= c.g.nnt; ++n) c.f.t20[n] = std::sin(0.3 * n);
    c.mp.agefx = 1e-3;
    c.mp.scheme.dtinv = 1e-4;
    c.mp.scheme.dthalf = 5e3;
    const MassSources src{c.qsrc, c.csrc};
    assemble_mass(c.g, c.m, c.fr, c.v, c.et, c.mp, src, c.mass, c.f, c.w, c.cmat);
    const SolverWork fast = c.w;
    c.mass.epos = ElementPositions{};
    assemble_mass(c.g, c.m, c.fr, c.v, c.et, c.mp, src, c.mass, c.f, c.w, c.cmat);
    const auto same_bits = [](const std::vector<double>& x, const std::vector<double>& y) {
        return x.size() == y.size() && std::memcmp(x.data(), y.data(), x.size() * sizeof(double)) == 0;
    };
    EXPECT_TRUE(same_bits(fast.a, c.w.a));
    EXPECT_TRUE(same_bits(fast.b, c.w.b));
    EXPECT_TRUE(same_bits(fast.rvec, c.w.rvec));
}

TEST(MassStep, SourcesDiluteTowardsTheirConcentration)
{
    // one free node fed hard at C = 2 comes close to 2; a withdrawal changes nothing;
    // a source on a fixed node lands on the equation below it, never outside the system
    TransportCase c(2, 1, 1, 1.0, 1.0, 1.0, "");
    c.fill(0.0);
    const int n = grid_node(2, 1, 1, c.g.ny, c.g.nzt);
    c.qsrc[n] = 10.0;
    c.csrc[n] = 2.0;
    c.qsrc[1] = -5.0;
    c.csrc[1] = 7.0;
    c.step(100.0);
    EXPECT_NEAR(c.f.t2[n], 2.0, 1e-3);
    EXPECT_LT(c.f.t2[1], 0.1);

    TransportCase f(1, 1, 1, 1.0, 1.0, 1.0, "1 0 0 0 0 0 0\n1 2 1 2 1.0 0\n");
    f.fill(0.0);
    f.qsrc[1] = 1.0;  // node 1 and all below it are fixed: dropped
    f.qsrc[4] = 1.0;  // fixed node 4: slot 4 - 4 = 0, dropped
    f.csrc[1] = f.csrc[4] = 9.0;
    f.step(100.0);
    for (int i = 1; i <= f.g.nnt; ++i) EXPECT_LE(f.f.t2[i], 1.0 + 1e-12) << i;
}

}  // namespace
