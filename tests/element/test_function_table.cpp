#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "element/function_table.hpp"
#include "output/fortran_format.hpp"
#include "support/deck_run.hpp"

// The check table of the fluid functions: its layout and a few rows by hand.

namespace {

std::vector<double> values(const std::string& l)
{
    std::vector<double> v;
    std::istringstream is(l);
    for (double d; is >> d;) v.push_back(d);
    return v;
}

struct Inputs {
    FreezeParams m;
    ThermalConstants tc;
    FluidSwitches fs;
    Inputs()
    {
        m.p = 0.05;
        m.q = 0.5;
        m.modelwu = 1;
        tc.cf = 4186.0;
        tc.pf = 1000.0;
        tc.ci = 2108.0;
        tc.rhoi = 920.0;
        tc.tclw = 0.6;
        tc.tcli = 2.14;
        tc.wlh = 334000.0;
        derive_thermal_constants(tc);
        fs = fluid_switches(3, 0.025);
    }
};

}  // namespace

TEST(FunctionTable, LayoutAndRows)
{
    Inputs in;
    std::ostringstream os;
    write_function_table(os, in.m, in.tc, in.fs, 0.3, 0.9, 2.1e6, 3.0);
    const auto ls = split_lines(os.str());
    ASSERT_EQ(ls.size(), 502u);
    // header text as written, each line one free-format record
    const std::string vars = "variables=\"Temp\",\"pw(kg/m3)\",\"rden(T,C=0)\",\"rden(T,C=1)\", "
                             "\"rvisc_w(T)\",\"Wu(T)\",\"dWu(T)\",\"tk(T)\",\"Co(T)\"";
    EXPECT_EQ(ls[0], " " + vars);
    EXPECT_EQ(ls[1], " zone i= 500");
    for (std::size_t k = 2; k < ls.size(); ++k) {
        // nine reals in one free-format record (17 digits read back exactly)
        const auto v = values(ls[k]);
        ASSERT_EQ(v.size(), 9u) << k;
        EXPECT_EQ(ls[k], free_line(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8])) << k;
    }
    // T in single-precision steps: the first row is the float nearest -4.94
    EXPECT_EQ(values(ls[2])[0], (double)(0.06f * 1.0f - 5.0f));
    const auto last = values(ls[501]);
    EXPECT_EQ(last[0], 25.0);

    // the last row by hand: unfrozen water at 25 C
    const double pw25 = 997.30675126;
    EXPECT_NEAR(last[1], pw25, 1e-9);
    EXPECT_NEAR(last[2], pw25 / 1000.0 - 1.0, 1e-14);
    EXPECT_NEAR(last[3], pw25 / 1000.0 - 1.0 + 0.025, 1e-14);
    EXPECT_NEAR(last[4], 0.5031773935412772, 1e-14);
    EXPECT_EQ(last[5], 1.0);
    EXPECT_EQ(last[6], 0.0);
    // the solid term is (1 - por) sqrt(tkmax), not the element's own conductivity
    const double s = 0.27 * std::sqrt(0.6) + 0.7 * std::sqrt(3.0);
    EXPECT_NEAR(last[7], s * s, 1e-14);
    EXPECT_NEAR(last[8], 0.27 * pw25 * 4186.0 + 0.7 * 2.1e6, 1e-6);

    // a frozen row: T = 0.06*50 - 5 = -2 (in single precision), Wu = 0.95 e^(0.5 T) + 0.05
    const auto r = values(ls[51]);
    const double T = r[0];
    EXPECT_NEAR(T, -2.0, 1e-6);
    const double wu = 0.95 * std::exp(0.5 * T) + 0.05;
    const double dwu = 0.95 * 0.5 * std::exp(0.5 * T);
    EXPECT_NEAR(r[5], wu, 1e-15);
    EXPECT_NEAR(r[6], dwu, 1e-15);
    const double st = 0.27 * wu * std::sqrt(0.6) + 0.27 * (1 - wu) * std::sqrt(2.14) +
                      0.7 * std::sqrt(3.0);
    EXPECT_NEAR(r[7], st * st, 1e-14);
    const double d = T - 4.0;
    const double pwT = 1000.0 * ((2.166e-8 * d - 6.562e-6) * d * d + 1.0);
    const double co = 0.27 * wu * pwT * 4186.0 + 0.27 * (1 - wu) * 2108.0 * 920.0 +
                      0.7 * 2.1e6 + 0.3 * 920.0 * 334000.0 * dwu;
    EXPECT_NEAR(r[8], co, 1e-7 * co);
}
