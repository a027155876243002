#include "support/tecplot_check.hpp"

#include <gtest/gtest.h>

// The strict reader of the result files must pass a sound file and name each fault.

namespace {

// A two-zone file: the second zone shares x and z with the first.
const char* const kShared =
    "variables=\"x\",\"z\",\"T\"\n"
    "zone i=     2, j=     1, T=\"t = 0 days, knoy=     1\"\n"
    "   0.000000E+00   0.000000E+00   0.800000E+01   0.100000E+01   0.000000E+00\n"
    "   0.650000E+01\n"
    "zone i=     2, j=     1, D=(1,2), T=\"t= 0.100000E+01 days\"\n"
    "   0.800000E+01   0.650000E+01\n";

// The report of kShared with `from` replaced by `to`.
std::string fault(const std::string& from, const std::string& to)
{
    std::string s = kShared;
    s.replace(s.rfind(from), from.size(), to);
    return check_plot_text(s, e_rows(5, 15, 6)).text();
}

TEST(TecplotCheck, SharedCoordinatesCountOnlyTheirOwnColumns)
{
    const CheckReport r = check_plot_text(kShared, e_rows(5, 15, 6));
    EXPECT_TRUE(r.ok()) << r.text();
    EXPECT_EQ(r.zones, 2);
    EXPECT_EQ(r.values, 8);
    EXPECT_EQ(r.variables, 3);
}

TEST(TecplotCheck, EachFaultIsReported)
{
    const std::string last = "   0.650000E+01\n";
    EXPECT_NE(fault(last, last + "   0.100000E+01\n").find("promises 2 values, holds 3"), std::string::npos);
    EXPECT_NE(fault("   0.650000E+01", "").find("promises 2 values, holds 1"), std::string::npos);
    EXPECT_NE(fault("   0.800000E+01   0.650000E+01", "***************   0.650000E+01").find("asterisks"),
              std::string::npos);
    EXPECT_NE(fault(last, "    0.65000E+01\n").find("is not E15.6"), std::string::npos);  // five decimals
    EXPECT_NE(fault(last, "  0.650000E+01\n").find("not whole fields of 15"), std::string::npos);
    // a short record before the end of its zone
    EXPECT_NE(fault("   0.100000E+01   0.000000E+00\n   0.650000E+01", "\n   0.100000E+01   0.000000E+00   0.650000E+01")
                  .find("short record before the end"),
              std::string::npos);
    EXPECT_NE(fault("zone i=     2, j=     1, T", "zone i=     2, j=     1, D=(1), T").find("first zone shares"),
              std::string::npos);
    EXPECT_NE(check_plot_text("variables=\"a\"\n   0.100000E+01\n", e_rows(5, 15, 6)).text().find("data outside a zone"),
              std::string::npos);
    const RecordLayout row{FieldFormat{}, 0, {{'E', 12, 4}, {'I', 6, 0}, {'E', 15, 5}}};
    const std::string head = "variables=\"x\",\"i\",\"v\"\nzone i=     1, j=     1\n";
    EXPECT_TRUE(check_plot_text(head + "  0.2500E+01     1    0.51500E+01\n", row).ok());
    EXPECT_NE(check_plot_text(head + "  0.2500E+01   1.0    0.51500E+01\n", row).text().find("is not I6"),
              std::string::npos);
}

TEST(TecplotCheck, OpenCountsTakeTheClosingCountLine)
{
    const std::string head = "variables=\"time\",\"a\"\nzone i=9999, T=\"replace with real # on last line\"\n"
                             "  0.10000000E+01  0.80000000E+01\n  0.20000000E+01  0.80000000E+01\n";
    CheckReport r = check_plot_text(head + "number of print times:        2 (replace 9999 above)\n", e_rows(2, 16, 8));
    EXPECT_TRUE(r.ok()) << r.text();
    r = check_plot_text(head + "number of print times:        3 (replace 9999 above)\n", e_rows(2, 16, 8));
    EXPECT_NE(r.text().find("promises 6 values, holds 4"), std::string::npos) << r.text();
    // without a count line an open zone only needs whole records
    EXPECT_TRUE(check_plot_text(head, e_rows(2, 16, 8)).ok());
    EXPECT_FALSE(check_plot_text(head + "  0.30000000E+01\n", e_rows(2, 16, 8)).ok());
}

}  // namespace
