#include "support/tecplot_check.hpp"

#include <gtest/gtest.h>

namespace {

// A two-zone file: the second zone shares x and z with the first.
const char* const kShared =
    "variables=\"x\",\"z\",\"T\"\n"
    "zone i=     2, j=     1, T=\"t = 0 days, knoy=     1\"\n"
    "   0.000000E+00   0.000000E+00   0.800000E+01   0.100000E+01   0.000000E+00\n"
    "   0.650000E+01\n"
    "zone i=     2, j=     1, D=(1,2), T=\"t= 0.100000E+01 days\"\n"
    "   0.800000E+01   0.650000E+01\n";

TEST(TecplotCheck, SharedCoordinatesCountOnlyTheirOwnColumns)
{
    const CheckReport r = check_plot_text(kShared, e_rows(5, 15, 6));
    EXPECT_TRUE(r.ok()) << r.text();
    EXPECT_EQ(r.zones, 2);
    EXPECT_EQ(r.values, 8);
    EXPECT_EQ(r.variables, 3);
}

TEST(TecplotCheck, AValueTooManyOrTooFewIsReported)
{
    std::string s = kShared;
    s += "   0.100000E+01\n";
    CheckReport r = check_plot_text(s, e_rows(5, 15, 6));
    ASSERT_FALSE(r.ok());
    EXPECT_NE(r.text().find("promises 2 values, holds 3"), std::string::npos) << r.text();

    s = kShared;
    s.erase(s.rfind("   0.650000E+01"));
    s += "\n";
    r = check_plot_text(s, e_rows(5, 15, 6));
    EXPECT_NE(r.text().find("promises 2 values, holds 1"), std::string::npos) << r.text();
}

TEST(TecplotCheck, OverflowAndMalformedFieldsAreReported)
{
    std::string s = kShared;
    s.replace(s.find("   0.800000E+01   0.650000E+01"), 30, "***************   0.650000E+01");
    CheckReport r = check_plot_text(s, e_rows(5, 15, 6));
    EXPECT_NE(r.text().find("asterisks"), std::string::npos) << r.text();

    s = kShared;
    s.replace(s.find("   0.650000E+01\n"), 15, "    0.65000E+01");  // five decimals in an E15.6 file
    r = check_plot_text(s, e_rows(5, 15, 6));
    EXPECT_NE(r.text().find("is not E15.6"), std::string::npos) << r.text();

    s = kShared;
    s.replace(s.find("   0.650000E+01\n"), 16, "  0.650000E+01\n");  // 14 columns
    r = check_plot_text(s, e_rows(5, 15, 6));
    EXPECT_NE(r.text().find("not whole fields of 15"), std::string::npos) << r.text();
}

TEST(TecplotCheck, RowsWrapOnlyAtTheEndOfAZone)
{
    const char* const text =
        "variables=\"x\",\"z\",\"T\"\n"
        "zone i=     2, j=     1\n"
        "   0.000000E+00   0.000000E+00\n"
        "   0.800000E+01   0.100000E+01   0.000000E+00   0.650000E+01\n";
    const CheckReport r = check_plot_text(text, e_rows(5, 15, 6));
    EXPECT_NE(r.text().find("short record before the end"), std::string::npos) << r.text();
}

TEST(TecplotCheck, FieldForms)
{
    const FieldFormat e{'E', 15, 6}, f{'F', 9, 4}, i{'I', 6, 0};
    EXPECT_TRUE(well_formed_field("   0.100000E+01", e));
    EXPECT_TRUE(well_formed_field("  -0.100000E-01", e));
    EXPECT_TRUE(well_formed_field("   0.123400-119", e));  // three-digit exponent without E
    EXPECT_FALSE(well_formed_field("   1.000000E+00", e));
    EXPECT_FALSE(well_formed_field("  0.100000E+01 ", e));
    EXPECT_FALSE(well_formed_field("            NaN", e));
    EXPECT_FALSE(well_formed_field("***************", e));
    EXPECT_TRUE(well_formed_field("  20.0000", f));
    EXPECT_TRUE(well_formed_field("  -0.5000", f));
    EXPECT_FALSE(well_formed_field("  20.000 ", f));
    EXPECT_TRUE(well_formed_field("    12", i));
    EXPECT_FALSE(well_formed_field("   1.2", i));
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
    r = check_plot_text(head, e_rows(2, 16, 8));
    EXPECT_TRUE(r.ok()) << r.text();
    r = check_plot_text(head + "  0.30000000E+01\n", e_rows(2, 16, 8));
    EXPECT_FALSE(r.ok());
}

TEST(TecplotCheck, KeysInsideTitlesAndBackToBackNamesAreRead)
{
    // "knoy=" and "t=" inside the title are not zone keys; the two names written without
    // a comma between them are still two variables
    const char* const text =
        "variables=\"a\",\"b\"\"c\"\n"
        "zone i=     1, j=     2,t=\" 0.0 days; knoy= 7, k= 9\"\n"
        "   0.100000E+01   0.200000E+01   0.300000E+01\n"
        "   0.100000E+01   0.200000E+01   0.300000E+01\n";
    const CheckReport r = check_plot_text(text, e_rows(3, 15, 6));
    EXPECT_TRUE(r.ok()) << r.text();
    EXPECT_EQ(r.variables, 3);
}

TEST(TecplotCheck, FixedRowLayout)
{
    const RecordLayout row{FieldFormat{}, 0, {{'E', 12, 4}, {'I', 6, 0}, {'E', 15, 5}}};
    const char* const good = "variables=\"x\",\"i\",\"v\"\nzone i=     1, j=     1\n  0.2500E+01     1    0.51500E+01\n";
    EXPECT_TRUE(check_plot_text(good, row).ok());
    const char* const bad = "variables=\"x\",\"i\",\"v\"\nzone i=     1, j=     1\n  0.2500E+01   1.0    0.51500E+01\n";
    EXPECT_NE(check_plot_text(bad, row).text().find("is not I6"), std::string::npos);
}

TEST(TecplotCheck, DataBeforeAZoneAndAFirstZoneThatSharesAreErrors)
{
    CheckReport r = check_plot_text("variables=\"a\"\n   0.100000E+01\n", e_rows(5, 15, 6));
    EXPECT_NE(r.text().find("data outside a zone"), std::string::npos);
    r = check_plot_text("variables=\"a\",\"b\"\nzone i=     1, D=(1)\n   0.100000E+01\n", e_rows(5, 15, 6));
    EXPECT_NE(r.text().find("first zone shares"), std::string::npos) << r.text();
}

}  // namespace
