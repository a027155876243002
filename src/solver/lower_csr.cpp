#include "solver/lower_csr.hpp"

#include <algorithm>
#include <cassert>

#include "solver/stream_ahead.hpp"

void clear_values(const LowerPattern& p, std::span<double> a)
{
    double* av = a.data();
    for (int k = 1; k <= p.nvec; ++k) av[k] = 0.0;
}

void fill_rhs(int nn, std::span<const int> idir, std::span<const int> ncum,
              std::span<const double> qnode, std::span<double> b)
{
    for (int i = 1; i <= nn; ++i) {
        b[i] = 0.0;
        if (idir[i] != 1) b[i - ncum[i]] = qnode[i];
    }
}

int lower_position(ScatterTarget& t, int m1, int m2)
{
    assert(t.bound <= t.pat.nb);
    for (int k = 1; k <= t.bound; ++k) {
        if (icol_at(t.pat, m2, k) == m1) {
            t.k = k;
            break;
        }
    }
    return t.pat.ia[m2] + t.k - 1;
}

namespace {
// The scatter for an n-node element: row i of a fixed node is skipped; a fixed column
// node moves to the right-hand side; a free pair enters a once, from its lower triangle.
template <int n>
void scatter(const int* nodes, const double (*e)[n], const FixedNodes& fx, ScatterTarget& t)
{
    const int* idir = fx.idir.data();
    const int* ncum = fx.ncum.data();
    const double* fc = fx.fc.data();
    double* a = t.a.data();
    double* b = t.b.data();
    for (int i = 0; i < n; ++i) {
        const int p = nodes[i];
        if (idir[p] == 1) continue;
        const int m1 = p - ncum[p];
        for (int j = 0; j < n; ++j) {
            const int q = nodes[j];
            if (idir[q] == 1) {
                b[m1] -= e[i][j] * fc[q];
                continue;
            }
            const int m2 = q - ncum[q];
            if (m1 <= m2) a[lower_position(t, m1, m2)] += e[i][j];
            // m1 > m2: the pair is entered when the loops meet it as (j, i)
        }
    }
}
}  // namespace

void scatter_element(const int nodes[8], const double e[8][8], const FixedNodes& fx, ScatterTarget& t)
{
    scatter<8>(nodes, e, fx, t);
}

void scatter_element(const int nodes[4], const double e[4][4], const FixedNodes& fx, ScatterTarget& t)
{
    scatter<4>(nodes, e, fx, t);
}

void scatter_element(const int nodes[2], const double e[2][2], const FixedNodes& fx, ScatterTarget& t)
{
    scatter<2>(nodes, e, fx, t);
}

void restore_nodal(int nn, const FixedNodes& fx, std::span<double> u)
{
    const int* idir = fx.idir.data();
    const int* ncum = fx.ncum.data();
    const double* fc = fx.fc.data();
    double* uv = u.data();
    for (int i = nn; i >= 1; --i) uv[i] = (idir[i] == 1) ? fc[i] : uv[i - ncum[i]];
}

void matvec_lower(const LowerPattern& p, std::span<const double> a, std::span<const double> x,
                  std::span<double> y)
{
    const int* ia = p.ia.data();
    const int* ja = p.ja.data();
    const double* av = a.data();
    const double* xv = x.data();
    double* yv = y.data();
    for (int i = 1; i <= p.neq; ++i) {
        prefetch_ahead(av, ja, ia[i], p.nvec);
        const double xi = xv[i];
        double s = av[ia[i]] * xi;
        for (int k = ia[i] + 1; k < ia[i + 1]; ++k) {
            const int j = ja[k];
            s += av[k] * xv[j];
            yv[j] += av[k] * xi;  // the mirrored upper entry; y[j], j < i, is already assigned
        }
        yv[i] = s;
    }
}

void matvec_lower_cleared(const LowerPattern& p, std::span<const double> a,
                          std::span<const double> x, std::span<double> y)
{
    const int* ia = p.ia.data();
    const int* ja = p.ja.data();
    const double* av = a.data();
    const double* xv = x.data();
    double* yv = y.data();
    for (int i = 1; i <= p.neq; ++i) yv[i] = 0.0;
    for (int i = 1; i <= p.neq; ++i) {
        prefetch_ahead(av, ja, ia[i], p.nvec);
        const double xi = xv[i];
        double yi = yv[i] + av[ia[i]] * xi;  // held in a register: no column of row i equals i
        for (int k = ia[i] + 1; k < ia[i + 1]; ++k) {
            const int j = ja[k];
            yi += av[k] * xv[j];
            yv[j] += av[k] * xi;
        }
        yv[i] = yi;
    }
}

int pattern_reach(const LowerPattern& p)
{
    int reach = 0;
    for (int i = 1; i <= p.neq; ++i) reach = std::max(reach, i - p.ja[p.ia[i + 1] - 1]);
    return reach;
}
