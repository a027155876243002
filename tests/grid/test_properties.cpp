#include "base/options.hpp"
#include "base/stop.hpp"
#include "grid/gengrid.hpp"
#include "grid/properties.hpp"
#include "input/deck.hpp"
#include "support/box_grid.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

// A 3 x 2 x 2 box (ne = 12), or with ntop > 0 an unsaturated run whose transport grid
// has ntop more layers (net = 12 + 6*ntop).  Element (i,j,k) = (k-1)*6 + (j-1)*3 + i.
Grid box(int ntop = 0) { return flow_box(3, 2, 2, 3.0, 2.0, 2.0, ntop); }

// The zone lists of a deck fragment, read and applied as the run does.
struct Zones {
    Grid g;
    Media m;
    bool unsat;
    std::istringstream deck;
    std::ostringstream out;
    Listing lst{&out};
    RecordReader rd;
    Zones(const std::string& text, int ntop = 0) : g(box(ntop)), unsat(ntop > 0), deck(text), rd(deck, "gelmor.data")
    {
        size_media(m, g, unsat, lst);
    }
    void read() { read_properties(rd, lst, unsat, g, m); }
    bool stops()
    {
        try {
            read();
        } catch (const RunStopped&) {
            return true;
        }
        return false;
    }
    std::string text() const { return out.str(); }
};

const char* kNoBlocks = "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n";

TEST(Properties, LaterRangesOverwriteAllSevenFields)
{
    Zones z(std::string("1 12 1e-5 2e-5 3e-6 2.0 800.0 2650.0 0.3 1.0 1\n"
                        "5 8 4e-4 5e-4 6e-5 3.0 900.0 2000.0 0.4 0.9 0\n") +
            kNoBlocks);
    z.read();
    for (int e = 1; e <= 12; ++e) {
        const bool second = e >= 5 && e <= 8;
        EXPECT_EQ(z.m.ckx[e], second ? 4e-4 : 1e-5) << e;
        EXPECT_EQ(z.m.cky[e], second ? 5e-4 : 2e-5) << e;
        EXPECT_EQ(z.m.ckz[e], second ? 6e-5 : 3e-6) << e;
        EXPECT_EQ(z.m.tcx[e], second ? 3.0 : 2.0) << e;
        EXPECT_EQ(z.m.csol[e], second ? 1.8e6 : 2.12e6) << e;  // cps*ps, exact in binary
        EXPECT_EQ(z.m.por[e], second ? 0.4 : 0.3) << e;
        EXPECT_EQ(z.m.sw[e], second ? 0.9 : 1.0) << e;
    }
    const std::string t = z.text();
    EXPECT_NE(t.find(" element range        ckx          cky          ckz\n"
                     "    tcx(sol)     cps(sol)    ps(sol)   porosity   saturation\n"
                     "           1          12   1.0000000000000001E-005   2.0000000000000002E-005"),
              std::string::npos)
        << t;
    // the dummy block prints once and ends the list
    EXPECT_NE(t.find(" indexed hydraulic k:\n"), std::string::npos);
    EXPECT_TRUE(t.ends_with(" Indexed elements for K contain 0, data ignored ... \n")) << t;
}

TEST(Properties, BlocksRunXFastestAndAZeroEndsTheList)
{
    Zones z("1 12 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n"
            "2 3 2 2 1 2 7e-4 7e-4 7e-5 1.0 1000.0 2000.0 0.2 0.5 1\n"
            "1 1 1 1 2 2 9e-4 9e-4 9e-5 1.0 1000.0 2000.0 0.25 0.5 1\n"
            "1 1 0 1 1 1 1.0 1.0 1.0 1.0 1.0 1.0 1.0 1.0 1\n"
            "42 the line after the list\n");
    z.read();
    // (2,2,1) = 5, (3,2,1) = 6, (2,2,2) = 11, (3,2,2) = 12; then (1,1,2) = 7
    for (int e = 1; e <= 12; ++e) {
        const double por = (e == 5 || e == 6 || e == 11 || e == 12) ? 0.2 : (e == 7 ? 0.25 : 0.3);
        EXPECT_EQ(z.m.por[e], por) << e;
        EXPECT_EQ(z.m.ckx[e], por == 0.2 ? 7e-4 : (por == 0.25 ? 9e-4 : 1e-5)) << e;
    }
    // the block with a zero ended the list although its more was 1
    int next = 0;
    ASSERT_EQ(z.rd.read(next), ReadStatus::ok);
    EXPECT_EQ(next, 42);
    EXPECT_TRUE(z.text().ends_with(" Indexed elements for K contain 0, data ignored ... \n")) << z.text();
    EXPECT_NE(z.text().find("           2           3           2           2           1           2\n"
                            "   6.9999999999999999E-004"),
              std::string::npos)
        << z.text();
}

struct StopCase {
    const char* text;
    int ntop;
    const char* words;
};

const StopCase kStops[] = {
    {"0 12 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n", 0,
     "\n\n          !! warning !! element range for hyd. conductivity\n"
     "          is out of bounds; check data file and grid dimensions\n          program stopping\n"},
    {"1 -3 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n", 1, "is out of bounds; check data file and grid dimensions\n          program stopping\n"},
    {"1 13 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n", 0, "is out of bounds; check data file and grid dimensions\n          program stopping\n"},
    {"1 12 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n1 4 1 1 1 1 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n", 0,
     "\n\n          Indexed elements for K: bad entries, stopping ... \n"},
    {"1 12 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n1 1 1 1 1 3 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n", 0,
     "Indexed elements for K: bad entries, stopping ... \n"},
    {"1 12 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n-1 -1 1 1 1 1 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n", 0,
     "\n\n          Indexed elements for K: negative index, stopping ... \n"},
};

TEST(Properties, OutOfBoundsZonesStop)
{
    for (const StopCase& c : kStops) {
        Zones z(c.text, c.ntop);
        EXPECT_TRUE(z.stops()) << c.text;
        EXPECT_TRUE(z.text().ends_with(c.words)) << c.text << "\n" << z.text();
    }
    // a reversed range or a block above the grid but empty does nothing and goes on
    Zones z("13 1 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n3 1 1 1 2 9 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n",
            1);
    EXPECT_FALSE(z.stops()) << z.text();
    // with a layer above the flow grid, a range or block reaching past it warns and keeps
    // what exists: elements 10..18 take the range, and the block its layers 2 and 3
    Zones a("10 19 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.3 1.0 0\n"
            "1 1 1 1 2 4 1e-5 1e-5 1e-6 2.0 800.0 2650.0 0.25 1.0 0\n",
            1);
    EXPECT_FALSE(a.stops()) << a.text();
    EXPECT_NE(a.text().find("!! warning !! K above wt. will not be used"), std::string::npos);
    EXPECT_EQ(a.m.por[18], 0.3);
    EXPECT_EQ(a.m.por[13], 0.25);
}

// The checks after the zones, on a media filled by hand.
struct Checked {
    Media m;
    std::ostringstream out;
    bool stopped = false;
    explicit Checked(double k, double por, int e_bad)
    {
        std::ostringstream sink;
        size_media(m, box(1), true, Listing{&sink});
        for (int e = 1; e <= m.net; ++e) {
            if (e <= m.ne) m.ckx[e] = m.cky[e] = m.ckz[e] = 1e-5;
            m.por[e] = 0.3;
        }
        m.ckz[e_bad] = k;
        m.por[e_bad] = por;
        try {
            check_properties(m, Listing{&out});
        } catch (const RunStopped&) {
            stopped = true;
        }
    }
};

TEST(Properties, ChecksOverTheFlowElements)
{
    Checked ok(1e-5, 1.0, 12);  // porosity 1 is allowed
    EXPECT_FALSE(ok.stopped);
    EXPECT_EQ(ok.out.str(), " hydraulic conductivities are all positive ... \n continuing ... \n"
                            " porosities all positive, continuing ... \n");
    Checked k0(0.0, 0.3, 12);
    EXPECT_TRUE(k0.stopped);
    EXPECT_EQ(k0.out.str(), "\n          error, hydraulic conductivity for all elements\n"
                            "          must be > 0 ; check grid size, and element ranges\n"
                            "          for hydraulic conductivity distribution\n"
                            "          program stopping ... \n");
    Checked both(-1.0, 2.0, 1);  // K is reported first
    EXPECT_TRUE(both.stopped);
    EXPECT_NE(both.out.str().find("for hydraulic conductivity distribution"), std::string::npos);
    for (double por : {0.0, -0.1, 1.0000001}) {
        Checked p(1e-5, por, 3);
        EXPECT_TRUE(p.stopped) << por;
        EXPECT_EQ(p.out.str(), " hydraulic conductivities are all positive ... \n continuing ... \n"
                               "\n          error, porosity out of range, stopping ... \n");
    }
    // the unsaturated layers are not checked
    Checked top(1e-5, 0.3, 12);
    top.m.por[15] = 0.0;
    std::ostringstream out;
    EXPECT_NO_THROW(check_properties(top.m, Listing{&out}));
}

}  // namespace
