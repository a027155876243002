#include <gtest/gtest.h>

#include <cmath>

#include "element/fluid.hpp"

// Density, viscosity, freezing curves and mixing rules against hand-computed values.

TEST(Fluid, DensityAndViscosity)
{
    EXPECT_EQ(pw(4.0, true), 1000.0);
    EXPECT_EQ(rden(4.0, 0.0, 0.02, true, true), 0.0);
    // d = -4: (2.166e-8*(-4) - 6.562e-6)*16 = -1.0637824e-4
    EXPECT_NEAR(pw(0.0, true), 999.89362176, 1e-9);
    // no clamp below freezing: the cubic goes on (d = -14)
    EXPECT_NEAR(pw(-10.0, true), 1000.0 * ((2.166e-8 * -14 - 6.562e-6) * 196 + 1), 1e-12);
    // the thermal part of rden is pw/1000 - 1, the solute part gammac*C
    EXPECT_DOUBLE_EQ(rden(20.0, 0.5, 0.025, false, true), 0.0125);
    EXPECT_NEAR(rden(0.0, 0.5, 0.025, true, true), 0.0125 - 1.0637824e-4, 1e-15);
    EXPECT_EQ(rvisc_w(0.0, true), 1.0);
    // exp((0.001303 - 0.03073)*10), exp((-0.0002606 - 0.03073)*(-2))
    EXPECT_NEAR(rvisc_w(10.0, true), 0.7450752939534823, 1e-14);
    EXPECT_NEAR(rvisc_w(-2.0, true), 1.0639423424239751, 1e-14);
    for (double T : {-20.0, 37.0}) {  // switched off
        EXPECT_EQ(pw(T, false), 1000.0);
        EXPECT_EQ(rvisc_w(T, false), 1.0);
        EXPECT_EQ(rden(T, 0.7, 0.025, false, false), 0.0);  // age transport: no buoyancy
    }
}

TEST(Fluid, WuModelsAtTheirBoundaries)
{
    const double p = 0.1, q = 2.0;
    for (double T : {-30.0, -1.0, 0.0, 5.0}) {
        EXPECT_EQ(Wu(T, p, q, 0, 0.0), 1.0);
        EXPECT_EQ(dWu(T, p, q, 0, 0.0), 0.0);
        EXPECT_EQ(Wu(T, p, q, 9, 0.0), 1.0);  // unknown model
        EXPECT_EQ(dWu(T, p, q, -1, 0.0), 0.0);
    }
    // the comparisons are strict: T = 0 is unfrozen
    for (int m : {1, 2, 4}) {
        EXPECT_EQ(Wu(0.0, p, q, m, 0.0), 1.0) << m;
        EXPECT_EQ(dWu(0.0, p, q, m, 0.0), 0.0) << m;
    }
    EXPECT_NEAR(Wu(-1e-9, p, q, 1, 0.0), 1.0, 1e-8);
    EXPECT_NEAR(Wu(-1.0, p, q, 1, 0.0), 0.9 * std::exp(-2.0) + 0.1, 1e-15);
    EXPECT_NEAR(Wu(-1.0, p, q, 1, 0.0), 0.22180175491295145, 1e-15);
    // model 2 has no residual: exp(-(1/2)^2), and tends to 0
    EXPECT_NEAR(Wu(-1.0, p, q, 2, 0.0), 0.7788007830714049, 1e-15);
    EXPECT_LT(Wu(-20.0, p, q, 2, 0.0), 1e-40);
    // model 4 tends to p
    EXPECT_NEAR(Wu(-1.0, p, q, 4, 0.0), 0.9 * 0.7788007830714049 + 0.1, 1e-15);
    EXPECT_NEAR(Wu(-50.0, p, q, 4, 0.0), p, 1e-15);
}

TEST(Fluid, WuModel3Ramp)
{
    // slope 0.5 from 1 at Ts = -1 to p = 0.2 at the knee Ts - 0.8/0.5 = -2.6
    const double p = 0.2, q = 0.5, Ts = -1.0;
    EXPECT_EQ(Wu(0.5, p, q, 3, Ts), 1.0);
    EXPECT_EQ(Wu(-0.5, p, q, 3, Ts), p);    // [Ts, 0) falls through to p
    EXPECT_EQ(Wu(-1.0, p, q, 3, Ts), p);    // T = Ts is not below Ts either
    EXPECT_EQ(dWu(-0.5, p, q, 3, Ts), 0.0);
    EXPECT_NEAR(Wu(-1.5, p, q, 3, Ts), 0.2 + 0.5 * 1.1, 1e-15);
    EXPECT_EQ(dWu(-1.5, p, q, 3, Ts), q);
    EXPECT_EQ(Wu(-3.0, p, q, 3, Ts), p);
    EXPECT_EQ(dWu(-3.0, p, q, 3, Ts), 0.0);
    EXPECT_EQ(Wu(0.0, p, q, 3, Ts), 1.0);
    // a front at 0 gives a continuous ramp: 0.2 + 0.5*(-0.5 + 1.6)
    EXPECT_NEAR(Wu(-0.5, p, q, 3, 0.0), 0.75, 1e-15);
    EXPECT_NEAR(Wu(-1.6 + 1e-12, p, q, 3, 0.0), p, 1e-11);
    // a front above 0: the ramp covers [T1, Ts), 1 above
    EXPECT_NEAR(Wu(0.5, p, q, 3, 1.0), 1.0 - 0.25, 1e-15);
    EXPECT_EQ(Wu(1.0, p, q, 3, 1.0), 1.0);
}

// Central difference of Wu, away from the kinks of each model.
static double fd(double T, double p, double q, int m, double Ts)
{
    const double h = 1e-6;
    return (Wu(T + h, p, q, m, Ts) - Wu(T - h, p, q, m, Ts)) / (2.0 * h);
}

TEST(Fluid, DWuAgainstFiniteDifference)
{
    const double p = 0.15, q = 0.8;
    for (double T : {-0.05, -0.7, -1.3, -2.9}) {
        EXPECT_NEAR(dWu(T, p, q, 1, 0.0), fd(T, p, q, 1, 0.0), 1e-8) << T;
        EXPECT_NEAR(dWu(T, p, q, 4, 0.0), fd(T, p, q, 4, 0.0), 1e-8) << T;
        // model 2 is q times the true derivative
        EXPECT_NEAR(dWu(T, p, q, 2, 0.0), q * fd(T, p, q, 2, 0.0), 1e-8) << T;
    }
    // model 3 inside its ramp (Ts = -0.5, knee at -0.5 - 0.85/0.8 = -1.5625)
    for (double T : {-0.6, -1.0, -1.5}) EXPECT_NEAR(dWu(T, p, q, 3, -0.5), fd(T, p, q, 3, -0.5), 1e-8);
    EXPECT_EQ(dWu(-1.6, p, q, 3, -0.5), 0.0);
}

TEST(Fluid, RelativePermeability)
{
    const double p = 0.1;
    EXPECT_EQ(kr(p, p, 5.0, 0.3, 1), 1e-6);      // floor, not 0
    EXPECT_EQ(kr(1.0, p, 5.0, 0.3, 1), 1.0);
    EXPECT_NEAR(kr(0.55, p, 5.0, 0.3, 1), 0.0625, 1e-15);  // ((0.45)/(0.9))^4
    EXPECT_EQ(kr(1.0, p, 5.0, 0.3, 2), 1.0);
    EXPECT_NEAR(kr(0.0, p, 10.0, 0.3, 2), 1e-3, 1e-15);    // 10^-(0.3*10)
    EXPECT_EQ(kr(0.0, p, 10.0, 1.0, 2), 1e-6);             // 1e-10 floored
    for (int m : {0, 3, 4})
        for (double wu : {0.0, 0.4, 1.0}) EXPECT_EQ(kr(wu, p, 10.0, 0.3, m), 1.0);
    FreezeParams f;
    f.p = p;
    f.omega = 10.0;
    f.modelkr = 2;
    EXPECT_NEAR(kr(0.0, 0.3, f), 1e-3, 1e-15);
}

TEST(Fluid, CosineForcing)
{
    // surfmin is the minimum, the swing 2*amp
    EXPECT_NEAR(cosine_forcing(-5.0, 10.0, 365.0, 0.0, 0.0, -100.0, 0.0), 15.0, 1e-12);
    EXPECT_NEAR(cosine_forcing(-5.0, 10.0, 365.0, 0.0, 182.5, -100.0, 0.0), -5.0, 1e-10);
    EXPECT_NEAR(cosine_forcing(-5.0, 10.0, 365.0, 91.25, 0.0, -100.0, 0.0), 5.0, 1e-5);
    EXPECT_NEAR(cosine_forcing(-5.0, 10.0, 365.0, 0.0, 91.25, -100.0, 0.0), 5.0, 1e-5);
    // the cutoff is a floor
    EXPECT_EQ(cosine_forcing(-5.0, 10.0, 365.0, 0.0, 182.5, 0.0, 0.0), 0.0);
    // drift of gradt per day: one full period later, 15 + 0.01*365
    EXPECT_NEAR(cosine_forcing(-5.0, 10.0, 365.0, 0.0, 365.0, -100.0, 0.01), 18.65, 1e-9);
    // the single-precision 2*pi: after 1e5 periods the phase has slipped 2*pi - c per period
    const double slip = (6.283185307179586 - 6.28318500518799) * 1e5;
    EXPECT_NEAR(cosine_forcing(0.0, 1.0, 1.0, 0.0, 1e5, -10.0, 0.0), 1.0 + std::cos(slip), 1e-6);
}

TEST(Fluid, BulkConductivitySquareRootMix)
{
    // theta_w = theta_i = 0.15; (0.15 sqrt(0.6) + 0.15 sqrt(2.2) + 0.7 sqrt(2.5))^2
    EXPECT_NEAR(tk(0.5, 0.3, 1.0, 0.6, 2.2, 2.5), 2.0893911415925355, 1e-14);
    // a solid alone, and water alone
    EXPECT_NEAR(tk(1.0, 0.0, 1.0, 0.6, 2.2, 2.5), 2.5, 1e-14);
    EXPECT_NEAR(tk(1.0, 1.0, 1.0, 0.6, 2.2, 2.5), 0.6, 1e-14);
    // dry pores contribute nothing: (0.7 sqrt(2.5))^2
    EXPECT_NEAR(tk(1.0, 0.3, 0.0, 0.6, 2.2, 2.5), 0.49 * 2.5, 1e-14);
}
