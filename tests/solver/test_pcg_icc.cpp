#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "control/limits.hpp"
#include "control/stop.hpp"
#include "solver/lower_csr.hpp"
#include "solver/pcg_icc.hpp"
#include "solver_test_util.hpp"
#include "support/hex_system.hpp"

namespace {

constexpr double stab = 0.980000019073486;
constexpr double pivfrac = 0.899999976158142;

// icc::pcg with a work array of its own; the factor stays in `work` for a later kstart 2.
struct IccRun {
    std::vector<double> work;
    void run(const LowerPattern& p, const std::vector<double>& a, const std::vector<double>& b,
             std::vector<double>& x, int kstart, Channels& ch, int worklen = max_work)
    {
        const std::size_t len = 3 * std::size_t(p.neq) + p.nvec + 1;
        if (work.size() != len) work.assign(len, std::numeric_limits<double>::quiet_NaN());
        icc::pcg(a, p, b, x, work, worklen, kstart, ch.lst);
    }
};

// The stabilised incomplete LDL^T written with dense loops: row by row, for each stored
// column j in ascending order, l(i,j) = (a(i,j) - sum over common stored columns c < j of
// l(i,c) d(c) l(j,c)) / d(j); then the pivot loses min(0.98 s, (0.9 a(i,i) + s) / 2) of
// a(i,i), s = sum of l(i,j)^2 d(j).
void dense_icc(const LowerPattern& p, const std::vector<double>& a, Dense& L, std::vector<double>& d)
{
    const int n = p.neq;
    Dense stored(n), A(n);
    L = Dense(n);
    d.assign(n + 1, 0.0);
    for (int i = 1; i <= n; ++i)
        for (int k = p.ia[i]; k < p.ia[i + 1]; ++k) {
            stored(i, p.ja[k]) = 1.0;
            A(i, p.ja[k]) = a[k];
        }
    for (int i = 1; i <= n; ++i) {
        double s = 0.0;
        for (int j = 1; j < i; ++j) {
            if (stored(i, j) == 0.0) continue;
            double sum = 0.0;
            for (int c = 1; c < j; ++c)
                if (stored(i, c) != 0.0 && stored(j, c) != 0.0) sum += L(i, c) * d[c] * L(j, c);
            L(i, j) = (A(i, j) - sum) / d[j];
            s += L(i, j) * L(i, j) * d[j];
        }
        d[i] = A(i, i) - std::min(stab * s, (pivfrac * A(i, i) + s) * 0.5);
    }
}

double rel_residual(const Dense& A, const std::vector<double>& x, const std::vector<double>& b)
{
    const std::vector<double> ax = dense_matvec(A, x);
    double rr = 0.0, bb = 0.0;
    for (int i = 1; i <= A.n; ++i) {
        rr += (ax[i] - b[i]) * (ax[i] - b[i]);
        bb += b[i] * b[i];
    }
    return std::sqrt(rr / bb);
}

const FixedMask kTopAndWest = [](int i, int, int k) { return k == 10 || i == 1; };

TEST(IccIlu, MatchesTheDenseStabilisedFactorisation)
{
    const HexSystem s = hex_grid_system(6, 5, 5, [](int i, int, int k) { return k == 5 || i == 1; });
    std::vector<double> f = s.a;
    Channels ch;
    icc::ilu(f, s.pat, ch.lst);
    EXPECT_EQ(ch.listing(), "");
    Dense L(0);
    std::vector<double> d;
    dense_icc(s.pat, s.a, L, d);
    for (int i = 1; i <= s.pat.neq; ++i) {
        EXPECT_NEAR(f[s.pat.ia[i]], d[i], 1e-13 * d[i]) << i;
        for (int k = s.pat.ia[i] + 1; k < s.pat.ia[i + 1]; ++k)
            EXPECT_NEAR(f[k], L(i, s.pat.ja[k]), 1e-13) << i << " " << s.pat.ja[k];
    }
}

TEST(IccIlu, DiagonalMatrixKeepsItsPivots)
{
    const SmallSystem s = diagonal_system({0, 2.0, 3.0, 0.5});
    std::vector<double> f = s.a;
    Channels ch;
    icc::ilu(f, s.p, ch.lst);
    EXPECT_EQ(f, s.a);
    EXPECT_EQ(ch.listing(), "");
}

TEST(IccIlu, StrongCouplingGivesThePivotNotice)
{
    // [1 .99; .99 1]: s = .9801 = ratio; the pivot loses (0.9 + s)/2, not 0.98 s.
    const SmallSystem s = small_system({{{1, 1.0}}, {{2, 1.0}, {1, 0.99}}});
    std::vector<double> f = s.a;
    Channels ch;
    icc::ilu(f, s.p, ch.lst);
    EXPECT_DOUBLE_EQ(f[3], 0.99);
    EXPECT_DOUBLE_EQ(f[2], 1.0 - (pivfrac + 0.99 * 0.99) * 0.5);
    EXPECT_EQ(ch.listing(),
              " hinweis: bei der ilu zerlegung wird eine reduktion\n"
              " der diagonalelemente um den faktor   0.98 verlangt.\n");

    // s = 0.81 stays below the notice level; 98 % of s is the smaller loss here.
    const SmallSystem w = small_system({{{1, 1.0}}, {{2, 1.0}, {1, 0.9}}});
    std::vector<double> g = w.a;
    Channels quiet;
    icc::ilu(g, w.p, quiet.lst);
    EXPECT_DOUBLE_EQ(g[2], 1.0 - stab * 0.9 * 0.9);
    EXPECT_EQ(quiet.listing(), "");
}

TEST(IccIluSolve, InvertsLdltAndIsSymmetric)
{
    const HexSystem s = hex_grid_system(5, 4, 5, [](int i, int, int k) { return k == 5 || i == 1; });
    const int n = s.pat.neq;
    std::vector<double> f = s.a;
    Channels ch;
    icc::ilu(f, s.pat, ch.lst);
    Dense L(n), M(n);
    for (int i = 1; i <= n; ++i) {
        L(i, i) = 1.0;
        for (int k = s.pat.ia[i] + 1; k < s.pat.ia[i + 1]; ++k) L(i, s.pat.ja[k]) = f[k];
    }
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= n; ++j)
            for (int c = 1; c <= std::min(i, j); ++c) M(i, j) += L(i, c) * f[s.pat.ia[c]] * L(j, c);

    std::vector<double> r(n + 1), q(n + 1);
    for (int i = 1; i <= n; ++i) {
        r[i] = std::cos(0.3 * i);
        q[i] = std::sin(1.1 * i) + 0.5;
    }
    const std::vector<double> want = dense_gauss_solve(M, r);
    std::vector<double> zr = r, zq = q;
    icc::ilu_solve(f, s.pat, pattern_reach(s.pat), zr);
    icc::ilu_solve(f, s.pat, pattern_reach(s.pat), zq);
    for (int i = 1; i <= n; ++i) EXPECT_NEAR(zr[i], want[i], 1e-12 * std::fabs(want[i]) + 1e-14) << i;
    double qmr = 0.0, rmq = 0.0;
    for (int i = 1; i <= n; ++i) {
        qmr += q[i] * zr[i];
        rmq += r[i] * zq[i];
    }
    EXPECT_NEAR(qmr, rmq, 1e-12 * std::fabs(qmr));
}

// The three sweeps as written: L by rows, D, L^T by rows from the last.
std::vector<double> three_sweeps(const std::vector<double>& f, const LowerPattern& p, std::vector<double> z)
{
    for (int i = 1; i <= p.neq; ++i) {
        double sum = 0.0;
        for (int k = p.ia[i] + 1; k < p.ia[i + 1]; ++k) sum += f[k] * z[p.ja[k]];
        z[i] -= sum;
    }
    for (int i = 1; i <= p.neq; ++i) z[i] /= f[p.ia[i]];
    for (int i = p.neq; i >= 1; --i)
        for (int k = p.ia[i] + 1; k < p.ia[i + 1]; ++k) z[p.ja[k]] -= z[i] * f[k];
    return z;
}

TEST(IccIluSolve, DividingRightBehindTheSweepGivesTheSameBits)
{
    const HexSystem h = hex_grid_system(6, 5, 7, [](int i, int, int k) { return k == 7 || i == 1; });
    const SmallSystem d = diagonal_system({0, 2.0, 4.0, 0.5});
    const SmallSystem t = small_system({{{1, 2.0}}, {{2, 2.0}, {1, 0.5}}, {{3, 2.0}, {1, -0.5}}});
    for (const auto& [p, a] : {std::pair{&h.pat, &h.a}, std::pair{&d.p, &d.a}, std::pair{&t.p, &t.a}}) {
        std::vector<double> f = *a;
        Channels ch;
        icc::ilu(f, *p, ch.lst);
        std::vector<double> z(p->neq + 1);
        for (int i = 1; i <= p->neq; ++i) z[i] = std::cos(0.3 * i) * (i % 3 + 1);
        const std::vector<double> want = three_sweeps(f, *p, z);
        icc::ilu_solve(f, *p, pattern_reach(*p), z);
        EXPECT_EQ(z, want);
    }
}

TEST(IccPcg, SolvesAHexGridSystemFromZero)
{
    const HexSystem s = hex_grid_system(10, 10, 10);
    Dense A(0);
    std::vector<double> bd;
    dense_condensed(s, A, bd);
    const std::vector<double> want = dense_solve(A, bd);
    std::vector<double> x(s.grid.nn + 1, 0.0);
    Channels ch;
    IccRun run;
    run.run(s.pat, s.a, s.b, x, 0, ch);
    EXPECT_EQ(ch.listing(), "");
    EXPECT_LT(rel_residual(A, x, bd), 1e-7);
    for (int i = 1; i <= A.n; ++i) EXPECT_NEAR(x[i], want[i], 1e-5 * std::fabs(want[i])) << i;
}

TEST(IccPcg, SolvesWithFixedNodesFromTheNodalStartVector)
{
    const HexSystem s = hex_grid_system(10, 10, 10, kTopAndWest);
    Dense A(0);
    std::vector<double> bd;
    dense_condensed(s, A, bd);
    const std::vector<double> want = dense_solve(A, bd);
    std::vector<double> u(s.grid.nn + 1);
    for (int n = 1; n <= s.grid.nn; ++n) u[n] = 4.0 - 0.002 * n;
    Channels ch;
    IccRun run;
    run.run(s.pat, s.a, s.b, u, 1, ch);
    EXPECT_EQ(ch.listing(), "");
    EXPECT_LT(rel_residual(A, u, bd), 1e-7);
    restore_nodal(s.grid.nn, FixedNodes{s.field.idir, s.field.ncum, s.field.fc}, u);
    int m = 0;
    for (int n = 1; n <= s.grid.nn; ++n) {
        if (s.field.idir[n]) {
            EXPECT_EQ(u[n], s.field.fc[n]);
        } else {
            ++m;
            EXPECT_NEAR(u[n], want[m], 1e-5 * std::fabs(want[m])) << n;
        }
    }
}

TEST(IccPcg, KstartTwoReusesTheFactorInTheWorkArray)
{
    const HexSystem s = hex_grid_system(6, 6, 6, [](int, int, int k) { return k == 6; });
    const int n = s.pat.neq, nnz = s.pat.nvec;
    std::vector<double> x(n + 1, 0.0);
    Channels ch;
    IccRun run;
    run.run(s.pat, s.a, s.b, x, 1, ch);
    const std::vector<double> factor(run.work.begin(), run.work.begin() + nnz + 1);

    // The same factor preconditions a matrix scaled by two: the solution halves.
    std::vector<double> a2 = s.a;
    for (double& v : a2) v *= 2.0;
    std::vector<double> x2(n + 1, 0.0);
    run.run(s.pat, a2, s.b, x2, 2, ch);
    EXPECT_EQ(ch.listing(), "");
    EXPECT_TRUE(std::equal(factor.begin() + 1, factor.end(), run.work.begin() + 1));
    for (int i = 1; i <= n; ++i) EXPECT_NEAR(x2[i], 0.5 * x[i], 1e-6 * std::fabs(x[i])) << i;

    // A unit factor left in the work array makes it plain CG, and it is not replaced.
    std::fill(run.work.begin() + 1, run.work.begin() + nnz + 1, 0.0);
    for (int i = 1; i <= n; ++i) run.work[s.pat.ia[i]] = 1.0;
    std::vector<double> x3(n + 1, 0.0);
    run.run(s.pat, s.a, s.b, x3, 2, ch);
    EXPECT_EQ(ch.listing(), "");
    for (int i = 1; i <= n; ++i) {
        EXPECT_EQ(run.work[s.pat.ia[i]], 1.0);
        EXPECT_NEAR(x3[i], x[i], 1e-5 * std::fabs(x[i])) << i;
    }
}

TEST(IccPcg, IdentityIsSolvedInOneStepAndTheSecondFindsNoDefiniteness)
{
    const SmallSystem s = diagonal_system({0, 1, 1, 1});
    const std::vector<double> b = {0, 0.3, -1.7, 2.9};
    std::vector<double> x(4, 0.0);
    Channels ch;
    IccRun run;
    run.run(s.p, s.a, b, x, 0, ch);
    EXPECT_EQ(ch.listing(), " die gegebene matrix erweist sich in schritt   2 als nicht definit!\n");
    EXPECT_EQ(x, b);
}

TEST(IccPcg, ZeroRightHandSideFromZeroStopsAtStepOneWithoutReport)
{
    const HexSystem s = hex_grid_system(4, 4, 4);
    const std::vector<double> b(s.pat.neq + 1, 0.0);
    std::vector<double> x(s.pat.neq + 1, 5.0);
    Channels ch;
    IccRun run;
    run.run(s.pat, s.a, b, x, 0, ch);
    EXPECT_EQ(ch.listing(), " die gegebene matrix erweist sich in schritt   1 als nicht definit!\n");
    for (int i = 1; i <= s.pat.neq; ++i) EXPECT_EQ(x[i], 0.0);
}

TEST(IccPcg, NoEquationsEndAtStepOneLikeAZeroRightHandSide)
{
    const SmallSystem s = diagonal_system({0});
    std::vector<double> b(1, 0.0), x(1, 7.0);
    Channels ch;
    IccRun run;
    run.run(s.p, s.a, b, x, 1, ch);
    EXPECT_EQ(ch.listing(), " die gegebene matrix erweist sich in schritt   1 als nicht definit!\n");
    EXPECT_EQ(x[0], 7.0);
}

TEST(IccPcg, ShortWorkArraySkipsTheSolve)
{
    const HexSystem s = hex_grid_system(4, 4, 4);  // 64 equations
    const int need = 3 * s.pat.neq + s.pat.nvec;
    std::vector<double> x(s.pat.neq + 1, -2.0);
    Channels ch;
    IccRun run;
    run.run(s.pat, s.a, s.b, x, 1, ch, need - 1);
    EXPECT_EQ(ch.listing(), " pcg mit icc erwartet ein hilfsfeld der laenge" + std::string(6 - 3, ' ') +
                                std::to_string(need) + " hilfsspeicher ist zu klein!\n");
    EXPECT_EQ(x, std::vector<double>(s.pat.neq + 1, -2.0));
    Channels ok;
    run.run(s.pat, s.a, s.b, x, 1, ok, need);
    EXPECT_EQ(ok.listing(), "");
}

TEST(IccPcg, NonPositiveDiagonalStopsTheRunWhateverKstart)
{
    for (int kstart : {0, 1, 2}) {
        HexSystem s = hex_grid_system(4, 4, 4);
        s.a[s.pat.ia[12]] = -1.0;
        std::vector<double> x(s.pat.neq + 1, 0.0);
        Channels ch;
        IccRun run;
        EXPECT_THROW(run.run(s.pat, s.a, s.b, x, kstart, ch), RunStopped);
        EXPECT_EQ(ch.listing(),
                  stop_block(" pcg wird eine matrix mit    12-tem diagonalelement < 0 vorgelegt!"));
        EXPECT_EQ(ch.console(), "");
    }
}

// A = I with the factor diag(1, 1e-3, 1e20) given: steps 1 and 2 solve the first two
// equations, raising rho by 1000 * 0.4995^2 / 1.001 on the way; the third has no weight
// in the metric, so step 3's direction is far too short.
TEST(IccPcg, TooLargeAStepReportsTheAccuracyAndALargeBeta)
{
    const SmallSystem s = diagonal_system({0, 1, 1, 1});
    const std::vector<double> b = {0, -1.0, -1e-3, -1.0};
    std::vector<double> x(4, 0.0);
    Channels ch;
    IccRun run;
    run.work = {0, 1.0, 1e-3, 1e20, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    run.run(s.p, s.a, b, x, 2, ch);
    // rr at step 3 is the untouched third residual, 1; bb = 2.000001.
    EXPECT_EQ(ch.listing(),
              " schrittweite zu gross!\n"
              " pcg erzielt in   3 schritten\n"
              " nur eine relative genauigkeit im defekt von   0.71E+00\n"
              " werte von beta bis  0.250E+03 weisen auf eine instabile vorkonditionierung hin\n");
}

// A = diag(1, 1e30) with the factor diag(1, 1e27): step 1 solves equation 1 and leaves
// r2 = 1 - 1000; its metric weight 999^2 / 1e27 is below 1e-18 of the first rho.
TEST(IccPcg, SmallMetricEndsTheIterationWithAReport)
{
    const SmallSystem s = diagonal_system({0, 1.0, 1e30});
    const std::vector<double> b = {0, -1.0, -1.0};
    std::vector<double> x(3, 0.0);
    Channels ch;
    IccRun run;
    run.work = {0, 1.0, 1e27, 0, 0, 0, 0, 0, 0};
    run.run(s.p, s.a, b, x, 2, ch);
    EXPECT_EQ(ch.listing(),
              " genauigkeit in der metrik der vorkonditionierung schon gut\n"
              " pcg erzielt in   2 schritten\n"
              " nur eine relative genauigkeit im defekt von   0.71E+03\n");
}

TEST(IccPcg, NoRealReductionAtHalfTheStepsEndsAtStepTwoHundred)
{
    const SmallSystem s = pair_system(600, 1e-6);
    const std::vector<double> b(1201, 1.0);
    std::vector<double> x(1201, 0.0);
    Channels ch;
    IccRun run;
    run.run(s.p, s.a, b, x, 0, ch);
    const std::vector<std::string> lst = records(ch.listing());
    ASSERT_EQ(lst.size(), 5u);
    EXPECT_EQ(lst[0], " hinweis: bei der ilu zerlegung wird eine reduktion");
    EXPECT_EQ(lst[1], " der diagonalelemente um den faktor   1.00 verlangt.");
    EXPECT_EQ(lst[2], " nach halber max. schrittzahl noch keine echte reduktion!");
    EXPECT_EQ(lst[3], " pcg erzielt in 200 schritten");
    EXPECT_EQ(lst[4].substr(0, 44), " nur eine relative genauigkeit im defekt von");
}

}  // namespace
