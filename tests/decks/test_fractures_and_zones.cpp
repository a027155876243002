#include "support/deck_run.hpp"

#include <gtest/gtest.h>

namespace {

// The example deck with line n (1-based) replaced; a remark stays behind the values.
std::string with_line(std::string deck, int n, const std::string& values)
{
    std::vector<std::string> lines = split_lines(deck);
    lines.at(n - 1) = values + "   replaced";
    return join_lines(lines);
}

constexpr int kOptionsLine = 4, kFractureLine = 14, kRangeLine = 18, kBlockLine = 19;

std::string between(const std::string& text, const std::string& from, const std::string& to)
{
    const std::size_t a = text.find(from);
    if (a == std::string::npos) return "";
    const std::size_t b = text.find(to, a);
    return text.substr(a, b == std::string::npos ? std::string::npos : b - a);
}

TEST(FracturesAndZones, ExampleDeckHasAPlaneFractureAndAPermeableLowerLayer)
{
    const DeckRun r = run_deck(example_deck());
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    // gk at 0 C for a heat and mass run: 10*999.89362176/(160/86400); k = gk*(1e-4)^2/12
    EXPECT_TRUE(r.has(" 2D plane fracture:\n"
                      " element indeces:                ...           10          10           1           1"
                      "           1          10\n"
                      " face (1 = left face)            ...            2\n"
                      " hyd. conductivity (m/s@ 0C) ...    4.4995212979"))
        << r.listing;
    EXPECT_TRUE(r.has(" number of 2D xy plane fractures:            0\n"
                      " number of 2D yz plane fractures:           10\n"
                      " number of 2D xz plane fractures:            0\n"));
    // the ten x-max faces of column 10, bricks 10, 30, ..., 190, in both lists
    std::string rows;
    for (int l = 1; l <= 10; ++l) {
        const std::string e = std::to_string(20 * l - 10);
        rows += std::string(10 - std::to_string(l).size(), ' ') + " " + std::to_string(l) +
                "  0.4500E-02  0.1000E-03        2" + std::string(9 - e.size(), ' ') + e + "        2\n";
    }
    EXPECT_TRUE(r.has(" found            0  duplicate fracture elements\n"
                      " number of fracture elements ...           10\n"
                      " summary: listing of first 100 fracture elements:\n"
                      " l       ck      xarea       lvert    ifracl    ifdim\n"
                      "        (m/s)    (m^2)       (face)   (3D #)       \n" +
                      rows + " summary: listing of last 100 fracture elements:\n" + rows + " mindex routine"))
        << r.listing;
    // the plane is drawn at x = 50 m over the full depth; no xy trace for face 2
    EXPECT_EQ(r.dir->read("gelmor_fracgeo_xz.plt"), "geometry x=0,y=0,t=line,c=black,cs=grid,lt=0.2\n1\n2\n"
                                                     "    50.000     0.000\n    50.000    20.000\n");
    EXPECT_EQ(r.dir->read("gelmor_fracgeo_xy.plt"), "");
    // the range zone, then the lower layer as an indexed block, then the checks
    EXPECT_TRUE(r.has(" indexed hydraulic k:\n"
                      "           1          20           1           1           1           3\n"
                      "   1.0000000000000000E-004   1.0000000000000000E-004   1.0000000000000001E-005"))
        << r.listing;
    EXPECT_FALSE(r.has("data ignored"));
    EXPECT_TRUE(r.has(" hydraulic conductivities are all positive ... \n continuing ... \n"
                      " porosities all positive, continuing ... \n storage term ... "));
    // 100 x 1 x 20 m, after the mass boundary index
    EXPECT_GT(r.listing.find("total domain volume ...                 0.200E+04\n"),
              r.listing.find(" mindex  ... mass transport boundary arrays ..."));
    // the fluid function table, written whole and closed
    const std::vector<std::string> table = split_lines(r.dir->read("gelmor_den_visc_T.plt"));
    ASSERT_EQ(table.size(), 502u);
    EXPECT_EQ(table[0], " variables=\"Temp\",\"pw(kg/m3)\",\"rden(T,C=0)\",\"rden(T,C=1)\", "
                        "\"rvisc_w(T)\",\"Wu(T)\",\"dWu(T)\",\"tk(T)\",\"Co(T)\"");
    EXPECT_EQ(table[1], " zone i= 500");
}

TEST(FracturesAndZones, NoFracturesPrintsOnlyTheFirstHead)
{
    const DeckRun r = run_deck(with_line(example_deck(), kFractureLine, "0 0 0 0 0 0 0 0 0.0 0"));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has(" number of fracture elements ...            0\n"
                      " summary: listing of first 100 fracture elements:\n"
                      " l       ck      xarea       lvert    ifracl    ifdim\n"
                      "        (m/s)    (m^2)       (face)   (3D #)       \n"
                      " mindex routine"));
    EXPECT_FALSE(r.has("last 100"));
    EXPECT_EQ(r.dir->read("gelmor_fracgeo_xz.plt"), "");
}

TEST(FracturesAndZones, LongFractureTableAndTruncationInAWholeRun)
{
    // lower faces of all 200 bricks, the y range cut back from 3 to 1
    const DeckRun r = run_deck(with_line(example_deck(), kFractureLine, "1 20 1 3 1 10 2 5 1.0e-4 0"));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has_message("!! warning, fracture grid index truncated"));
    EXPECT_TRUE(r.has(" number of 2D xy plane fractures:          200\n"));
    const std::vector<std::string> last =
        split_lines(between(r.listing, " summary: listing of last 100", " mindex routine"));
    ASSERT_EQ(last.size(), 102u);  // the title and 101 rows, 100 to 200
    EXPECT_EQ(last[1].substr(0, 11), "        100");
    EXPECT_EQ(last[101].substr(0, 11), "        200");
    // x then z in the lower-face trace: node 1 of brick 1 to node 2 of brick 20
    EXPECT_EQ(r.dir->read("gelmor_fracgeo_xz.plt"), "geometry x=0,y=0,t=line,c=black,cs=grid,lt=0.2\n1\n2\n"
                                                     "     0.000     0.000\n   100.000     0.000\n");
}

TEST(FracturesAndZones, FractureInTheUnsaturatedZoneStops)
{
    std::string deck = with_line(example_deck(), kOptionsLine, "0 0 0 0 0 0 0 3 0 0 0 2 0 0");
    deck = with_line(deck, 5, "1 1 2");
    deck = with_line(deck, 8, "20.0 22.0");
    deck = with_line(deck, 11, "10 1");
    const DeckRun ok = run_deck(deck);  // the fracture stays below z = 20 m
    EXPECT_FALSE(ok.has("unsaturated zone\n")) << ok.listing;
    const DeckRun r = run_deck(with_line(deck, kFractureLine, "10 10 1 1 1 11 2 2 1.0e-4 0"));
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.listing.ends_with("\n\n          fracture elements found within unsaturated zone\n"
                                    "          Rerun with ksat = 1 or remove fracs from unsat zone\n"
                                    "          program stopping ...\n"))
        << r.listing;
}

TEST(FracturesAndZones, RandomFieldsFromFgen)
{
    const std::string krk1 = with_line(example_deck(), kOptionsLine, "0 0 0 0 0 0 1 3 0 1 0 2 0 0");
    DeckRun r = run_deck(krk1);
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.listing.ends_with("\n\n          error opening fgen92.asc ...\n"
                                    "          this file does not exist ...\n          program stopping. \n"))
        << r.listing;

    // ln K = -11.5 everywhere, then ln porosity = ln 0.25
    std::string fgen = "K field\n20 1 10\n";
    for (int e = 1; e <= 200; ++e) fgen += "-11.5\n";
    r = run_deck(krk1, {{"fgen92.asc", fgen}});
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has(" reading K field from fgen92.asc ... \n"
                      " max, min conductivities from fgen input file ... \n"
                      " cmax m/s...    1.0130093598630711E-005\n"
                      "   cmin m/s...    1.0130093598630711E-005\n"
                      " hydraulic conductivities are all positive"))
        << r.listing;
    fgen += "porosity\n 20 1 10\n";
    for (int e = 1; e <= 200; ++e) fgen += "-1.3862943611198906\n";
    r = run_deck(with_line(krk1, kOptionsLine, "0 0 0 0 0 0 1 3 0 2 0 2 0 0"), {{"fgen92.asc", fgen}});
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has(" pormax...   0.25000000000000000     \n   pormin...   0.25000000000000000     \n"))
        << r.listing;
}

TEST(FracturesAndZones, ElementsLeftOutOfEveryZoneStop)
{
    // the range stops at 199; the block covers 1..60: element 200 keeps K = 0
    const DeckRun r =
        run_deck(with_line(example_deck(), kRangeLine, "1 199 1.0e-5 1.0e-5 1.0e-6 2.0 800.0 2650.0 0.3 1.0 0"));
    EXPECT_TRUE(r.listing.ends_with("\n\n          error, hydraulic conductivity for all elements\n"
                                    "          must be > 0 ; check grid size, and element ranges\n"
                                    "          for hydraulic conductivity distribution\n"
                                    "          program stopping ... \n"))
        << r.listing;
    // a block porosity above 1
    const DeckRun p = run_deck(
        with_line(example_deck(), kBlockLine, "1 20 1 1 1 3 1.0e-4 1.0e-4 1.0e-5 2.0 800.0 2650.0 1.35 1.0 0"));
    EXPECT_TRUE(p.listing.ends_with(" continuing ... \n\n          error, porosity out of range, stopping ... \n"))
        << p.listing;
}

}  // namespace
