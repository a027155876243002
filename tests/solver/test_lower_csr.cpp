#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <utility>

#include "solver/lower_csr.hpp"
#include "support/hex_system.hpp"

namespace {

// Top face and the x-min face fixed, as a flow field with heads on two faces.
const FixedMask kTopAndWest = [](int i, int, int k) { return k == 4 || i == 1; };

double max_abs_diff(const Dense& A, const Dense& B)
{
    double m = 0.0;
    for (std::size_t k = 0; k < A.v.size(); ++k) m = std::max(m, std::fabs(A.v[k] - B.v[k]));
    return m;
}

std::vector<double> test_vector(int n, double phase)
{
    std::vector<double> x(n + 1, 0.0);
    for (int i = 1; i <= n; ++i) x[i] = std::sin(0.7 * i + phase) + 0.1 * i / n;
    return x;
}

TEST(Pattern, RowsHoldDiagonalThenDescendingColumnsOfElementNeighbours)
{
    const HexSystem s = hex_grid_system(5, 4, 4, kTopAndWest);
    const LowerPattern& p = s.pat;
    // Pairs of free equations that share an element, found independently.
    std::set<std::pair<int, int>> pairs;
    const HexField& f = s.field;
    for (int l = 1; l <= s.grid.ne; ++l)
        for (int u : s.grid.in[l])
            for (int v : s.grid.in[l])
                if (!f.idir[u] && !f.idir[v] && u > v) pairs.insert({u - f.ncum[u], v - f.ncum[v]});
    std::size_t offdiag = 0;
    for (int m = 1; m <= p.neq; ++m) {
        ASSERT_EQ(p.ja[p.ia[m]], m);
        ASSERT_LE(p.ia[m + 1] - p.ia[m], 14);
        for (int k = p.ia[m] + 1; k < p.ia[m + 1]; ++k) {
            EXPECT_LT(p.ja[k], p.ja[k - 1]);
            EXPECT_TRUE(pairs.count({m, p.ja[k]})) << m << " " << p.ja[k];
            EXPECT_EQ(icol_at(p, m, k - p.ia[m] + 1), p.ja[k]);
            ++offdiag;
        }
    }
    EXPECT_EQ(offdiag, pairs.size());
    EXPECT_EQ(p.ia[p.neq + 1], p.nvec + 1);
}

TEST(Pattern, ReachIsTheLargestDistanceBackFromTheDiagonal)
{
    const HexSystem s = hex_grid_system(5, 4, 6);
    EXPECT_EQ(pattern_reach(s.pat), 4 * 6 + 6 + 1);  // node (i-1, j-1, k-1)
    LowerPattern d;
    d.neq = 2;
    d.ia = {0, 1, 2, 3};
    d.ja = {0, 1, 2};
    EXPECT_EQ(pattern_reach(d), 0);
}

TEST(FillRhs, CondensesNodalFluxesAndClearsTheNodalRange)
{
    // Nodes 2 and 4 fixed: equations 1, 2, 3 are nodes 1, 3, 5.
    const std::vector<int> idir = {0, 0, 1, 0, 1, 0};
    const std::vector<int> ncum = {0, 0, 1, 1, 2, 2};
    const std::vector<double> qnode = {0, 1.5, 2.5, 3.5, 4.5, 5.5};
    std::vector<double> b(6, 99.0);
    fill_rhs(5, idir, ncum, qnode, b);
    EXPECT_EQ(b, (std::vector<double>{99.0, 1.5, 3.5, 5.5, 0.0, 0.0}));
}

TEST(ClearValues, ClearsExactlyTheStoredEntries)
{
    const HexSystem s = hex_grid_system(3, 3, 3);
    std::vector<double> a(s.pat.nvec + 3, 7.0);
    clear_values(s.pat, a);
    EXPECT_EQ(a[0], 7.0);
    for (int k = 1; k <= s.pat.nvec; ++k) ASSERT_EQ(a[k], 0.0);
    EXPECT_EQ(a[s.pat.nvec + 1], 7.0);
}

TEST(Scatter, HexahedraWithoutFixedNodesGiveTheDenseMatrix)
{
    const HexSystem s = hex_grid_system(5, 4, 3);
    Dense A(0);
    std::vector<double> b;
    dense_condensed(s, A, b);
    ASSERT_EQ(A.n, s.pat.neq);
    EXPECT_LT(max_abs_diff(to_dense(s.pat, s.a), A), 1e-13);
    for (int m = 1; m <= A.n; ++m) EXPECT_NEAR(s.b[m], b[m], 1e-13);
}

TEST(Scatter, FixedNeighboursAreEliminatedIntoTheRightHandSide)
{
    const HexSystem s = hex_grid_system(5, 4, 4, kTopAndWest);
    Dense A(0);
    std::vector<double> b;
    dense_condensed(s, A, b);
    ASSERT_EQ(A.n, s.pat.neq);
    ASSERT_LT(A.n, s.grid.nn);
    EXPECT_LT(max_abs_diff(to_dense(s.pat, s.a), A), 1e-13);
    for (int m = 1; m <= A.n; ++m) EXPECT_NEAR(s.b[m], b[m], 1e-12) << m;
}

TEST(Scatter, FreeNodeAmidFixedNodesHasOneEntryAndAnEliminatedRightHandSide)
{
    // Only the centre of a 3x3x3 grid is free.
    const HexSystem s =
        hex_grid_system(3, 3, 3, [](int i, int j, int k) { return !(i == 2 && j == 2 && k == 2); });
    ASSERT_EQ(s.pat.neq, 1);
    ASSERT_EQ(s.pat.nvec, 1);
    const int c = node_id(2, 2, 2, 3, 3);
    double diag = 0.0, rhs = s.field.qnode[c];
    double e[8][8];
    for (int l = 1; l <= s.grid.ne; ++l) {
        hex_element_matrix(s.grid, l, e);
        for (int i = 0; i < 8; ++i) {
            if (s.grid.in[l][i] != c) continue;
            for (int j = 0; j < 8; ++j) {
                const int q = s.grid.in[l][j];
                if (q == c)
                    diag += e[i][j];
                else
                    rhs -= e[i][j] * s.field.fc[q];
            }
        }
    }
    EXPECT_NEAR(s.a[1], diag, 1e-14);
    EXPECT_NEAR(s.b[1], rhs, 1e-12);
}

// Face (4-node) and edge (2-node) elements on a hexahedral pattern, as fractures use it.
TEST(Scatter, FourAndTwoNodeElementsEnterTheirPairsOnce)
{
    const HexSystem s = hex_grid_system(4, 3, 3, [](int, int, int k) { return k == 3; });
    LowerPattern p = s.pat;
    std::vector<double> a(p.nvec + 1, 0.0), b(s.grid.nn + 1, 0.0);
    const HexField& f = s.field;
    const FixedNodes fx{f.idir, f.ncum, f.fc};
    ScatterTarget t{p, a, b, 15};
    const int ny = 3, nz = 3;
    // A vertical face element at x = 2 and a vertical and a horizontal edge.
    const int face[4] = {node_id(2, 1, 2, ny, nz), node_id(2, 2, 2, ny, nz), node_id(2, 2, 3, ny, nz),
                         node_id(2, 1, 3, ny, nz)};
    const double ef[4][4] = {{4, -1, -2, -1}, {-1, 4, -1, -2}, {-2, -1, 4, -1}, {-1, -2, -1, 4}};
    const int edge1[2] = {node_id(3, 2, 1, ny, nz), node_id(3, 2, 2, ny, nz)};
    const int edge2[2] = {node_id(2, 2, 2, ny, nz), node_id(3, 2, 2, ny, nz)};
    const double ee[2][2] = {{1.5, -1.5}, {-1.5, 1.5}};
    scatter_element(face, ef, fx, t);
    scatter_element(edge1, ee, fx, t);
    scatter_element(edge2, ee, fx, t);

    // Dense reference over all nodes, condensed by hand.
    Dense K(s.grid.nn);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) K(face[i], face[j]) += ef[i][j];
    for (const int* ed : {edge1, edge2})
        for (int i = 0; i < 2; ++i)
            for (int j = 0; j < 2; ++j) K(ed[i], ed[j]) += ee[i][j];
    Dense A(p.neq);
    std::vector<double> rhs(p.neq + 1, 0.0);
    for (int u = 1; u <= s.grid.nn; ++u) {
        if (f.idir[u]) continue;
        for (int v = 1; v <= s.grid.nn; ++v) {
            if (f.idir[v])
                rhs[u - f.ncum[u]] -= K(u, v) * f.fc[v];
            else
                A(u - f.ncum[u], v - f.ncum[v]) = K(u, v);
        }
    }
    EXPECT_EQ(max_abs_diff(to_dense(p, a), A), 0.0);
    for (int m = 1; m <= p.neq; ++m) EXPECT_DOUBLE_EQ(b[m], rhs[m]) << m;
}

TEST(Scatter, FailedSearchReusesThePositionOfThePreviousSearch)
{
    // Two rows: 1 = {1}, 2 = {2, 1}.  With bound 1 the search for column 1 in row 2 fails.
    LowerPattern p;
    p.neq = 2;
    p.nb = 15;
    p.ia = {0, 1, 2, 4};
    p.ja = {0, 1, 2, 1};
    p.nvec = 3;
    p.icol.assign(2 * 15 + 1, 0);
    icol_at(p, 1, 1) = 1;
    icol_at(p, 2, 1) = 2;
    icol_at(p, 2, 2) = 1;
    std::vector<double> a(4, 0.0), b(3, 0.0);
    ScatterTarget t{p, a, b, 1};
    EXPECT_EQ(lower_position(t, 2, 2), 2);  // found at k = 1
    EXPECT_EQ(lower_position(t, 1, 2), 2);  // not within the bound: k = 1 again
    t.bound = 15;
    EXPECT_EQ(lower_position(t, 1, 2), 3);
    EXPECT_EQ(t.k, 2);
    EXPECT_EQ(lower_position(t, 1, 1), 1);
}

TEST(Restore, ExpandsEquationsToNodesAndSetsFixedValues)
{
    const std::vector<int> idir = {0, 1, 0, 1, 0, 0};
    const std::vector<int> ncum = {0, 1, 1, 2, 2, 2};
    const std::vector<double> fc = {0, -1, 0, -3, 0, 0};
    const FixedNodes fx{idir, ncum, fc};
    std::vector<double> u = {0, 10, 20, 30, 40, 50};  // equations 1..3 hold the solution
    restore_nodal(5, fx, u);
    EXPECT_EQ(u, (std::vector<double>{0, -1, 10, -3, 20, 30}));
}

TEST(Restore, AllNodesFixedCopiesFc)
{
    const std::vector<int> idir = {0, 1, 1, 1};
    const std::vector<int> ncum = {0, 1, 2, 3};
    const std::vector<double> fc = {0, 4, 5, 6};
    std::vector<double> u = {0, 1, 2, 3};
    restore_nodal(3, FixedNodes{idir, ncum, fc}, u);
    EXPECT_EQ(u, (std::vector<double>{0, 4, 5, 6}));
}

TEST(Product, BothFormsEqualTheDenseProduct)
{
    const HexSystem s = hex_grid_system(6, 5, 4, kTopAndWest);
    const Dense A = to_dense(s.pat, s.a);
    const std::vector<double> x = test_vector(s.pat.neq, 0.3);
    const std::vector<double> want = dense_matvec(A, x);
    // Form 1 assigns every y(i) itself: garbage in y does not matter.
    std::vector<double> y1(s.pat.neq + 1, std::numeric_limits<double>::quiet_NaN());
    std::vector<double> y2(s.pat.neq + 1, std::numeric_limits<double>::quiet_NaN());
    matvec_lower(s.pat, s.a, x, y1);
    matvec_lower_cleared(s.pat, s.a, x, y2);
    for (int i = 1; i <= s.pat.neq; ++i) {
        EXPECT_NEAR(y1[i], want[i], 1e-12) << i;
        EXPECT_NEAR(y2[i], want[i], 1e-12) << i;
    }
}

TEST(Product, IsSymmetric)
{
    const HexSystem s = hex_grid_system(7, 6, 5, kTopAndWest);
    const int n = s.pat.neq;
    const std::vector<double> x = test_vector(n, 0.1), y = test_vector(n, 2.0);
    std::vector<double> ax(n + 1), ay(n + 1);
    for (auto form : {matvec_lower, matvec_lower_cleared}) {
        form(s.pat, s.a, x, ax);
        form(s.pat, s.a, y, ay);
        double yax = 0.0, xay = 0.0, norm = 0.0;
        for (int i = 1; i <= n; ++i) {
            yax += y[i] * ax[i];
            xay += x[i] * ay[i];
            norm += std::fabs(y[i] * ax[i]);
        }
        EXPECT_NEAR(yax, xay, 1e-14 * norm);
    }
}

TEST(Product, EmptySystemTouchesNothing)
{
    LowerPattern p;
    p.ia = {0, 1};
    p.ja = {0};
    std::vector<double> a(1, 0.0), x(1, 3.0), y(1, 5.0);
    matvec_lower(p, a, x, y);
    matvec_lower_cleared(p, a, x, y);
    EXPECT_EQ(y[0], 5.0);
}

}  // namespace
