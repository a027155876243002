// The products and the preconditioner sweeps are tuned for speed (entries taken in pairs,
// values carried in registers, recurrences fused into the row loops, a sum started from
// its first term).  None of that may change a rounding: here they must give bit for bit
// what the plain row-by-row formulas give, including the sign of zeros, on hexahedral
// systems and on irregular patterns.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "solver/lower_csr.hpp"
#include "solver_test_util.hpp"

namespace {

// Product form 1 (each y(i) assigned by its row) and form 2 (y cleared first).
std::vector<double> plain_product(const std::vector<double>& a, const LowerPattern& p,
                                  const std::vector<double>& x, bool cleared)
{
    std::vector<double> y(p.neq + 1, 0.0);
    for (int i = 1; i <= p.neq; ++i) {
        double s = cleared ? y[i] + a[p.ia[i]] * x[i] : a[p.ia[i]] * x[i];
        for (int k = p.ia[i] + 1; k < p.ia[i + 1]; ++k) {
            s = s + a[k] * x[p.ja[k]];
            y[p.ja[k]] = y[p.ja[k]] + a[k] * x[i];
        }
        y[i] = s;
    }
    return y;
}

// z := (L D L^T)^-1 z, one pass each, in the order of the formulas.
void plain_ilu_solve(const std::vector<double>& f, const LowerPattern& p, std::vector<double>& z)
{
    for (int i = 1; i <= p.neq; ++i) {
        double sum = 0.0;
        for (int k = p.ia[i] + 1; k < p.ia[i + 1]; ++k) sum += f[k] * z[p.ja[k]];
        z[i] = z[i] - sum;
    }
    for (int i = 1; i <= p.neq; ++i) z[i] = z[i] / f[p.ia[i]];
    for (int i = p.neq; i >= 1; --i)
        for (int k = p.ia[i] + 1; k < p.ia[i + 1]; ++k) z[p.ja[k]] = z[p.ja[k]] - z[i] * f[k];
}

void plain_block_solve(int f, int l, const std::vector<double>& w, std::vector<double>& z,
                       const std::vector<double>& d, const std::vector<double>& e)
{
    z[f] = w[f];
    for (int i = f + 1; i <= l; ++i) z[i] = w[i] - e[i] * z[i - 1];
    z[l] = z[l] * d[l];
    for (int i = l - 1; i >= f; --i) z[i] = z[i] * d[i] - e[i + 1] * z[i + 1];
}

// The block setup in two passes: the blocks and the raw d, e first, then the LDL^T of each
// block, then the relaxation.
void plain_block_setup(const std::vector<double>& a, const LowerPattern& p, std::vector<double>& d,
                       std::vector<double>& e, std::vector<int>& iblk, int& nblk)
{
    nblk = 0;
    int bs = 0;
    for (int i = 1; i <= p.neq; ++i) {
        const int k = p.ia[i], kend = p.ia[i + 1];
        if (kend == k + 1 || p.ja[k + 1] != i - 1 || (k + 2 < kend && p.ja[k + 2] >= bs)) {
            iblk[++nblk] = i;
            bs = i;
        }
        d[i] = a[k];
        e[i] = (k + 1 < kend) ? a[k + 1] : 0.0;
    }
    iblk[nblk + 1] = p.neq + 1;
    for (int b = 1; b <= nblk; ++b) {
        d[iblk[b]] = 1.0 / d[iblk[b]];
        for (int i = iblk[b] + 1; i < iblk[b + 1]; ++i) {
            const double t = e[i] * d[i - 1], c = e[i];
            e[i] = t;
            d[i] = 1.0 / (d[i] - c * t);
        }
    }
    for (int i = 1; i <= p.neq; ++i) d[i] = 1.3 * d[i];
}

// The block sweep: all of the forward pass, block by block, then all of the backward pass.
void plain_block_sweep(const std::vector<double>& a, const LowerPattern& p, const std::vector<double>& r,
                       std::vector<double>& z, std::vector<double>& w, const std::vector<double>& d,
                       const std::vector<double>& e, const std::vector<int>& iblk, int nblk)
{
    auto first_off = [&](int i, int f) { return p.ia[i] + (i > f ? 2 : 1); };
    for (int b = 1; b <= nblk; ++b) {
        const int f = iblk[b], l = iblk[b + 1] - 1;
        for (int i = f; i <= l; ++i) {
            double sum = 0.0;
            for (int k = first_off(i, f); k < p.ia[i + 1]; ++k) sum += a[k] * z[p.ja[k]];
            w[i] = r[i] - sum;
        }
        plain_block_solve(f, l, w, z, d, e);
    }
    for (int b = nblk; b >= 1; --b) {
        const int f = iblk[b], l = iblk[b + 1] - 1;
        plain_block_solve(f, l, w, z, d, e);
        for (int i = l; i >= f; --i)
            for (int k = first_off(i, f); k < p.ia[i + 1]; ++k) w[p.ja[k]] = w[p.ja[k]] - a[k] * z[i];
    }
}

// Rows of up to 14 entries over the 40 columns below, the nearest one with probability
// `chain` (so that tridiagonal blocks of every length occur), the others sparsely.
LowerPattern irregular_pattern(int neq, double chain, std::mt19937& g)
{
    std::uniform_real_distribution<double> u(0.0, 1.0);
    LowerPattern p;
    p.neq = neq;
    p.ia.assign(neq + 2, 0);
    p.ja.assign(1, 0);
    p.ia[1] = 1;
    for (int i = 1; i <= neq; ++i) {
        p.ja.push_back(i);
        int n = 1;
        for (int j = i - 1; j >= std::max(1, i - 40) && n < 14; --j)
            if (u(g) < (j == i - 1 ? chain : 0.15)) {
                p.ja.push_back(j);
                ++n;
            }
        p.ia[i + 1] = (int)p.ja.size();
    }
    p.nvec = p.ia[neq + 1] - 1;
    return p;
}

// Dominant diagonal, small off-diagonal values of both signs; with `zeros`, a third of
// the off-diagonal values and of the vector are +0 or -0.
struct Values {
    std::vector<double> a, v;
};
Values values(const LowerPattern& p, bool zeros, std::mt19937& g)
{
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    auto draw = [&](double scale) {
        const double x = scale * u(g), c = u(g);
        if (zeros && c > 0.67) return 0.0;
        if (zeros && c < -0.67) return -0.0;
        return x;
    };
    Values s;
    s.a.assign(p.nvec + 1, 0.0);
    s.v.assign(p.neq + 1, 0.0);
    for (int i = 1; i <= p.neq; ++i) {
        s.a[p.ia[i]] = 3.0 + u(g);
        for (int k = p.ia[i] + 1; k < p.ia[i + 1]; ++k) s.a[k] = draw(0.2);
        s.v[i] = draw(1.0);
    }
    return s;
}

// One-based vectors: element 0 is not compared.
bool same_bits(const std::vector<double>& x, const std::vector<double>& y)
{
    return x.size() == y.size() && std::memcmp(x.data() + 1, y.data() + 1, (x.size() - 1) * sizeof(double)) == 0;
}

void expect_plain_results(const LowerPattern& p, const Values& s, const std::string& what)
{
    std::vector<double> y(p.neq + 1, 7.0);
    matvec_lower(p, s.a, s.v, y);
    EXPECT_TRUE(same_bits(y, plain_product(s.a, p, s.v, false))) << "form 1, " << what;
    matvec_lower_cleared(p, s.a, s.v, y);
    EXPECT_TRUE(same_bits(y, plain_product(s.a, p, s.v, true))) << "form 2, " << what;

    // the factorisation with its plan of common columns, against the merge of the rows
    LowerPattern planned = p;
    icc::plan_factorisation(planned);
    std::vector<double> f1 = s.a, f2 = s.a;
    icc::ilu(f1, p, Listing{});
    icc::ilu(f2, planned, Listing{});
    EXPECT_TRUE(same_bits(f1, f2)) << "ilu with its plan, " << what << " (" << planned.shapes << " shapes)";

    std::vector<double> z = s.v, want = s.v;
    icc::ilu_solve(s.a, p, pattern_reach(p), z);
    plain_ilu_solve(s.a, p, want);
    EXPECT_TRUE(same_bits(z, want)) << "ilu_solve, " << what;

    const int neq = p.neq;
    std::vector<double> d(neq + 1), e(neq + 1), w(neq + 1, 0.0), w0(neq + 1, 0.0);
    std::vector<double> zz(neq + 1, 0.0), zz0(neq + 1, 0.0);
    std::vector<int> iblk(neq + 2);
    int nblk = 0;
    Channels ch;
    ssor::precg(s.a, p, d, e, iblk, neq + 1, nblk, ch.con, ch.lst);
    std::vector<double> d0(neq + 1), e0(neq + 1);
    std::vector<int> iblk0(neq + 2);
    int nblk0 = 0;
    plain_block_setup(s.a, p, d0, e0, iblk0, nblk0);
    EXPECT_EQ(nblk, nblk0) << what;
    EXPECT_TRUE(same_bits(d, d0) && same_bits(e, e0) && iblk == iblk0) << "block setup, " << what;
    ssor::cgtriadapt(s.a, p, s.v, zz, w, d, e, iblk, nblk);
    plain_block_sweep(s.a, p, s.v, zz0, w0, d, e, iblk, nblk);
    EXPECT_TRUE(same_bits(zz, zz0)) << "cgtriadapt z, " << what;
    EXPECT_TRUE(same_bits(w, w0)) << "cgtriadapt w, " << what;
}

TEST(RoundingOrder, HexahedralSystemsGiveThePlainResultsBitForBit)
{
    std::mt19937 g(11);
    const FixedMask top_and_west = [](int i, int, int k) { return k == 4 || i == 1; };
    for (const HexSystem& h : {hex_grid_system(5, 4, 6), hex_grid_system(6, 5, 4, top_and_west)}) {
        Values s = values(h.pat, false, g);
        s.a = h.a;
        expect_plain_results(h.pat, s, "hexahedra");
    }
}

TEST(RoundingOrder, IrregularPatternsWithSignedZerosGiveThePlainResultsBitForBit)
{
    std::mt19937 g(5);
    for (int t = 0; t < 60; ++t) {
        const LowerPattern p = irregular_pattern(1 + 5 * t, t % 3 == 0 ? 1.0 : 0.6, g);
        expect_plain_results(p, values(p, t % 2 == 1, g), "case " + std::to_string(t));
    }
}

// Row 2 sums 0 + 1 * (-0) = +0, and -0 - (+0) stays -0; a sum started from its first term
// would be -0 and turn z(2) into +0, which the division and row 3 carry on.
TEST(RoundingOrder, ARowOfZeroTermsKeepsTheSignOfThePlainSum)
{
    const SmallSystem s = small_system({{{1, 2.0}}, {{2, 2.0}, {1, 1.0}}, {{3, 2.0}, {2, -1.0}}});
    expect_plain_results(s.p, Values{s.a, {0.0, -0.0, -0.0, 0.5}}, "zero terms");
}

}  // namespace
