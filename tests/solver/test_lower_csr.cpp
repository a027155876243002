#include <gtest/gtest.h>

#include <cmath>
#include <limits>

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

// Fixed neighbours go to the right-hand side; with only the centre of a 3x3x3 grid free
// the whole matrix is one entry.
TEST(Scatter, HexahedraGiveTheDenseCondensedSystem)
{
    const FixedMask centre = [](int i, int j, int k) { return !(i == 2 && j == 2 && k == 2); };
    for (const HexSystem& s : {hex_grid_system(5, 4, 3), hex_grid_system(5, 4, 4, kTopAndWest),
                               hex_grid_system(3, 3, 3, centre)}) {
        Dense A(0);
        std::vector<double> b;
        dense_condensed(s, A, b);
        ASSERT_EQ(A.n, s.pat.neq);
        EXPECT_LT(max_abs_diff(to_dense(s.pat, s.a), A), 1e-13);
        for (int m = 1; m <= A.n; ++m) EXPECT_NEAR(s.b[m], b[m], 1e-12) << m;
    }
}

TEST(Restore, ExpandsEquationsToNodesAndSetsFixedValues)
{
    const std::vector<int> idir = {0, 1, 0, 1, 0, 0};
    const std::vector<int> ncum = {0, 1, 1, 2, 2, 2};
    const std::vector<double> fc = {0, -1, 0, -3, 0, 0};
    std::vector<double> u = {0, 10, 20, 30, 40, 50};  // equations 1..3 hold the solution
    restore_nodal(5, FixedNodes{idir, ncum, fc}, u);
    EXPECT_EQ(u, (std::vector<double>{0, -1, 10, -3, 20, 30}));
    // all fixed
    const std::vector<int> all = {0, 1, 1, 1}, allcum = {0, 1, 2, 3};
    const std::vector<double> allfc = {0, 4, 5, 6};
    std::vector<double> v = {0, 1, 2, 3};
    restore_nodal(3, FixedNodes{all, allcum, allfc}, v);
    EXPECT_EQ(v, allfc);
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

}  // namespace
