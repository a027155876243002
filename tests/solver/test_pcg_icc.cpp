#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "base/stop.hpp"
#include "solver/lower_csr.hpp"
#include "solver_test_util.hpp"

namespace {

constexpr double stab = 0.980000019073486;
constexpr double pivfrac = 0.899999976158142;

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
}

// The identity is solved in step 1 and step 2 finds no definiteness; b = 0 from zero and
// a system of no equations end at step 1 the same way.
TEST(IccPcg, IdentityZeroRightHandSideAndNoEquationsEndAsNotDefinite)
{
    const auto msg = [](int step) {
        return " die gegebene matrix erweist sich in schritt   " + std::to_string(step) + " als nicht definit!\n";
    };
    const SmallSystem id = diagonal_system({0, 1, 1, 1});
    const std::vector<double> b = {0, 0.3, -1.7, 2.9};
    std::vector<double> x(4, 0.0);
    Channels c1, c2, c3;
    IccRun().run(id.p, id.a, b, x, 0, c1);
    EXPECT_EQ(c1.listing(), msg(2));
    EXPECT_EQ(x, b);

    const HexSystem s = hex_grid_system(4, 4, 4);
    const std::vector<double> zero(s.pat.neq + 1, 0.0);
    std::vector<double> y(s.pat.neq + 1, 5.0);
    IccRun().run(s.pat, s.a, zero, y, 0, c2);
    EXPECT_EQ(c2.listing(), msg(1));
    EXPECT_EQ(std::count(y.begin() + 1, y.end(), 0.0), s.pat.neq);

    const SmallSystem none = diagonal_system({0});
    std::vector<double> b0(1, 0.0), x0(1, 7.0);
    IccRun().run(none.p, none.a, b0, x0, 1, c3);
    EXPECT_EQ(c3.listing(), msg(1));
    EXPECT_EQ(x0[0], 7.0);
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
        EXPECT_THROW(IccRun().run(s.pat, s.a, s.b, x, kstart, ch), RunStopped);
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
    IccRun().run(s.p, s.a, b, x, 0, ch);
    const std::vector<std::string> lst = split_lines(ch.listing());
    ASSERT_EQ(lst.size(), 5u);
    EXPECT_EQ(lst[0], " hinweis: bei der ilu zerlegung wird eine reduktion");
    EXPECT_EQ(lst[1], " der diagonalelemente um den faktor   1.00 verlangt.");
    EXPECT_EQ(lst[2], " nach halber max. schrittzahl noch keine echte reduktion!");
    EXPECT_EQ(lst[3], " pcg erzielt in 200 schritten");
    EXPECT_EQ(lst[4].substr(0, 44), " nur eine relative genauigkeit im defekt von");
}

}  // namespace
