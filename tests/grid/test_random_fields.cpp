#include "base/stop.hpp"
#include "grid/properties.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

// Six flow elements with anisotropic zone values and porosity 0.3.
Media six_elements()
{
    Media m;
    m.ne = m.net = 6;
    for (std::vector<double>* a : {&m.ckx, &m.cky, &m.ckz, &m.por, &m.sw, &m.tcx, &m.csol}) a->assign(7, 0.0);
    for (int e = 1; e <= 6; ++e) {
        m.ckx[e] = 1e-5;
        m.cky[e] = 2e-5;
        m.ckz[e] = 1e-6;
        m.por[e] = 0.3;
        m.tcx[e] = 2.5;
    }
    return m;
}

struct Read {
    Media m = six_elements();
    std::ostringstream out;
    bool stopped = false;
    Read(const std::string* file, int krk)
    {
        std::istringstream in(file ? *file : "");
        try {
            read_random_fields(file ? &in : nullptr, krk, m, Listing{&out});
        } catch (const RunStopped&) {
            stopped = true;
        }
    }
    std::string text() const { return out.str(); }
};

// ln K of -11.5 .. -9 in steps of 0.5, one a line; a remark after a value is lost.
const std::string kField = "fgen field, K\n 3 2 1\n-11.5\n-11.0 99.0\n-10.5\n-10.0\n-9.5\n-9.0\n";
const std::string kPorosity = "fgen field, porosity\n3,2,1\n-1.2\n-1.0\n-0.8\n-0.6\n-0.4\n0.0\n";

TEST(RandomFields, KFieldIsIsotropicAndLeavesTheRest)
{
    const Read r(&kField, 1);
    ASSERT_FALSE(r.stopped) << r.text();
    for (int e = 1; e <= 6; ++e) {
        const double k = std::exp(-11.5 + 0.5 * (e - 1));
        EXPECT_DOUBLE_EQ(r.m.ckx[e], k) << e;
        EXPECT_DOUBLE_EQ(r.m.cky[e], k) << e;
        EXPECT_DOUBLE_EQ(r.m.ckz[e], k) << e;
        EXPECT_EQ(r.m.por[e], 0.3);
        EXPECT_EQ(r.m.tcx[e], 2.5);
    }
    // exp(-9) = 1.2340980408667956e-4, exp(-11.5) = 1.0130093598630711e-5
    EXPECT_EQ(r.text(), " reading K field from fgen92.asc ... \n"
                        " max, min conductivities from fgen input file ... \n"
                        " cmax m/s...    1.2340980408667956E-004\n"
                        "   cmin m/s...    1.0130093598630711E-005\n");
}

TEST(RandomFields, PorosityFieldFollows)
{
    const std::string file = kField + kPorosity;
    const Read r(&file, 2);
    ASSERT_FALSE(r.stopped) << r.text();
    EXPECT_DOUBLE_EQ(r.m.por[1], std::exp(-1.2));
    EXPECT_DOUBLE_EQ(r.m.por[6], 1.0);
    EXPECT_TRUE(r.text().ends_with(" reading porosity field from fgen92.asc ... \n"
                                   " max, min porosities from fgen input file ... \n"
                                   " pormax...    1.0000000000000000     \n"
                                   "   pormin...   0.30119421191220214     \n"))
        << r.text();
    // krk = 1 never reads the porosity section
    const Read k(&file, 1);
    EXPECT_EQ(k.m.por[1], 0.3);
}

TEST(RandomFields, MissingPorositySectionKeepsTheZones)
{
    const Read r(&kField, 2);
    ASSERT_FALSE(r.stopped) << r.text();
    EXPECT_EQ(r.m.por[4], 0.3);
    EXPECT_TRUE(r.text().ends_with(" reading porosity field from fgen92.asc ... \n\n"
                                   "          end of file reading porosities: fgen92.asc file ...\n"
                                   "          porosities do not exist (check dogfld: fgen92.gen ?) ...\n"
                                   "          continuing with porosities from gelmor.data ...\n"))
        << r.text();
}

struct Bad {
    std::string file;
    int krk;
    const char* tail;
};

TEST(RandomFields, FailuresStopWithTheirWords)
{
    const Bad cases[] = {
        {"t\n3 2 2\n", 1,
         "\n\n          error reading fgen92.asc (K) ...\n"
         "          fgen elements (          12 ) <> ne in gelmor ...\n          program stopping ... \n"},
        {"t\n3 2\n", 1, "\n\n          error reading fgen92.asc K field\n          program stopping ...\n"},
        {"t\n3 2 1\n1\n2\n3\n", 1, "\n\n          error reading fgen92.asc K field\n          program stopping ...\n"},
        {"t\n3 2 1\n1\n2\nx\n4\n5\n6\n", 1, "error reading fgen92.asc K field\n          program stopping ...\n"},
        {kField + "t\n6 1 2\n", 2,
         "\n\n          error reading fgen92.asc (porosities) ...\n"
         "          fgen elements (          12 ) <> ne in gelmor ...\n          program stopping ... \n"},
        {kField + "t\n6 1 1\n0\n0\n", 2,
         "\n\n          error reading fgen92.asc porosity field\n          program stopping ...\n"},
        {kField + "t\n", 2, "\n\n          error reading fgen92.asc porosity field\n          program stopping ...\n"},
        {"t\n100000 100000 100000\n", 1, "fgen elements (     1000000000000000 ) <> ne in gelmor ...\n"
                                         "          program stopping ... \n"},
    };
    for (const Bad& b : cases) {
        const Read r(&b.file, b.krk);
        EXPECT_TRUE(r.stopped) << b.file;
        EXPECT_TRUE(r.text().ends_with(b.tail)) << b.file << "\n" << r.text();
    }
    const Read none(nullptr, 1);
    EXPECT_TRUE(none.stopped);
    EXPECT_EQ(none.text(), "\n          error opening fgen92.asc ...\n"
                           "          this file does not exist ...\n"
                           "          program stopping. \n");
}

}  // namespace
