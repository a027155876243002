#include "flow_case.hpp"
#include "solver/lower_csr.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace {

// Fixed heads on both x faces of a 10 m bar: the steady heads are linear and the pore
// velocity is K times the gradient over the porosity, in every element.
TEST(FlowSystem, SteadyFlowBetweenTwoFixedHeads)
{
    FlowCase c(10, 1, 1, 1.0, 1.0, 1.0, "1 1 0 0 0 0 0\n1 2 1 2 10.0 0\n1 2 1 2 9.0 0\n", 1.0e-5, 1.0e-4, 0.25);
    for (double& h : c.f.u) h = 9.5;
    for (int s = 0; s < 30; ++s) c.step(1.0e6);
    for (int i = 1; i <= 11; ++i)
        for (int j = 1; j <= 2; ++j)
            for (int k = 1; k <= 2; ++k) {
                const double want = 10.0 - 0.1 * (i - 1);
                EXPECT_NEAR(c.head(i, j, k), want, 1e-8 * want) << i << " " << j << " " << k;
            }
    c.velocities(0);
    for (int e = 1; e <= c.g.ne; ++e) {
        EXPECT_NEAR(c.v.vx[e], 1.0e-5 * 0.1 / 0.25, 1e-6 * 4e-6) << e;
        EXPECT_LT(std::fabs(c.v.vz[e]), 1e-18);
    }
    // the Gauss-point path gives the same centre velocity on bricks
    const double vx0 = c.v.vx[3];
    c.velocities(1);
    EXPECT_NEAR(c.v.vx[3], vx0, 1e-12 * vx0);
}

// Largest error against h = erfc(x / (2 sqrt(D t))) after a unit step of head at x = 0,
// D = K/ss, on a 100 m bar of elements dx, in steps of dt up to t = 1e4 s.
double diffusion_error(double dx, double dt)
{
    const int nex = (int)std::lround(100.0 / dx);
    const std::string b = "1 1 0 0 0 0 0\n1 2 1 2 1.0 0\n1 2 1 2 0.0 0\n";
    FlowCase c(nex, 1, 1, dx, 1.0, 1.0, b, 1.0e-5, 1.0e-3, 0.3);
    for (int n = 1; n <= c.g.nn; ++n) c.f.u[n] = c.flow.idir[n] ? c.flow.fc[n] : 0.0;
    const double t = 1.0e4;
    for (int s = 0; s < (int)std::lround(t / dt); ++s) c.step(dt);
    const double D = 1.0e-5 / 1.0e-3;
    double err = 0;
    for (int i = 1; i <= c.g.nx; ++i) {
        const double x = (i - 1) * dx;
        err = std::max(err, std::fabs(c.head(i, 1, 1) - std::erfc(x / (2 * std::sqrt(D * t)))));
    }
    return err;
}

TEST(FlowSystem, TransientDiffusionFollowsTheErfcSolution)
{
    const double coarse = diffusion_error(1.0, 100.0);
    const double fine = diffusion_error(0.5, 25.0);
    EXPECT_LT(coarse, 0.01);
    EXPECT_LT(fine, 0.5 * coarse);
}

// A closed column of warm water with a fixed head on top settles where the head
// gradient balances the buoyancy: dh/dz = -r and no vertical flow.
TEST(FlowSystem, HydrostaticColumnWithTemperatureDrivenDensity)
{
    FlowCase c(1, 1, 10, 1.0, 1.0, 1.0, "0 0 0 0 0 1 0\n1 2 1 2 10.0 0\n", 1.0e-5, 1.0e-4, 0.3);
    c.fp.lheat = true;
    for (double& t : c.f.t1) t = 20.0;
    for (double& h : c.f.u) h = 10.0;
    for (int s = 0; s < 40; ++s) c.step(1.0e7);
    const double t4 = 16.0;
    const double r = t4 * (t4 * 2.166e-08 - 6.562e-06) * t4;
    for (int k = 1; k < 11; ++k) EXPECT_NEAR(c.head(1, 1, k + 1) - c.head(1, 1, k), -r, 1e-5 * std::fabs(r)) << k;
    c.velocities(0);
    const double scale = 1.0e-5 * std::fabs(r) / 0.3;  // the velocity r alone would drive
    for (int e = 1; e <= c.g.ne; ++e) EXPECT_LT(std::fabs(c.v.vz[e]), 1e-5 * scale) << e;
    // against a uniform head the same column would sink or rise at K r / (rv por)
    for (double& h : c.f.u) h = 10.0;
    c.velocities(0);
    EXPECT_NEAR(c.v.vz[5], -1.0e-5 / flow_viscosity(20.0) * r / 0.3, 1e-12 * scale);
}

// A horizontal plane fracture along the bottom of an almost impermeable bar carries the
// flow of the parallel-plate (cubic) law: Q = gk b^3 W dh / (12 L).
TEST(FlowSystem, PlaneFractureCarriesTheCubicLawFlow)
{
    FlowCase c(10, 1, 1, 1.0, 1.0, 1.0, "1 1 0 0 0 0 0\n1 2 1 2 1.0 0\n1 2 1 2 0.0 0\n", 1.0e-15, 1.0e-6, 0.3);
    const double b = 1.0e-4;
    c.add_fracture({1, 10, 1, 1, 1, 1, 2, 5, b});
    ASSERT_EQ(c.fr.nfrac, 10);
    for (int s = 0; s < 20; ++s) c.step(1.0e6);
    for (int i = 1; i <= 11; ++i) EXPECT_NEAR(c.head(i, 1, 1), 1.0 - 0.1 * (i - 1), 1e-7) << i;
    c.velocities(0);
    const double q_cubic = c.fr.gk * b * b * b * 1.0 * 1.0 / (12.0 * 10.0);
    for (int l = 1; l <= c.fr.nfrac; ++l) {
        EXPECT_NEAR(c.v.vx2d[l] * b * 1.0, q_cubic, 1e-6 * q_cubic) << l;
        EXPECT_LT(std::fabs(c.v.vy2d[l]), 1e-6 * c.v.vx2d[l]);
    }
}

// On bricks the closed-form matrices are the exact integrals: both paths agree.
TEST(FlowSystem, DirectAndNumericalIntegrationAgreeOnBricks)
{
    const std::string b = "1 0 0 0 0 0 0\n1 3 1 3 5.0 0\n";
    FlowCase a(3, 2, 2, 2.0, 1.5, 0.5, b, 2.0e-5, 1.0e-3, 0.3);
    FlowCase n(3, 2, 2, 2.0, 1.5, 0.5, b, 2.0e-5, 1.0e-3, 0.3);
    n.fp.kint = 1;
    for (FlowCase* c : {&a, &n}) {
        c->fp.lheat = true;
        for (int k = 1; k <= c->g.nnt; ++k) c->f.t1[k] = 2.0 + 0.1 * k;
        for (int k = 1; k <= c->g.nn; ++k) c->f.u[k] = 4.0 + 0.01 * k;
        c->step(3600.0);
    }
    for (int k = 1; k <= a.g.nn; ++k) EXPECT_NEAR(a.f.u[k], n.f.u[k], 1e-9 * std::fabs(a.f.u[k])) << k;
}


TEST(FlowSystem, SlotsFoundInAdvanceAssembleBitForBit)
{
    // fixed heads on two faces, a plane fracture, buoyancy: the same a, b and storage terms
    FlowCase c(4, 3, 3, 1.0, 0.7, 2.0, "1 0 0 0 0 1 0\n1 4 1 4 10.0 0\n1 5 1 4 9.5 0\n", 2.0e-5, 1.0e-4, 0.3);
    c.add_fracture(FractureRecord{2, 3, 1, 3, 1, 3, 2, 1, 1e-3});
    for (int n = 1; n <= c.g.nnt; ++n) {
        c.f.t1[n] = 4.0 + std::sin(0.7 * n);
        c.f.u0[n <= c.g.nn ? n : 1] = 9.0 + 0.01 * n;
    }
    c.fp.lheat = true;
    c.fp.dtinv = 1e-5;
    assemble_flow(c.g, c.m, c.fr, c.et, c.fp, c.qsrc, c.flow, c.f, c.w, c.bs);
    const SolverWork slow = c.w;
    const std::vector<double> slow_bs = c.bs;
    element_positions(c.flow.pat, c.g.in, c.g.ne, c.flow.idir, c.flow.ncum, 15, c.flow.epos);
    assemble_flow(c.g, c.m, c.fr, c.et, c.fp, c.qsrc, c.flow, c.f, c.w, c.bs);
    const auto same_bits = [](const std::vector<double>& x, const std::vector<double>& y) {
        return x.size() == y.size() && std::memcmp(x.data(), y.data(), x.size() * sizeof(double)) == 0;
    };
    EXPECT_TRUE(same_bits(slow.a, c.w.a));
    EXPECT_TRUE(same_bits(slow.b, c.w.b));
    EXPECT_TRUE(same_bits(slow_bs, c.bs));
}

}  // namespace
