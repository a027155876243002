#include "input/record_reader.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(RecordReader, ValuesAcrossLinesWithRemarksAndBlankLines)
{
    std::istringstream in("1 2   first record, a remark\n\n  3,4.5\n6 7 8 rest dropped\n9\n");
    RecordReader rd(in, "t");
    int a = 0, b = 0, c = 0;
    double d = 0;
    ASSERT_EQ(rd.read(a, b), ReadStatus::ok);
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, 2);
    ASSERT_EQ(rd.read(c, d), ReadStatus::ok);  // the blank line is skipped
    EXPECT_EQ(c, 3);
    EXPECT_DOUBLE_EQ(d, 4.5);
    int e = 0, f = 0;
    ASSERT_EQ(rd.read(e, f), ReadStatus::ok);
    EXPECT_EQ(e, 6);
    EXPECT_EQ(f, 7);
    int g = 0;
    ASSERT_EQ(rd.read(g), ReadStatus::ok);  // "8 rest dropped" went with its line
    EXPECT_EQ(g, 9);
    EXPECT_EQ(rd.read(g), ReadStatus::eof);
}

TEST(RecordReader, TooFewValuesTakeTheNextLine)
{
    std::istringstream in("1 2\n3 4\n5 6\n");
    RecordReader rd(in, "t");
    int a, b, c;
    ASSERT_EQ(rd.read(a, b, c), ReadStatus::ok);
    EXPECT_EQ(c, 3);
    int d, e;
    ASSERT_EQ(rd.read(d, e), ReadStatus::ok);  // the rest of "3 4" is gone: the shift
    EXPECT_EQ(d, 5);
    EXPECT_EQ(e, 6);
}

TEST(RecordReader, RepeatsNullsAndSlash)
{
    std::istringstream in("3*2.5 1\n7 / 8 9\n4,,6\n2*\n10\n");
    RecordReader rd(in, "t");
    double x1 = 0, x2 = 0, x3 = 0;
    int n = 0;
    ASSERT_EQ(rd.read(x1, x2, x3, n), ReadStatus::ok);
    EXPECT_DOUBLE_EQ(x1, 2.5);
    EXPECT_DOUBLE_EQ(x3, 2.5);
    EXPECT_EQ(n, 1);
    int a = -1, b = -1, c = -1;
    ASSERT_EQ(rd.read(a, b, c), ReadStatus::ok);  // the slash leaves b and c alone
    EXPECT_EQ(a, 7);
    EXPECT_EQ(b, -1);
    EXPECT_EQ(c, -1);
    int p = -1, q = -1, r = -1;
    ASSERT_EQ(rd.read(p, q, r), ReadStatus::ok);  // ",," is a null value
    EXPECT_EQ(p, 4);
    EXPECT_EQ(q, -1);
    EXPECT_EQ(r, 6);
    int s = -1, t = -1, u = -1;
    ASSERT_EQ(rd.read(s, t, u), ReadStatus::ok);  // "2*" are two nulls
    EXPECT_EQ(s, -1);
    EXPECT_EQ(t, -1);
    EXPECT_EQ(u, 10);
}

TEST(RecordReader, NumberForms)
{
    const std::pair<const char*, double> reals[] = {{"5", 5.0}, {"1.5d-3", 1.5e-3}, {"-2.E+2", -200.0},
                                                    {".25", 0.25}, {"1.0-3", 1.0e-3}};
    double v = 0;
    for (const auto& [text, want] : reals) {
        EXPECT_TRUE(parse_real(text, v)) << text;
        EXPECT_DOUBLE_EQ(v, want) << text;
    }
    for (const char* bad : {"abc", "1e", ".", "1e999"}) EXPECT_FALSE(parse_real(bad, v)) << bad;
    int i = 0;
    EXPECT_TRUE(parse_int("-17", i));
    EXPECT_EQ(i, -17);
    // integers take no decimal point or exponent
    for (const char* bad : {"1.0", "1e3", "99999999999", "-"}) EXPECT_FALSE(parse_int(bad, i)) << bad;
}

TEST(RecordReader, BadValueAndEndOfFileAreReported)
{
    std::istringstream in("1 x\n");
    RecordReader rd(in, "t");
    int a = 0, b = 0;
    EXPECT_EQ(rd.read(a, b), ReadStatus::bad);
    EXPECT_EQ(rd.line_no(), 1);
    EXPECT_NE(rd.problem().find("\"x\""), std::string::npos);
    std::istringstream in2("1\n");
    RecordReader rd2(in2, "t");
    EXPECT_EQ(rd2.read(a, b), ReadStatus::eof);  // a record cut by the end of the file
}

TEST(RecordReader, TitlesKeepEightyCharacters)
{
    const std::string longline(100, 'a');
    std::istringstream in(longline + "\r\nshort\n");
    RecordReader rd(in, "t");
    std::string t;
    ASSERT_EQ(rd.title(t), ReadStatus::ok);
    EXPECT_EQ(t, std::string(80, 'a'));
    ASSERT_EQ(rd.title(t), ReadStatus::ok);
    EXPECT_EQ(t, "short");
    EXPECT_EQ(rd.title(t), ReadStatus::eof);
}

}  // namespace
