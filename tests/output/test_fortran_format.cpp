#include "output/fortran_format.hpp"

#include <gtest/gtest.h>

namespace {

struct ECase { double v; int w, d; const char* want; };
const ECase kE[] = {
    {1.0, 15, 6, "   0.100000E+01"},
    {-1.0, 15, 6, "  -0.100000E+01"},
    {0.0, 15, 6, "   0.000000E+00"},
    {-0.0, 15, 6, "  -0.000000E+00"},
    {123.456, 12, 4, "  0.1235E+03"},
    {9.99999995, 15, 6, "   0.100000E+02"},   // rounding carries into the exponent
    {0.099999996, 15, 6, "   0.100000E+00"},
    {1.234e-120, 15, 6, "   0.123400-119"},   // three-digit exponent drops the E
    {-1.0e5, 8, 2, "********"},               // -0.10E+06 needs 9 columns
    {1.0e5, 8, 2, "0.10E+06"},
    {-1.0e5, 9, 2, "-0.10E+06"},
    {1.0e-5, 11, 2, "   0.10E-04"},
    {6.02e23, 16, 8, "  0.60200000E+24"},
    {1e300, 10, 3, " 0.100+301"},
};

TEST(FortranFormat, EFields)
{
    for (const ECase& c : kE) EXPECT_EQ(fmt_e(c.v, c.w, c.d), c.want) << c.v;
}

struct FCase { double v; int w, d; const char* want; };
const FCase kF[] = {
    {20.0, 9, 4, "  20.0000"},
    {-3.14159, 9, 4, "  -3.1416"},
    {0.5, 9, 4, "   0.5000"},
    {0.5, 5, 4, ".5000"},          // the leading zero goes when space is short
    {-0.5, 6, 4, "-.5000"},
    {-1.0e5, 8, 2, "********"},
    {-0.00001, 9, 4, "  -0.0000"},
    {12345.678, 9, 4, "*********"},
    {100.0, 15, 5, "      100.00000"},
};

TEST(FortranFormat, FFields)
{
    for (const FCase& c : kF) EXPECT_EQ(fmt_f(c.v, c.w, c.d), c.want) << c.v;
}

TEST(FortranFormat, IAndAFields)
{
    EXPECT_EQ(fmt_i(44, 5), "   44");
    EXPECT_EQ(fmt_i(-44, 3), "-44");
    EXPECT_EQ(fmt_i(123456, 5), "*****");
    EXPECT_EQ(fmt_i(0, 1), "0");
    EXPECT_EQ(fmt_a("abc", 5), "  abc");
    EXPECT_EQ(fmt_a("abcdef", 3), "abc");
}

TEST(FortranFormat, FreeFormatEcho)
{
    EXPECT_EQ(free_line("grid definition:"), " grid definition:");
    EXPECT_EQ(free_line("n =", 5), " n =           5");
    EXPECT_EQ(free_line(5, -12), "           5         -12");
    EXPECT_EQ(free_line(1.0), "   1.0000000000000000     ");
    EXPECT_EQ(free_line(-1.0), "  -1.0000000000000000     ");
    EXPECT_EQ(free_line(0.5), "  0.50000000000000000     ");
    EXPECT_EQ(free_line(123.456), "   123.45600000000000     ");
    EXPECT_EQ(free_line(0.0), "   0.0000000000000000     ");
    EXPECT_EQ(free_line(1.0e-5), "   1.0000000000000001E-005");
    EXPECT_EQ(free_line(-2.5e20), "  -2.5000000000000000E+020");
    EXPECT_EQ(free_line(7, "after"), "           7 after");
    EXPECT_EQ(free_items("maxs = ", 2), "maxs =            2");
    // every real field is 25 columns wide behind its separating blank
    for (double v : {3.0, 0.1, 0.099, 1e16, 1e17, 9.99999999999999999e16, -7.5e-300})
        EXPECT_EQ(fmt_free_real(v).size(), 25u) << v;
}

}  // namespace
