#include "solver/lower_csr.hpp"

#include <algorithm>
#include <cassert>

#include "solver/entry_pairs.hpp"
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
    // positions past the row's entries hold no column (0), which m1 >= 1 never matches
    const int first = t.pat.ia[m2];
    const int last = std::min(t.bound, t.pat.ia[m2 + 1] - first);
    const int* row = t.pat.ja.data() + first - 1;  // row[k]: column of position k
    for (int k = 1; k <= last; ++k) {
        if (row[k] == m1) {
            t.k = k;
            break;
        }
    }
    return first + t.k - 1;
}

void element_positions(const LowerPattern& p, std::span<const int> inc, int ne, std::span<const int> idir,
                       std::span<const int> ncum, int bound, ElementPositions& ep)
{
    ep.ne = ne;
    ep.k.assign((std::size_t)ne * 64, 0);
    ScatterTarget t{p, {}, {}, bound};
    for (int e = 1; e <= ne; ++e) {
        const int* nodes = &inc[(std::size_t)(e - 1) * 8];
        std::uint8_t* ke = &ep.k[(std::size_t)(e - 1) * 64];
        for (int i = 1; i <= 8; ++i) {
            const int q1 = nodes[i];
            if (idir[q1] == 1) continue;
            const int m1 = q1 - ncum[q1];
            for (int j = 1; j <= 8; ++j) {
                const int q2 = nodes[j];
                if (idir[q2] == 1) continue;
                const int m2 = q2 - ncum[q2];
                if (m1 <= m2) ke[(i - 1) * 8 + j - 1] = (std::uint8_t)(lower_position(t, m1, m2) - p.ia[m2] + 1);
            }
        }
    }
    ep.last_k = t.k;
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

namespace {
// The off-diagonal entries k1..kend-1 of row i in both roles: s += a(k) x(j) in storage
// order, and the mirrored upper entry y(j) += a(k) x(i), which gives every y(j) the rows'
// contributions in row order.  The columns of a row are distinct, so the two y updates of
// a pair cannot meet.
inline double row_both_ways(const double* av, const int* ja, const double* xv, double* yv, int k1,
                            int kend, double xi, double s)
{
    const double_pair xi2 = splat(xi);
    int k = k1;
    for (; k + 1 < kend; k += 2) {
        const double_pair a2 = load_pair(av + k);
        const int_pair j = load_pair(ja + k);
        const double_pair g = a2 * double_pair{xv[j[0]], xv[j[1]]};
        const double_pair h = a2 * xi2;
        s += g[0];
        s += g[1];
        yv[j[0]] += h[0];
        yv[j[1]] += h[1];
    }
    if (k < kend) {
        const int j = ja[k];
        s += av[k] * xv[j];
        yv[j] += av[k] * xi;
    }
    return s;
}
}  // namespace

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
        // y(j), j < i, is already assigned when row i adds to it
        yv[i] = row_both_ways(av, ja, xv, yv, ia[i] + 1, ia[i + 1], xi, av[ia[i]] * xi);
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
        // y(i) is held in a register: no column of row i equals i
        yv[i] = row_both_ways(av, ja, xv, yv, ia[i] + 1, ia[i + 1], xi, yv[i] + av[ia[i]] * xi);
    }
}

void start_residual(const LowerPattern& p, std::span<const double> a, std::span<const double> b,
                    std::span<double> x, std::span<double> r, int kstart, bool cleared)
{
    if (kstart == 0) {
        for (int i = 1; i <= p.neq; ++i) {
            x[i] = 0.0;
            r[i] = -b[i];
        }
        return;
    }
    // x as handed over, nodal numbering included: a poor start only costs steps.
    if (cleared)
        matvec_lower_cleared(p, a, x, r);
    else
        matvec_lower(p, a, x, r);
    for (int i = 1; i <= p.neq; ++i) r[i] -= b[i];
}

int pattern_reach(const LowerPattern& p)
{
    int reach = 0;
    for (int i = 1; i <= p.neq; ++i) reach = std::max(reach, i - p.ja[p.ia[i + 1] - 1]);
    return reach;
}
