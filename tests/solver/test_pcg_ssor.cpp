#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "base/stop.hpp"
#include "solver_test_util.hpp"

namespace {

constexpr double relax = 1.3;

// The preconditioner written out densely: M = (D' + L) D'^-1 (D' + U), D' the tridiagonal
// blocks of A (first equations `first`, closed by n+1) over 1.3, L the rest of the lower part.
struct DenseBlockSsor {
    Dense dl, dp, du;  // D' + L, D', D' + U
    DenseBlockSsor(const Dense& A, const std::vector<int>& first) : dl(A.n), dp(A.n), du(A.n)
    {
        std::vector<int> blk(A.n + 1);
        for (std::size_t b = 0; b + 1 < first.size(); ++b)
            for (int i = first[b]; i < first[b + 1]; ++i) blk[i] = (int)b;
        for (int i = 1; i <= A.n; ++i)
            for (int j = 1; j <= A.n; ++j) {
                const bool inblock = blk[i] == blk[j] && std::abs(i - j) <= 1;
                if (inblock) dp(i, j) = A(i, j) / relax;
                dl(i, j) = inblock ? dp(i, j) : (j < i ? A(i, j) : 0.0);
                du(i, j) = inblock ? dp(i, j) : (j > i ? A(i, j) : 0.0);
            }
    }
    std::vector<double> apply(const std::vector<double>& v) const
    {
        return dense_matvec(dl, dense_gauss_solve(dp, dense_matvec(du, v)));
    }
};

// ssor::pcg on s from zero with b = -M v (blocks starting at `first`): the first
// direction is then v.
void run_along(const SmallSystem& s, const std::vector<int>& first, const std::vector<double>& v, Channels& ch)
{
    std::vector<double> b = DenseBlockSsor(to_dense(s.p, s.a), first).apply(v), x(v.size(), 0.0);
    for (double& e : b) e = -e;
    run_ssor(s.p, s.a, b, x, 0, ch);
}

// One free grid column is one tridiagonal block, and the block solve makes the first
// step exact.
TEST(SsorPrecg, OneFreeColumnIsOneTridiagonalBlock)
{
    std::vector<double> d(9), e(9);
    std::vector<int> iblk(11);
    int nblk = 0;
    Channels ch;
    const HexSystem one = hex_grid_system(3, 3, 8, [](int i, int j, int) { return !(i == 2 && j == 2); });
    ASSERT_EQ(one.pat.neq, 8);
    ssor::precg(one.a, one.pat, d, e, iblk, 10, nblk, ch.con, ch.lst);
    EXPECT_EQ(nblk, 1);
    EXPECT_EQ(iblk[2], 9);
    Dense A(0);
    std::vector<double> bd;
    dense_condensed(one, A, bd);
    const std::vector<double> want = dense_gauss_solve(A, bd);
    std::vector<double> x(one.grid.nn + 1, 0.0);
    run_ssor(one.pat, one.a, one.b, x, 0, ch);
    EXPECT_EQ(ch.console(), "");
    for (int i = 1; i <= 8; ++i) EXPECT_NEAR(x[i], want[i], 1e-12 * std::fabs(want[i])) << i;
}

TEST(SsorPcg, IdentityIsSolvedInOneStepThenFoundIndefinite)
{
    // One block per equation, s = 1.3 r, alpha = 1/1.3: step 1 is exact (for these b
    // exactly so), and step 2 finds p = 0 before the test sees the zero residual.
    SmallSystem s = diagonal_system({0, 1, 1, 1, 1});
    const std::vector<double> b = {0, 1.0, 2.0, 0.5, 4.0};
    std::vector<double> x(5, 0.0);
    Channels ch;
    EXPECT_THROW(run_ssor(s.p, s.a, b, x, 0, ch), RunStopped);
    const std::string msg = " step    2 determined the matrix to be indefinite!";
    EXPECT_EQ(ch.console(), msg + "\n");
    EXPECT_EQ(ch.listing(), stop_block(msg));
    EXPECT_EQ(x, b);
}

TEST(SsorPcg, ZeroRightHandSideLeavesTheStartVector)
{
    const HexSystem s = hex_grid_system(4, 4, 4);
    const std::vector<double> b(s.pat.neq + 1, 0.0);
    std::vector<double> x(s.pat.neq + 1, 3.5);
    Channels ch;
    run_ssor(s.pat, s.a, b, x, 1, ch);
    const std::string msg = "precg has a right-hand side entry = 0 : no solution\n";
    EXPECT_EQ(ch.console(), msg);
    EXPECT_EQ(ch.listing(), msg);
    EXPECT_EQ(x, std::vector<double>(s.pat.neq + 1, 3.5));

    Channels ch0;
    run_ssor(s.pat, s.a, b, x, 0, ch0);  // from zero: x is 0
    EXPECT_EQ(ch0.console(), msg);
    for (int i = 1; i <= s.pat.neq; ++i) EXPECT_EQ(x[i], 0.0);
}

TEST(SsorPcg, ShortWorkArrayReturnsAtOnce)
{
    const HexSystem s = hex_grid_system(5, 5, 4);  // 100 equations need 600
    std::vector<double> x(s.pat.neq + 1, 1.25);
    Channels ch;
    run_ssor(s.pat, s.a, s.b, x, 1, ch, 100000, 599);
    EXPECT_EQ(ch.console(),
              " pcg with ssor expects additonal storage array of length    600"
              " additional storage array too small! \n");
    EXPECT_EQ(ch.listing(), "");
    EXPECT_EQ(x, std::vector<double>(s.pat.neq + 1, 1.25));
    Channels ok;
    run_ssor(s.pat, s.a, s.b, x, 1, ok, 100000, 600);
    EXPECT_EQ(ok.console(), "");
}

TEST(SsorPcg, NonPositiveDiagonalStopsTheRun)
{
    for (double diag : {0.0, -2.0}) {
        HexSystem s = hex_grid_system(4, 4, 4);
        s.a[s.pat.ia[5]] = diag;
        std::vector<double> x(s.pat.neq + 1, 0.0);
        Channels ch;
        EXPECT_THROW(run_ssor(s.pat, s.a, s.b, x, 1, ch), RunStopped);
        const std::string msg = " pcg has been assigned a matrix with     5-th diagonal entry < 0 !";
        EXPECT_EQ(ch.console(), msg + "\n");
        EXPECT_EQ(ch.listing(), stop_block(msg));
    }
}

TEST(SsorPcg, LargestAcceptedBlockCountIsOneBelowTheCapacity)
{
    const HexSystem s = hex_grid_system(4, 5, 6);  // 20 columns, 20 blocks
    std::vector<double> x(s.pat.neq + 1, 0.0);
    Channels ok;
    run_ssor(s.pat, s.a, s.b, x, 0, ok, 21);
    EXPECT_EQ(ok.console(), "");

    Channels ch;
    EXPECT_THROW(run_ssor(s.pat, s.a, s.b, x, 0, ch, 20), RunStopped);
    const std::string msg = " cgtriadapt: dimension fuer zahl der bloecke zu klein!";
    EXPECT_EQ(ch.console(), msg + "\n");
    EXPECT_EQ(ch.listing(), stop_block(msg));
}

// A = [1 0 c; 0 1 0; c 0 1] with c near -1 is nearly singular along v = (1, 0, 1), while
// the preconditioner is not.  With r = M v the first direction is v, and v'Av < 1e-6 v'Mv.
TEST(SsorPcg, TooLargeAStepEndsTheIterationWithAReport)
{
    const double c = -(1.0 - 1e-8);
    Channels ch;
    run_along(small_system({{{1, 1.0}}, {{2, 1.0}}, {{3, 1.0}, {1, c}}}), {1, 2, 3, 4}, {0, 1.0, 0.0, 1.0}, ch);
    EXPECT_EQ(ch.console(),
              " pcg: schrittweite zu gross!\n"
              "pcg used    1 steps\n"
              "for a relative accuracy of only    0.10E+01\n");
    EXPECT_EQ(ch.listing(),
              "pcg used    1 steps\n"
              "for a relative accuracy of only    0.10E+01\n");
}

// Equations 1 and 3 form a coupled pair; equation 2 stands alone with a diagonal of 1e30.
// Two steps solve the pair; its residual then measures nothing in the metric of M, so rho
// collapses by far more than 4e-19 while the residual of equation 2 is still there.
TEST(SsorPcg, CollapsedMetricWarnsThatTheMatrixSeemsPreconditioned)
{
    const SmallSystem s = small_system({{{1, 1.0}}, {{2, 1e30}}, {{3, 1.0}, {1, -0.5}}});
    const std::vector<double> b = {0, -1.0, -1.0, -2.0};
    std::vector<double> x(4, 0.0);
    Channels ch;
    run_ssor(s.p, s.a, b, x, 0, ch);
    const std::vector<std::string> con = split_lines(ch.console());
    ASSERT_EQ(con.size(), 3u);
    EXPECT_EQ(con[0], " pcg - warning: matrix already preconditioned - input data is probably wrong");
    EXPECT_EQ(con[1], "pcg used    3 steps");
    EXPECT_EQ(con[2].substr(0, 32), "for a relative accuracy of only ");
    const double acc = std::atof(con[2].substr(32).c_str());
    EXPECT_GT(acc, 1e-3);
    EXPECT_LT(acc, 1.0);
    EXPECT_EQ(ch.listing(), con[1] + "\n" + con[2] + "\n");
}

// An indefinite tridiagonal block [1 2; 2 1] makes M indefinite while v'Av > 0 for
// v = (1, -1, 1): with r = M v, rho = v'Mv < 0 at the first step.
TEST(SsorPcg, NegativeMetricSaysThePreconditioningIsNotGood)
{
    Channels ch;
    run_along(small_system({{{1, 1.0}}, {{2, 1.0}, {1, 2.0}}, {{3, 1.0}, {1, 5.0}}}), {1, 3, 4}, {0, 1.0, -1.0, 1.0}, ch);
    EXPECT_EQ(ch.console(),
              " preconditioning is not good - problem to tough\n"
              "pcg used    1 steps\n"
              "for a relative accuracy of only    0.10E+01\n");
}

TEST(SsorPcg, NoRealReductionAtHalfTheStepsEndsTheIteration)
{
    const SmallSystem s = pair_system(300, 1e-5);
    const std::vector<double> b(601, 1.0);
    std::vector<double> x(601, 0.0);
    Channels ch;
    run_ssor(s.p, s.a, b, x, 0, ch);
    const std::vector<std::string> con = split_lines(ch.console());
    ASSERT_EQ(con.size(), 3u);
    EXPECT_EQ(con[0], " pcg: nach halber max. schrittzahl noch keine echte reduktion!");
    EXPECT_EQ(con[1], "pcg used  251 steps");
    EXPECT_EQ(ch.listing(), con[1] + "\n" + con[2] + "\n");
}

}  // namespace
