#include "solver/pcg_icc.hpp"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "base/stop.hpp"
#include "output/fortran_format.hpp"
#include "solver/lower_csr.hpp"
#include "solver/entry_pairs.hpp"
#include "solver/stream_ahead.hpp"

namespace icc {
namespace {
// Single-precision values widened to double, some squared, kept exactly.
constexpr double stab = 0.980000019073486;      // most of s a pivot may lose
constexpr double pivfrac = 0.899999976158142;   // cap: midpoint of 0.9 d and s; notice level
constexpr double cacc = 1.00000002337219e-14;   // (1e-7 in single precision)^2
constexpr double cfloor = 9.9999999811007e-19;
constexpr double cstep = 9.99999997475243e-07;
constexpr double cred = 0.00999999977648258;
constexpr int maxit = 400;
}  // namespace

void plan_factorisation(LowerPattern& p)
{
    constexpr int most_shapes = 256;  // beyond, finding the table would outgrow what it saves
    constexpr int row_max = 15;       // stored entries a row, diagonal included
    p.shape.clear();
    p.pair_start.clear();
    p.pair_pos.clear();
    p.shapes = 0;
    const int neq = p.neq;
    const int* ia = p.ia.data();
    const int* ja = p.ja.data();
    std::map<std::vector<int>, int> ids;
    std::vector<std::vector<int>> offsets;  // of each shape
    std::vector<int> shape(neq + 1, 0), row;
    for (int i = 1; i <= neq; ++i) {
        if (ia[i + 1] - ia[i] > row_max) return;
        row.clear();
        for (int k = ia[i] + 1; k < ia[i + 1]; ++k) row.push_back(i - ja[k]);
        const auto [it, fresh] = ids.try_emplace(row, (int)offsets.size());
        if (fresh) {
            if ((int)offsets.size() == most_shapes) return;
            offsets.push_back(row);
        }
        shape[i] = it->second;
    }
    const int S = (int)offsets.size();
    // Entry q (1-based among the off-diagonals) of a row of shape s has column j = i - o,
    // o = offsets[s][q-1]; a column c < j common to row i and row j (shape t) sits at
    // offset o + o' in row i, o' in row j.  The pairs go in ascending c: descending o'.
    std::vector<int> start((std::size_t)S * row_max * S + 1, 0);
    std::vector<std::uint8_t> pos;
    for (int s = 0; s < S; ++s)
        for (int q = 0; q < row_max; ++q)
            for (int t = 0; t < S; ++t) {
                start[((std::size_t)s * row_max + q) * S + t] = (int)pos.size() / 2;
                if (q == 0 || q > (int)offsets[s].size()) continue;
                const int o = offsets[s][q - 1];
                const std::vector<int>& rt = offsets[t];
                for (int b = (int)rt.size(); b >= 1; --b) {
                    const auto hit = std::find(offsets[s].begin(), offsets[s].end(), o + rt[b - 1]);
                    if (hit == offsets[s].end()) continue;
                    pos.push_back((std::uint8_t)(hit - offsets[s].begin() + 2));  // position in row i
                    pos.push_back((std::uint8_t)(b + 1));                         // position in row j
                }
            }
    start.back() = (int)pos.size() / 2;
    p.shape = std::move(shape);
    p.shapes = S;
    p.pair_start = std::move(start);
    p.pair_pos = std::move(pos);
}

void ilu(std::span<double> f, const LowerPattern& p, const Listing& lst)
{
    const int neq = p.neq;
    const int* ia = p.ia.data();
    const int* ja = p.ja.data();
    double* fv = f.data();
    const bool planned = !p.shape.empty();
    const int S = p.shapes;

    double maxratio = 0.0;
    for (int i = 1; i <= neq; ++i) {
        const int k1 = ia[i];
        const int k2 = ia[i + 1] - 1;
        // Entries of row i in ascending column j.  Row i still holds l(i,c) d(c) for c < j,
        // row j the scaled l(j,c): merging both from their far ends (smallest columns)
        // subtracts sum over c < j of l(i,c) d(c) l(j,c).  With a plan the common columns
        // are known in advance, in the same ascending order.
        for (int k = k2; k > k1; --k) {
            const int j = ja[k];
            double sum = 0.0;
            if (planned) {
                const std::size_t key = ((std::size_t)p.shape[i] * 15 + (k - k1)) * S + p.shape[j];
                const std::uint8_t* pr = p.pair_pos.data() + 2 * (std::size_t)p.pair_start[key];
                const std::uint8_t* end = p.pair_pos.data() + 2 * (std::size_t)p.pair_start[key + 1];
                const double* fi = fv + k1 - 1;
                const double* fj = fv + ia[j] - 1;
                for (; pr != end; pr += 2) sum += fi[pr[0]] * fj[pr[1]];
            } else {
                int u = k2;
                int v = ia[j + 1] - 1;
                while (ja[u] < j && ja[v] < j) {
                    if (ja[u] == ja[v]) {
                        sum += fv[u] * fv[v];
                        --u;
                        --v;
                    } else if (ja[u] < ja[v]) {
                        --u;
                    } else {
                        --v;
                    }
                }
            }
            fv[k] -= sum;
        }
        // Scale the row by the pivots of its columns; s = sum of l(i,j)^2 d(j).
        double s = 0.0;
        for (int k = k1 + 1; k <= k2; ++k) {
            const double t = fv[k];
            fv[k] = t / fv[ia[ja[k]]];
            s += t * fv[k];
        }
        // Plain incomplete Cholesky takes dd - s; at most 98 % of s is removed here, and
        // near s = dd the midpoint of 0.9 dd and s caps it, keeping the pivot positive.
        const double dd = fv[k1];
        const double ratio = s / dd;
        maxratio = std::max(maxratio, ratio);
        fv[k1] = dd - std::min(stab * s, (pivfrac * dd + s) * 0.5);
    }
    if (maxratio >= pivfrac) {
        lst.line(" hinweis: bei der ilu zerlegung wird eine reduktion");
        lst.line(" der diagonalelemente um den faktor" + fmt_f(maxratio, 7, 2) + " verlangt.");
    }
}

void ilu_solve(std::span<const double> f, const LowerPattern& p, int reach, std::span<double> z)
{
    const int neq = p.neq;
    const int* ia = p.ia.data();
    const int* ja = p.ja.data();
    const double* fv = f.data();
    double* zv = z.data();

    // L by rows, then D.  Rows after i read no z below i + 1 - reach, so z(i - reach) is
    // divided by its pivot as soon as row i is done: the pivots are then read from cache
    // right behind the sweep instead of in a pass of their own.
    //
    // The sweep is one long recurrence: z(i-1), the first term of row i, enters a sum of up
    // to 13 dependent additions that gives z(i).  Two things keep that chain short without
    // changing a single rounding.  z(i-1) is carried in a register instead of being read
    // back from memory right after its store.  And the sum starts from its first term
    // instead of from 0 + first term: the two partial sums agree except that the former can
    // be -0 where the latter is +0, so a zero sum is taken as +0 before it is subtracted.
    double zprev = 0.0;  // z(i-1) as row i reads it, before its division
    for (int i = 1; i <= neq; ++i) {
        prefetch_ahead(fv, ja, ia[i], p.nvec);
        const int k1 = ia[i] + 1;
        const int kend = ia[i + 1];
        double zi = zv[i];
        if (k1 < kend) {
            const int j1 = ja[k1];
            double sum = fv[k1] * (j1 == i - 1 ? zprev : zv[j1]);
            for (int k = k1 + 1; k < kend; ++k) sum += fv[k] * zv[ja[k]];
            if (sum == 0.0) [[unlikely]]
                sum = 0.0;
            zi -= sum;
            zv[i] = zi;
        }
        zprev = zi;
        const int m = i - reach;
        if (m >= 1) zv[m] /= fv[ia[m]];
    }
    for (int m = std::max(neq - reach + 1, 1); m <= neq; ++m) zv[m] /= fv[ia[m]];

    // L^T, by the columns of L^T = the rows of L, from the last.  Row i's update of z(i-1)
    // is the last that z(i-1) receives, so the next row takes it from a register.
    double zcarry = 0.0;
    int jcarry = 0;
    for (int i = neq; i >= 1; --i) {
        prefetch_behind(fv, ja, ia[i]);
        const double zi = (jcarry == i) ? zcarry : zv[i];
        const int k1 = ia[i] + 1;
        const int kend = ia[i + 1];
        jcarry = 0;
        if (k1 == kend) continue;
        const int j1 = ja[k1];
        zcarry = zv[j1] - zi * fv[k1];
        zv[j1] = zcarry;
        jcarry = j1;
        // The columns of a row are distinct, so its updates may go in pairs.
        const double_pair zi2 = splat(zi);
        int k = k1 + 1;
        for (; k + 1 < kend; k += 2) {
            const double_pair q = zi2 * load_pair(fv + k);
            const int_pair j = load_pair(ja + k);
            zv[j[0]] -= q[0];
            zv[j[1]] -= q[1];
        }
        if (k < kend) zv[ja[k]] -= zi * fv[k];
    }
}

void pcg(std::span<const double> a, const LowerPattern& p, std::span<const double> b,
         std::span<double> x, std::span<double> work, int worklen, int kstart, const Listing& lst,
         int* steps)
{
    const int neq = p.neq;
    const int nnz = p.ia[neq + 1] - 1;
    if (3LL * neq + nnz > worklen) {
        lst.line(" pcg mit icc erwartet ein hilfsfeld der laenge" + fmt_i(3LL * neq + nnz, 6) +
                 " hilfsspeicher ist zu klein!");
        return;
    }
    assert(work.size() >= 3 * std::size_t(neq) + nnz + 1);  // one-based slices

    // Slices, each one-based: f[k] = work[k], r[i] = work[nnz + i], z, p behind.
    const std::span<double> fs = work.subspan(0, std::size_t(nnz) + 1);
    const std::span<double> rs = work.subspan(nnz, std::size_t(neq) + 1);
    const std::span<double> zs = work.subspan(std::size_t(nnz) + neq, std::size_t(neq) + 1);
    const std::span<double> ps = work.subspan(std::size_t(nnz) + 2 * std::size_t(neq), std::size_t(neq) + 1);
    double* fv = fs.data();  // factor
    double* r = rs.data();   // residual A x - b
    double* z = zs.data();   // preconditioned residual, then A p
    double* pv = ps.data();  // search direction
    const double* av = a.data();
    const double* bv = b.data();
    double* xv = x.data();
    const int* ia = p.ia.data();

    start_residual(p, a, b, x, rs, kstart, true);
    for (int i = 1; i <= neq; ++i) {
        if (av[ia[i]] <= 0.0)
            stop_run(lst, {" pcg wird eine matrix mit" + fmt_i(i, 6) +
                           "-tem diagonalelement < 0 vorgelegt!"});
    }
    double bb = 0.0;
    for (int i = 1; i <= neq; ++i) {
        z[i] = r[i];
        pv[i] = 0.0;
        bb += bv[i] * bv[i];
    }
    if (kstart <= 1) {
        for (int k = 1; k <= nnz; ++k) fv[k] = av[k];
        ilu(fs, p, lst);
    }
    const int reach = pattern_reach(p);

    const double acc = bb * cacc;
    double beta = 0.0, betamax = 0.0;
    double rr = 0.0, rr0 = 0.0, rho = 0.0, rho0 = 0.0, rho_prev = 0.0;
    int it = 1;
    for (; it <= maxit; ++it) {
        ilu_solve(fs, p, reach, zs);
        rho = 0.0;
        rr = 0.0;
        for (int i = 1; i <= neq; ++i) {
            rho += r[i] * z[i];
            rr += r[i] * r[i];
        }
        if (it == 1) {
            rr0 = rr;
            rho0 = rho;
        } else {
            beta = rho / rho_prev;
        }
        betamax = std::max(betamax, beta);

        for (int i = 1; i <= neq; ++i) pv[i] = beta * pv[i] - z[i];
        matvec_lower_cleared(p, a, ps, zs);
        double pap = 0.0;
        for (int i = 1; i <= neq; ++i) pap += pv[i] * z[i];

        // The step test comes first; the definiteness failure ends the loop, not the run.
        if (pap < rho * cstep) {
            lst.line(" schrittweite zu gross!");
            break;
        }
        if (pap <= 0.0) {
            lst.line(" die gegebene matrix erweist sich in schritt" + fmt_i(it, 4) + " als nicht definit!");
            break;
        }

        const double alpha = rho / pap;
        for (int i = 1; i <= neq; ++i) {
            r[i] += alpha * z[i];
            xv[i] += alpha * pv[i];
            z[i] = r[i];
        }

        // rr is this step's residual before its update: an exact step is seen one step late.
        if (rr <= std::min(rr0 * cred, acc) || rr <= bb * cfloor) {
            if (steps) *steps = it;
            return;
        }
        if (rho <= rho0 * cfloor) {
            lst.line(" genauigkeit in der metrik der vorkonditionierung schon gut");
            break;
        }
        if (2 * it >= maxit && rr >= 0.25 * rr0) {
            lst.line(" nach halber max. schrittzahl noch keine echte reduktion!");
            break;
        }
        rho_prev = rho;
    }
    it = std::min(it, maxit);  // all steps run: the report names the last one
    if (steps) *steps = it;

    if (rr > acc) {
        lst.line(" pcg erzielt in" + fmt_i(it, 4) + " schritten");
        lst.line(" nur eine relative genauigkeit im defekt von" + fmt_e(std::sqrt(rr / bb), 11, 2));
        if (betamax > 20.0)
            lst.line(" werte von beta bis" + fmt_e(betamax, 11, 3) +
                     " weisen auf eine instabile vorkonditionierung hin");
    }
}

}  // namespace icc
