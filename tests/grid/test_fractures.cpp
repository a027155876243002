#include "base/options.hpp"
#include "base/stop.hpp"
#include "grid/fractures.hpp"
#include "grid/gengrid.hpp"
#include "support/box_grid.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// Records fed one by one, as the deck reader does.
struct Feed {
    Grid g;
    Fractures fr;
    std::ostringstream lst_text, xz, xy;
    Listing lst{&lst_text};
    bool unsat = false;
    // 4 x 2 x 3 bricks of 2.5 x 1.5 x 2 m unless told otherwise
    explicit Feed(Grid grid = flow_box(4, 2, 3, 10.0, 3.0, 6.0)) : g(std::move(grid))
    {
        size_fractures(fr, g.ne, 0, true);
        unsat = g.ngz == 2;
    }
    void add(int ilx1, int ilx2, int ily1, int ily2, int ilz1, int ilz2, int idim, int iloc, double aperture)
    {
        fracture_record({ilx1, ilx2, ily1, ily2, ilz1, ilz2, idim, iloc, aperture}, unsat, g, fr, lst, xz, xy);
    }
    std::string text() const { return lst_text.str(); }
};

TEST(Fractures, PipeAndCubicLaws)
{
    Feed f;
    f.add(1, 1, 1, 1, 1, 1, 1, 1, 0.02);  // pipe of 2 cm diameter
    f.add(2, 2, 1, 1, 1, 1, 2, 5, 1e-3);  // plane of 1 mm
    ASSERT_EQ(f.fr.nfrac, 2);
    EXPECT_DOUBLE_EQ(f.fr.xarea[1], 3.14159265358979 * 0.01 * 0.01);
    EXPECT_NEAR(f.fr.ck[1], 5.4e6 * 0.125 * 1e-4, 1e-9);  // 67.5 m/s
    EXPECT_DOUBLE_EQ(f.fr.xarea[2], 1e-3);
    EXPECT_NEAR(f.fr.ck[2], 5.4e6 * 1e-6 / 12.0, 1e-12);  // 0.45 m/s
    // heat and mass take water at 0 C, 1.0637824e-4 lighter than at 4 C; without heat
    // pw is 1000 and the viscosity factor 1
    EXPECT_NEAR(fracture_gk(3, true), 5399425.557504, 1e-6);
    for (int kmass : {0, 1, 2}) EXPECT_NEAR(fracture_gk(kmass, kmass == 0), 5.4e6, 1e-6) << kmass;
}

TEST(Fractures, OverlapsReversedRangesAndDuplicatesByElementAndCode)
{
    // 4 x 2 x 3 bricks: element (i,j,k) = (k-1)*8 + (j-1)*4 + i
    Feed f;
    f.add(1, 2, 1, 2, 2, 3, 2, 2, 1e-3);  // 8 x-max faces, z innermost
    const int first[] = {0, 9, 17, 13, 21, 10, 18, 14, 22};
    ASSERT_EQ(f.fr.nfrac, 8);
    for (int l = 1; l <= 8; ++l) {
        EXPECT_EQ(f.fr.ifracl[l], first[l]) << l;
        EXPECT_EQ(f.fr.lvert[l], 2);
        EXPECT_EQ(f.fr.ifdim[l], 2);
    }
    f.add(2, 3, 1, 1, 3, 3, 2, 2, 1e-3);  // overlaps at brick 18; brick 19 is new
    EXPECT_EQ(f.fr.nfrac, 9);
    EXPECT_EQ(f.fr.nskip, 1);
    EXPECT_EQ(f.fr.ifracl[9], 19);
    f.add(3, 1, 1, 2, 1, 3, 2, 2, 1e-3);  // reversed x range: nothing
    f.add(1, 4, 2, 1, 1, 3, 2, 2, 1e-3);  // reversed y range: nothing
    EXPECT_EQ(f.fr.nfrac, 9);
    EXPECT_EQ(f.fr.nskip, 1);
    // the shared face given as face 1 of the next brick is an element of its own
    f.add(2, 2, 1, 1, 3, 3, 2, 1, 2e-3);
    EXPECT_EQ(f.fr.nfrac, 10);
    EXPECT_EQ(f.fr.ifracl[10], 18);
    EXPECT_EQ(f.fr.lvert[10], 1);
    EXPECT_DOUBLE_EQ(f.fr.xarea[10], 2e-3);
    // a z line on brick 18 has code 1 as well: the table does not tell lines from planes
    f.add(2, 2, 1, 1, 3, 3, 1, 1, 0.02);
    EXPECT_EQ(f.fr.nfrac, 10);
    EXPECT_EQ(f.fr.nskip, 2);
    // the same range again only adds to nskip
    f.add(1, 2, 1, 2, 2, 3, 2, 2, 1e-3);
    EXPECT_EQ(f.fr.nfrac, 10);
    EXPECT_EQ(f.fr.nskip, 10);
    // an unknown dimension keeps the law of the last record (the 1 mm plane) and says nothing
    const std::size_t before = f.text().size();
    f.add(4, 4, 2, 2, 1, 1, 3, 4, 0.5);
    ASSERT_EQ(f.fr.nfrac, 11);
    EXPECT_EQ(f.fr.ifracl[11], 8);
    EXPECT_EQ(f.fr.ifdim[11], 3);
    EXPECT_DOUBLE_EQ(f.fr.xarea[11], 1e-3);
    EXPECT_DOUBLE_EQ(f.fr.ck[11], f.fr.ck[1]);
    EXPECT_EQ(f.text().find("fracture:", before), std::string::npos);
    // zero aperture generates nothing
    f.add(4, 4, 1, 1, 1, 1, 2, 5, 0.0);
    EXPECT_EQ(f.fr.nfrac, 11);
    // the dummy record does nothing at all
    const std::size_t len = f.text().size();
    f.add(0, 4, 1, 1, 1, 1, 2, 5, 1e-3);
    EXPECT_EQ(f.fr.nfrac, 11);
    EXPECT_EQ(f.text().size(), len);
    // the plane counts after each record run over all elements so far, planes only: the
    // element of dimension 3 on code 4 is not among them
    const std::string t = f.text();
    EXPECT_NE(t.rfind(" number of 2D xy plane fractures:            0\n"
                      " number of 2D yz plane fractures:           10\n"
                      " number of 2D xz plane fractures:            0\n"),
              std::string::npos)
        << t;
}

TEST(Fractures, IndicesBeyondTheGridAreTruncatedWithAWarning)
{
    Feed f;
    f.add(3, 9, 1, 5, 1, 1, 2, 6, 1e-3);
    EXPECT_NE(f.text().find("\n\n          !! warning, fracture grid index truncated\n"
                            "          input indeces:            3           9           1           5"
                            "           1           1\n"),
              std::string::npos)
        << f.text();
    // x 3..4, y 1..2 on the bottom layer
    ASSERT_EQ(f.fr.nfrac, 4);
    EXPECT_EQ(std::vector<int>(f.fr.ifracl.begin() + 1, f.fr.ifracl.begin() + 5), (std::vector<int>{3, 7, 4, 8}));
    // a range wholly beyond the grid collapses onto its last layer
    f.add(6, 7, 1, 1, 1, 1, 2, 3, 1e-3);
    ASSERT_EQ(f.fr.nfrac, 5);
    EXPECT_EQ(f.fr.ifracl[5], 4);
    // inside the grid: no warning
    Feed g;
    g.add(1, 4, 1, 2, 1, 3, 2, 6, 1e-3);
    EXPECT_EQ(g.text().find("warning"), std::string::npos);
}

TEST(Fractures, RecordsReachingTheUnsaturatedZoneStop)
{
    // 2 flow layers and 1 unsaturated one on top
    Feed f(flow_box(2, 1, 2, 2.0, 1.0, 2.0, 1));
    f.add(1, 2, 1, 1, 1, 2, 2, 1, 1e-3);  // within the flow grid
    EXPECT_EQ(f.fr.nfrac, 4);
    EXPECT_THROW(f.add(1, 2, 1, 1, 2, 3, 2, 1, 1e-3), RunStopped);
    EXPECT_NE(f.text().find(" 2D plane fracture:"), std::string::npos);
    EXPECT_TRUE(f.text().ends_with("\n\n          fracture elements found within unsaturated zone\n"
                                   "          Rerun with ksat = 1 or remove fracs from unsat zone\n"
                                   "          program stopping ...\n"))
        << f.text();
    EXPECT_EQ(f.fr.nfrac, 4);
    // a saturated grid of the same height cuts the layer index instead
    Feed s(flow_box(2, 1, 2, 2.0, 1.0, 2.0));
    s.add(1, 2, 1, 1, 2, 3, 2, 1, 1e-3);
    EXPECT_NE(s.text().find("!! warning, fracture grid index truncated"), std::string::npos);
}

TEST(Fractures, IndexBelowOneAndUnknownCodeStop)
{
    Feed f;
    EXPECT_THROW(f.add(-1, 2, 1, 1, 1, 1, 2, 2, 1e-3), RunStopped);
    EXPECT_TRUE(f.text().ends_with("\n\n          error, fracture element index below 1\n"
                                   "          input indeces:           -1           2           1           1"
                                   "           1           1\n          program stopping ...\n"))
        << f.text();
    Feed g;
    g.add(1, 1, 1, 1, 1, 1, 2, 7, 0.0);  // nothing to mark: harmless
    g.add(2, 1, 1, 1, 1, 1, 2, 7, 1e-3);  // reversed: nothing to mark either
    EXPECT_EQ(g.fr.nfrac, 0);
    EXPECT_THROW(g.add(1, 1, 1, 1, 1, 1, 2, 7, 1e-3), RunStopped);
    EXPECT_TRUE(g.text().ends_with("\n\n          error, fracture location code iloc must be 1 to 6\n"
                                   "          iloc =            7\n          program stopping ...\n"))
        << g.text();
}

TEST(Fractures, TooManyElementsStopAtTheEndOfTheRecordThatPassedTheLimit)
{
    // 100 000 bricks, one record per code: five records fill exactly 500 000
    Feed f(flow_box(100, 100, 10, 100.0, 100.0, 10.0));
    for (int iloc = 1; iloc <= 5; ++iloc) f.add(1, 100, 1, 100, 1, 10, 2, iloc, 1e-4);
    EXPECT_EQ(f.fr.nfrac, 500000);
    EXPECT_THROW(f.add(1, 100, 1, 100, 1, 10, 2, 6, 1e-4), RunStopped);
    EXPECT_EQ(f.fr.nfrac, 600000);
    EXPECT_TRUE(f.text().ends_with("\n\n          Error: nfrac > maxfrac, nfrac =      600000\n"
                                   "          nskip =            0\n          program stopping ...\n"))
        << f.text().substr(f.text().size() - 300);
}

TEST(Fractures, SummaryWithoutFractures)
{
    Feed f;
    f.add(0, 0, 0, 0, 0, 0, 0, 0, 0.0);
    fracture_summary(f.fr, f.lst);
    EXPECT_EQ(f.text(), " found            0  duplicate fracture elements\n"
                        " number of fracture elements ...            0\n"
                        " summary: listing of first 100 fracture elements:\n"
                        " l       ck      xarea       lvert    ifracl    ifdim\n"
                        "        (m/s)    (m^2)       (face)   (3D #)       \n");
    EXPECT_EQ(f.xz.str(), "");
    EXPECT_EQ(f.xy.str(), "");
}

TEST(Fractures, SummaryOfALongTableShows101LastRows)
{
    Feed f(flow_box(5, 3, 10, 5.0, 3.0, 10.0));
    f.add(1, 5, 1, 3, 1, 10, 2, 5, 1e-3);
    ASSERT_EQ(f.fr.nfrac, 150);
    std::ostringstream out;
    fracture_summary(f.fr, Listing{&out});
    std::vector<std::string> lines;
    std::istringstream in(out.str());
    for (std::string l; std::getline(in, l);) lines.push_back(l);
    ASSERT_EQ(lines.size(), 5u + 100u + 1u + 101u);
    EXPECT_EQ(lines[5].substr(0, 11), "          1");
    EXPECT_EQ(lines[104].substr(0, 11), "        100");
    EXPECT_EQ(lines[105], " summary: listing of last 100 fracture elements:");
    EXPECT_EQ(lines[106].substr(0, 11), "         50");
    // z innermost: element 150 of the list is brick (5,3,10) = 150, element 2 is (1,1,2) = 16
    EXPECT_EQ(lines[206], "        150  0.4500E+00  0.1000E-02        5      150        2");
    EXPECT_EQ(lines[6], "          2  0.4500E+00  0.1000E-02        5       16        2");
}

std::string block(const char* p, const char* q)
{
    return std::string("geometry x=0,y=0,t=line,c=black,cs=grid,lt=0.2\n1\n2\n") + p + "\n" + q + "\n";
}

TEST(Fractures, GeometryFilesCaseByCase)
{
    // 4 x 2 x 3 bricks of 2.5 x 1.5 x 2 m: node planes x 0, 2.5, 5, 7.5, 10; y 0, 1.5, 3;
    // z 0, 2, 4, 6
    Feed f;
    f.add(2, 3, 2, 2, 2, 3, 2, 5, 1e-3);  // lower faces: node 1 of (2,2,2) to node 2 of (3,2,2)
    f.add(2, 3, 2, 2, 2, 3, 2, 6, 1e-3);  // upper faces: node 5 of (2,2,2) to node 6 of (3,2,2)
    f.add(3, 4, 1, 2, 1, 2, 2, 1, 1e-3);  // x-min faces: xz and xy
    f.add(1, 1, 1, 1, 1, 3, 2, 2, 1e-3);  // x-max faces up the column
    f.add(4, 4, 2, 2, 1, 3, 1, 1, 0.02);  // z line: xz, and a point in xy
    f.add(2, 4, 1, 1, 1, 1, 1, 2, 0.02);  // x line: drawn up its first brick, then "ok5"
    f.add(1, 4, 1, 1, 2, 2, 2, 3, 1e-3);  // y-min faces: xy only
    f.add(1, 4, 1, 2, 1, 1, 2, 4, 1e-3);  // y-max faces: no geometry
    f.add(1, 4, 1, 2, 1, 1, 1, 3, 0.02);  // y line: no geometry
    f.add(2, 3, 1, 1, 1, 1, 2, 5, 0.0);   // zero aperture: still drawn
    f.add(0, 3, 1, 1, 1, 1, 2, 5, 1e-3);  // dummy: not drawn
    const std::string xz = block("     2.500     2.000", "     7.500     2.000") +
                           block("     2.500     4.000", "     7.500     4.000") +
                           block("     5.000     0.000", "     5.000     4.000") +
                           block("     2.500     0.000", "     2.500     6.000") +
                           block("     7.500     0.000", "     7.500     6.000") +
                           block("     5.000     0.000", "     5.000     2.000") + " ok5\n" +
                           block("     2.500     0.000", "     7.500     0.000");
    const std::string xy = block("     5.000     0.000", "     5.000     3.000") +
                           block("     7.500     1.500", "     7.500     1.500") +
                           block("     0.000     0.000", "    10.000     0.000");
    EXPECT_EQ(f.xz.str(), xz);
    EXPECT_EQ(f.xy.str(), xy);
}

}  // namespace
