#include "base/stop.hpp"
#include "flow/mindex.hpp"
#include "support/box_grid.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <sstream>

namespace {

struct IndexRun {
    FieldIndex fi;
    FaceScratch fs;
    CosineHead wt;
    std::string listing;
    bool stopped = false;
};

IndexRun run_mindex(const Grid& g, const std::string& section, int ktype = 0)
{
    IndexRun r;
    std::istringstream in(section);
    RecordReader rd(in, "gelmor.data");
    std::ostringstream out;
    Listing lst{&out};
    try {
        mindex(rd, lst, ktype, g.nn, g.ne, g.nx, g.ny, g.nz, g.in, g.x, g.y, g.z, 15, r.fi, r.fs, r.wt);
    } catch (const RunStopped&) {
        r.stopped = true;
    }
    r.listing = out.str();
    return r;
}

// The pattern as it must be: every pair of free nodes sharing an element, by equation.
std::vector<std::set<int>> expected_rows(const Grid& g, const FieldIndex& fi)
{
    std::vector<std::set<int>> rows(fi.neq + 1);
    for (int e = 1; e <= g.ne; ++e)
        for (int a = 1; a <= 8; ++a)
            for (int b = 1; b <= 8; ++b) {
                const int p = node_at(g.in, e, a), q = node_at(g.in, e, b);
                if (fi.idir[p] || fi.idir[q]) continue;
                const int m1 = p - fi.ncum[p], m2 = q - fi.ncum[q];
                if (m1 <= m2) rows[m2].insert(m1);
            }
    return rows;
}

TEST(Mindex, PatternMatchesAnIndependentConstruction)
{
    const Grid g = box_grid(3, 4, 5, 1.0, 1.0, 1.0);
    // fixed heads on the x = 0 face and one internal block
    const IndexRun r = run_mindex(g, "1 0 0 0 0 0 5\n1 5 1 6 10.0 0\n2 3 2 3 2 4 7.0 0\n");
    ASSERT_FALSE(r.stopped) << r.listing;
    const FieldIndex& fi = r.fi;
    EXPECT_EQ(fi.ndirn, 5 * 6 + 2 * 2 * 3);
    EXPECT_EQ(fi.neq, g.nn - fi.ndirn);
    const auto rows = expected_rows(g, fi);
    const LowerPattern& p = fi.pat;
    ASSERT_EQ(p.ia[1], 1);
    int total = 0;
    for (int m = 1; m <= fi.neq; ++m) {
        const int k0 = p.ia[m], k1 = p.ia[m + 1];
        ASSERT_EQ(p.ja[k0], m) << "diagonal first in row " << m;
        std::set<int> got;
        for (int k = k0; k < k1; ++k) {
            got.insert(p.ja[k]);
            if (k > k0 + 1) {
                ASSERT_LT(p.ja[k], p.ja[k - 1]) << "descending columns in row " << m;
            }
        }
        ASSERT_EQ(got, rows[m]) << "row " << m;
        total += k1 - k0;
    }
    EXPECT_EQ(p.nvec, total);
    EXPECT_EQ(p.ia[fi.neq + 1], total + 1);
    EXPECT_LE(p.bandwidth, 14);
    EXPECT_NE(r.listing.find("number of dirichlet nodes:    42"), std::string::npos);
    EXPECT_NE(r.listing.find("vector length" + std::string(10 - std::to_string(total).size(), ' ') + std::to_string(total)),
              std::string::npos);
}

TEST(Mindex, FaceAreasAndNeumannFluxes)
{
    const Grid g = box_grid(4, 3, 2, 2.0, 3.0, 1.5);
    // recharge of 1e-8 m/s over the whole top face
    const IndexRun r = run_mindex(g, "0 0 0 0 0 2 0\n1 5 1 4 1.0e-8 0\n");
    ASSERT_FALSE(r.stopped) << r.listing;
    double total = 0;
    for (int n = 1; n <= g.nn; ++n) total += r.fi.qnode[n];
    EXPECT_NEAR(total, 1.0e-8 * 8.0 * 9.0, 1e-20);
    const auto top = [&](int i, int j) { return grid_node(i, j, g.nz, g.ny, g.nz); };
    EXPECT_NEAR(r.fi.qnode[top(2, 2)], 1.0e-8 * 6.0, 1e-22);   // interior: dx dy
    EXPECT_NEAR(r.fi.qnode[top(1, 2)], 1.0e-8 * 3.0, 1e-22);   // edge: half
    EXPECT_NEAR(r.fi.qnode[top(5, 4)], 1.0e-8 * 1.5, 1e-22);   // corner: a quarter
    EXPECT_EQ(r.fi.qnode[grid_node(2, 2, 1, g.ny, g.nz)], 0.0);
    EXPECT_EQ(r.fi.neq, g.nn);  // no fixed node: equation i is node i
    EXPECT_EQ(r.fi.kbtop, 0);
}

TEST(Mindex, LaterNeumannFaceInheritsUntouchedPositions)
{
    const Grid g = box_grid(2, 2, 2, 1.0, 1.0, 1.0);
    // bottom gets 2.0 everywhere; top sets only ix 1, iy 1 to 5.0: the other top
    // positions keep the bottom's 2.0
    const IndexRun r = run_mindex(g, "0 0 0 0 2 2 0\n1 3 1 3 2.0 0\n1 1 1 1 5.0 0\n");
    ASSERT_FALSE(r.stopped) << r.listing;
    const auto top = [&](int i, int j) { return grid_node(i, j, g.nz, g.ny, g.nz); };
    EXPECT_DOUBLE_EQ(r.fi.qnode[top(1, 1)], 5.0 * 0.25);
    EXPECT_DOUBLE_EQ(r.fi.qnode[top(2, 2)], 2.0 * 1.0);
    EXPECT_DOUBLE_EQ(r.fi.qnode[grid_node(2, 2, 1, g.ny, g.nz)], 2.0);
}

TEST(Mindex, DirichletPatchesOverwriteAndAllFixedLeavesNoEquation)
{
    const Grid g = box_grid(1, 1, 1, 1.0, 1.0, 1.0);
    const IndexRun r = run_mindex(g, "0 0 0 0 1 1 0\n1 2 1 2 3.0 1\n1 1 1 1 4.0 0\n1 2 1 2 9.0 0\n", 1);
    ASSERT_FALSE(r.stopped) << r.listing;
    EXPECT_EQ(r.fi.neq, 0);
    EXPECT_EQ(r.fi.pat.ia[1], 1);
    EXPECT_EQ(r.fi.pat.nvec, 0);
    EXPECT_DOUBLE_EQ(r.fi.fc[1], 4.0);  // the later patch wins
    EXPECT_DOUBLE_EQ(r.fi.fc[3], 3.0);
    EXPECT_DOUBLE_EQ(r.fi.fc[8], 9.0);
    EXPECT_NE(r.listing.find("Heat: Dirichlet patch source on surface:"), std::string::npos);
    EXPECT_NE(r.listing.find("  temp:    4.0000"), std::string::npos);
    EXPECT_NE(r.listing.find("final bandwidth     0"), std::string::npos);
}

TEST(Mindex, CosineHeadOnTheTop)
{
    const Grid g = box_grid(4, 1, 2, 10.0, 1.0, 1.0);
    const IndexRun r = run_mindex(g, "0 0 0 0 0 6 0\n1 5 5.0 1.0 0.5 1.0 0.5 0.01 0.0 0\n");
    ASSERT_FALSE(r.stopped) << r.listing;
    const double pi = 3.14159265358979;
    for (int i = 1; i <= 5; ++i) {
        const double d = 10.0 * (i - 1);
        const double want = 5.0 + std::cos(2 * pi / 40.0 * d) + 0.5 * std::sin(pi / 40.0 * d) + 0.01 * d;
        EXPECT_NEAR(r.fi.fc[grid_node(i, 2, g.nz, g.ny, g.nz)], want, 1e-12);
    }
    EXPECT_DOUBLE_EQ(r.wt.rise, 5.0);
    EXPECT_EQ(r.wt.several, 0);
    EXPECT_EQ(r.fi.ndirn, 10);
    EXPECT_NE(r.listing.find("default watertable heads x,h"), std::string::npos);
}

// (the faults a deck can reach are in test_deck_errors.cpp)
struct BadSection { const char* deck; int ktype; const char* words; };
const BadSection kBad[] = {
    {"0 0 0 0 1 0 0\n0 1 1 1 1.0 0\n", 0, "Error in Dirichlet b.c.: iglobal_node <0 or >nn)"},
    // the lowest int as an index: the node number is formed without overflow
    {"0 0 0 0 1 0 0\n1 1 -2147483648 1 1.0 0\n", 0, "Error in Dirichlet b.c.: iglobal_node <0 or >nn)"},
    {"1 0 0 0 0 0 0\n-2147483648 1 1 1 1.0 0\n", 0, "Error in Dirichlet b.c.: iglobal_node <0 or >nn)"},
    {"2 0 0 0 0 0 0\n-2147483648 1 1 1 1.0 0\n", 0, "Error in Neumann boundary indices"},
    {"0 0 0 0 0 0 5\n1 1 1 1 1 9 1.0 0\n", 0, "Error in internal fixed node indices"},
    {"0 0 0 0 0 6 0\n1 x 5.0 1.0 0.5 1.0 0.5 0.01 0.0 0\n", 0, "error reading cosine watertable parameters"},
};

TEST(Mindex, FaultsStopWithTheirWords)
{
    const Grid g = box_grid(2, 1, 2, 1.0, 1.0, 1.0);
    for (const BadSection& b : kBad) {
        const IndexRun r = run_mindex(g, b.deck, b.ktype);
        EXPECT_TRUE(r.stopped) << b.deck;
        EXPECT_NE(r.listing.find("\n          " + std::string(b.words)), std::string::npos) << r.listing;
    }
}

TEST(Mindex, RowOverflowIsListedForEveryRow)
{
    const Grid g = box_grid(2, 2, 2, 1.0, 1.0, 1.0);
    FieldIndex fi;
    fi.nn = g.nn;
    fi.idir.assign(g.nn + 1, 0);
    count_fixed(fi);
    std::ostringstream out;
    const int bw = build_pattern(Listing{&out}, g.in, g.ne, 4, fi);
    EXPECT_EQ(bw, 5);
    EXPECT_NE(out.str().find("bandwidth insufficient: row   27, bw =    4,nb=   4"), std::string::npos) << out.str();
}

}  // namespace
