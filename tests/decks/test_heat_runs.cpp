#include "support/deck_run.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <sstream>

// Whole heat runs driven by the surface forcing, against closed forms.

namespace {

// A heat-only column of 1 x 1 m, no flow (a given velocity of zero), its top held; the
// profile every second step at the column x = 0.  The pieces that differ by test:
struct Column {
    double depth;          // m
    int layers;
    double top;            // C, the held top value (a -999 patch replaces it every step)
    const char* air;       // the cosine set of the air temperature
    const char* freezing;  // p q Ts omega modelwu modelkr, medium and fractures alike
    double initial;        // C, the whole column
    const char* control;   // ccp cct ccw ccc maxit1 maxit2
    const char* interval;  // T1
    const char* patch;     // T3
};

std::string column_deck(const Column& c)
{
    const int nz = c.layers + 1;
    std::ostringstream d;
    d << "heat column\na column under a surface temperature\nheat only\n"
      << "0 2 0 0 0 0 1 0 0 0 0 1 0 0\n1 1 1\n1.0\n1.0\n" << c.depth << "\n1\n1\n" << c.layers << "\n"
      << "0 0.0 0.0\n0 0 0 0 0\n0 0 0 0 0 0 0 0 0.0 0\n1 1 0 0 0 0 0\n"
      << "1 2 1 " << nz << " 10.0 0\n1 2 1 " << nz << " 10.0 0\n"
      << "1 " << c.layers << " 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0\n"
      << "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n1.0e-4\n0 10.0\n0 0 0 0 0 1 0\n1 2 1 2 " << c.top << " 0\n"
      << "2.0 0.3 1.0\n" << c.air << "\n0.1 0.0 365.0 0.0 0.0 0.0 0.0\n1.0 0.0 365.0 0.0 0.0 0.0 0.0\n"
      << "0.0 0.0 1.0 0.0 0.0 0.0 0.0\n1 0.0 0.0 0.0 1\n0.0 0.0 0.0 0.0 0.0 1.0 0.0 0.0 0\n"
      << "4186.0 1000.0 2100.0 917.0 0.6 2.24 334000.0\n" << c.freezing << "\n" << c.freezing << "\n"
      << "1 2 1 2 1 " << nz << " " << c.initial << " " << c.initial << " 0\n" << c.control << "\n"
      << "0.0 0.0 5.0\n1 0 0 0 0\n1 0 0 0 0\n1 0 0 0 0\n100.0 0.0 0.0 0.0 0.0\n" << c.interval << "\n"
      << "0.0 1.0 0.0 1.0\n" << c.patch << "\n0 0 0 0 0 0 0.0 0.0 0.0 0\n0 0 0 0 0.0 0.0 0.0 0\n";
    return d.str();
}

// 5 m in 100 layers under a cosine air temperature of mean 7 C, amplitude 2 C and a
// 10-day period, followed through a -999 patch.
const Column periodic{5.0, 100, 7.0, "1 2 5.0 2.0 10.0 0.0 -50.0 0.0 0.0 -1", "0.05 1.0 -1.0 1.0 0 0", 7.0,
                      "1.0e-4 1.0e-3 1.0e-2 1.0e-3 3 3", "0.0 40.0 0.05 100000 1 100000 100000 0",
                      "1 2 1 2 -999.0 0"};

TEST(HeatRuns, PeriodicTopIsDampedAndDelayedWithDepth)
{
    const DeckRun r = run_deck(column_deck(periodic));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    // t, z, T rows of t1dz_tdum.plt, every second step
    std::map<long, std::vector<std::pair<double, double>>> by_depth;  // z in cm -> (t, T)
    std::istringstream in(r.dir->read("t1dz_tdum.plt"));
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream ls(line);
        double t, z, T, wu;
        if (!(ls >> t >> z >> T >> wu)) continue;
        by_depth[std::lround(z * 100)].push_back({t, T});
    }
    // alpha = k/C of the saturated ground, damping depth d = sqrt(alpha P / pi)
    const double k = std::pow(0.3 * std::sqrt(0.6) + 0.7 * std::sqrt(2.0), 2);
    const double C = 0.3 * 1000.0 * 4186.0 + 0.7 * 800.0 * 2650.0;
    const double P = 10.0, d = std::sqrt(k / C * P * 86400.0 / M_PI);
    for (double depth : {d, 2 * d}) {
        // the node nearest that depth; the fourth period
        const long zc = std::lround((5.0 - std::round(depth / 0.05) * 0.05) * 100);
        const double zdepth = 5.0 - zc / 100.0;
        // the fourth period's harmonic at the forcing frequency: T = 7 + A cos(w t - phi)
        const double w = 2 * M_PI / P;
        double a = 0, b = 0;
        int n = 0;
        for (const auto& [t, T] : by_depth.at(zc)) {
            if (t < 30.0 + 1e-6 || t > 40.0 + 1e-6) continue;
            a += T * std::cos(w * t);
            b += T * std::sin(w * t);
            ++n;
        }
        ASSERT_EQ(n, 100);
        const double amp = 2 * std::hypot(a, b) / n, want = 2.0 * std::exp(-zdepth / d);
        EXPECT_NEAR(amp, want, 0.03 * want) << "depth " << zdepth;
        // the top value enters the assembly a step late: one step of lag at every depth
        const double lag = std::atan2(b, a) - w * 0.05;
        EXPECT_NEAR(lag, zdepth / d, 0.03 * zdepth / d) << "depth " << zdepth;
    }
}

TEST(HeatRuns, SeasonalFrostExampleFreezesAndThawsTheTop)
{
    const DeckRun r = run_deck(example_deck("seasonal_frost"));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    // late winter (90 days): frozen from the top down to the front where half the water
    // is ice (-0.35 C).  A one-phase Neumann front at the winter's mean air temperature
    // (-5.7 C) with all latent heat freed at 0 C would stand at 1.4 m; the deck's gentle
    // freezing curve frees much of it below -0.35 C, so the half-frozen front runs deeper.
    std::istringstream rows(r.dir->read("tc3d1_gelmor.out"));
    std::string line;
    for (int i = 0; i < 3; ++i) std::getline(rows, line);
    double front = 0;
    double zlast = 0, Tlast = 0;
    while (std::getline(rows, line)) {
        std::istringstream ls(line);
        double x, y, z, T, C, H;
        ls >> x >> y >> z >> T >> C >> H;
        if (x != 0 || y != 0) continue;
        if (z > 0 && Tlast > -0.35 && T <= -0.35) front = 10.0 - (zlast + (z - zlast) * (Tlast + 0.35) / (Tlast - T));
        zlast = z;
        Tlast = T;
    }
    EXPECT_GT(front, 1.2);
    EXPECT_LT(front, 2.6);
    EXPECT_GT(Tlast, 0.0) << "the top thaws as the air warms";
}

// One column 3 m deep in layers of 2 cm at the freezing point, its top held at -5 C
// from t = 0: the front of gelmor_1dzfront.plt (Ts = -0.0693, where half the water is
// frozen) against the one-phase Neumann solution.
const Column stefan{3.0, 150, -5.0, "1 2 5.0 0.0 365.0 0.0 -50.0 0.0 0.0 -1", "0.0 10.0 -0.0693147 1.0 1 0", 0.0,
                    "1.0e-4 1.0e-6 1.0e-2 1.0e-3 30 3", "0.0 30.0 0.1 100000 1 100000 100000 0", "0 0 0 0 0.0 0"};

TEST(HeatRuns, FreezingFrontSeriesFollowsNeumann)
{
    const DeckRun r = run_deck(column_deck(stefan));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    std::istringstream in(r.dir->read("gelmor_1dzfront.plt"));
    std::string line;
    double t = 0, z1 = 0, z2 = 0;
    int rows = 0;
    while (std::getline(in, line)) {
        std::istringstream ls(line);
        double a, b, c;
        if (ls >> a >> b >> c) {
            t = a;
            z1 = b;
            z2 = c;
            ++rows;
        }
    }
    ASSERT_EQ(rows, 300);
    const double por = 0.3, Cf = 0.7 * 800.0 * 2650.0 + por * 2100.0 * 917.0;
    const double kf = std::pow(por * std::sqrt(2.24) + 0.7 * std::sqrt(2.0), 2), L = por * 917.0 * 334000.0;
    const double St = Cf * 5.0 / L;
    double lo = 0, hi = 2;
    for (int i = 0; i < 100; ++i) {
        const double mid = (lo + hi) / 2;
        (mid * std::exp(mid * mid) * std::erf(mid) < St / std::sqrt(M_PI) ? lo : hi) = mid;
    }
    const double front = 2 * lo * std::sqrt(kf / Cf * t * 86400.0);
    EXPECT_NEAR(z1, front, 0.03 * front) << "t = " << t;
    EXPECT_TRUE(std::isfinite(z2));
}

}  // namespace
