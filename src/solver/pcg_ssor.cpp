#include "solver/pcg_ssor.hpp"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <string>

#include "base/stop.hpp"
#include "output/fortran_format.hpp"
#include "solver/lower_csr.hpp"
#include "solver/stream_ahead.hpp"

namespace ssor {
namespace {
// Thresholds: single-precision values widened to double, some squared, kept exactly.
constexpr double ctiny = 1e-20;
constexpr double cacc = 4.00000009348878e-14;    // (2e-7 in single precision)^2
constexpr double cfloor = 3.99999999244028e-18;  // about (2e-9)^2
constexpr double cmetric = 3.99999999244028e-19;
constexpr double cred = 0.00999999977648258;     // 0.01 in single precision
constexpr double cstep = 9.99999997475243e-07;   // 1e-6 in single precision
constexpr double relax = 1.3;                    // scales the inverse pivots only
constexpr int maxit = 500;

}  // namespace

void precg(std::span<const double> a, const LowerPattern& p, std::span<double> d,
           std::span<double> e, std::span<int> iblk, int maxblk, int& nblk,
           const Console& con, const Listing& lst)
{
    const int neq = p.neq;
    const int* ia = p.ia.data();
    const int* ja = p.ja.data();
    const double* av = a.data();
    double* dv = d.data();
    double* ev = e.data();
    int* ib = iblk.data();

    // A block is a maximal run of equations each coupled to its predecessor and to nothing
    // else inside the run.  Columns descend within a row, so two entries tell it.  The LDL^T
    // of each tridiagonal block follows in the same pass: d becomes the relaxed inverse
    // pivots and e the L factors, the unrelaxed inverse carried to the next row (the pivot
    // recurrence is a chain of divisions; a pass of its own would only add the reloads).
    nblk = 0;
    int bs = 0;        // first equation of the open block
    double inv = 0.0;  // inverse pivot of the row before, unrelaxed
    for (int i = 1; i <= neq; ++i) {
        const int k = ia[i];
        const int kend = ia[i + 1];
        const bool opens = kend == k + 1                            // diagonal only
                           || ja[k + 1] != i - 1                    // not coupled to i-1
                           || (k + 2 < kend && ja[k + 2] >= bs);   // coupled inside the block
        if (opens) {
            ++nblk;
            ib[nblk] = i;
            bs = i;
            if (nblk >= maxblk) {
                const std::string msg = " cgtriadapt: dimension fuer zahl der bloecke zu klein!";
                con.line(msg);
                stop_run(lst, {msg});
            }
            ev[i] = (k + 1 < kend) ? av[k + 1] : 0.0;  // a block's first e is never used
            inv = 1.0 / av[k];
        } else {
            const double c = av[k + 1];
            const double t = c * inv;
            ev[i] = t;
            inv = 1.0 / (av[k] - c * t);
        }
        dv[i] = relax * inv;
    }
    ib[nblk + 1] = neq + 1;
}

void cgtriadapt(std::span<const double> a, const LowerPattern& p, std::span<const double> r,
                std::span<double> z, std::span<double> w, std::span<const double> d,
                std::span<const double> e, std::span<const int> iblk, int nblk)
{
    const int* ia = p.ia.data();
    const int* ja = p.ja.data();
    const double* av = a.data();
    const double* rv = r.data();
    double* zv = z.data();
    double* wv = w.data();
    const double* dv = d.data();
    const double* ev = e.data();
    const int* ib = iblk.data();

    // Each block [f, l] is solved as z := L^-T D L^-1 w with the unit lower factors e and the
    // relaxed inverse pivots d of precg.  Both recurrences carry the previous z in a
    // register (read back from memory, every link of the chain would wait on a store), and
    // each runs inside the row loop whose results it takes or gives, so that the short chain
    // of the block hides behind the row gathers and scatters.  Every value is still formed
    // from the same operands in the same order.

    // Forward: w(i) = r(i) - (strictly lower part outside the block) z, eliminated at once;
    // row i > f skips its second entry, the coupling to i-1 that the block solve holds.
    for (int blk = 1; blk <= nblk; ++blk) {
        const int f = ib[blk];
        const int l = ib[blk + 1] - 1;
        double zc = 0.0;
        for (int i = f; i <= l; ++i) {
            prefetch_ahead(av, ja, ia[i], p.nvec);
            double sum = 0.0;
            for (int k = ia[i] + (i > f ? 2 : 1); k < ia[i + 1]; ++k) sum += av[k] * zv[ja[k]];
            const double wi = rv[i] - sum;
            wv[i] = wi;
            zc = (i > f) ? wi - ev[i] * zc : wi;
            zv[i] = zc;
        }
        zc = zc * dv[l];
        zv[l] = zc;
        for (int i = l - 1; i >= f; --i) {
            zc = zv[i] * dv[i] - ev[i + 1] * zc;
            zv[i] = zc;
        }
    }

    // Backward: the block on the present w, then its upper-part coupling (the mirrored lower
    // entries of its rows) leaves the right-hand sides of the earlier blocks, row by row as
    // the back substitution gives z(i).
    for (int blk = nblk; blk >= 1; --blk) {
        const int f = ib[blk];
        const int l = ib[blk + 1] - 1;
        double zc = wv[f];
        zv[f] = zc;
        for (int i = f + 1; i <= l; ++i) {
            zc = wv[i] - ev[i] * zc;
            zv[i] = zc;
        }
        for (int i = l; i >= f; --i) {
            prefetch_behind(av, ja, ia[i]);
            zc = (i < l) ? zv[i] * dv[i] - ev[i + 1] * zc : zc * dv[l];
            zv[i] = zc;
            for (int k = ia[i] + (i > f ? 2 : 1); k < ia[i + 1]; ++k) wv[ja[k]] -= av[k] * zc;
        }
    }
}

void pcg(std::span<const double> a, const LowerPattern& p, std::span<const double> b,
         std::span<double> x, std::span<double> work, int worklen, std::span<int> iblk,
         int maxblk, int kstart, const Console& con, const Listing& lst, int* steps)
{
    const int neq = p.neq;
    if (6LL * neq > worklen) {
        con.line(" pcg with ssor expects additonal storage array of length " + fmt_i(6LL * neq, 6) +
                 " additional storage array too small! ");
        return;
    }
    assert(work.size() >= 6 * std::size_t(neq) + 1);  // one-based slices

    // Six slices of the work array, each one-based: r[i] = work[i], s[i] = work[neq + i], ...
    auto slice = [&](int n) { return work.subspan(std::size_t(n) * neq, std::size_t(neq) + 1); };
    const std::span<double> rs = slice(0), ss = slice(1), ps = slice(2), ws = slice(3), ds = slice(4),
                            es = slice(5);
    double* r = rs.data();  // residual A x - b
    double* s = ss.data();  // preconditioned residual, then A p
    double* pv = ps.data(); // search direction
    const double* bv = b.data();
    double* xv = x.data();
    const double* av = a.data();
    const int* ia = p.ia.data();

    start_residual(p, a, b, x, rs, kstart, false);
    for (int i = 1; i <= neq; ++i) {
        if (av[ia[i]] <= 0.0) {
            const std::string msg =
                " pcg has been assigned a matrix with" + fmt_i(i, 6) + "-th diagonal entry < 0 !";
            con.line(msg);
            stop_run(lst, {msg});
        }
    }
    double bb = 0.0;
    for (int i = 1; i <= neq; ++i) {
        s[i] = r[i];
        pv[i] = 0.0;
        bb += bv[i] * bv[i];
    }

    if (std::fabs(bb) < ctiny) {
        const std::string msg = "precg has a right-hand side entry = 0 : no solution";
        con.line(msg);
        lst.line(msg);
        return;
    }

    int nblk = 0;
    precg(a, p, ds, es, iblk, maxblk, nblk, con, lst);
    double beta = 0.0;
    const double acc = bb * cacc;

    double rr = 0.0, rr0 = 0.0, rho = 0.0, rho0 = 0.0, rho_prev = 0.0;
    int it = 1;
    for (; it <= maxit; ++it) {
        cgtriadapt(a, p, rs, ss, ws, ds, es, iblk, nblk);
        rho = 0.0;
        rr = 0.0;
        for (int i = 1; i <= neq; ++i) {
            rho += r[i] * s[i];
            rr += r[i] * r[i];
        }
        if (it == 1) {
            rr0 = rr;
            rho0 = rho;
        } else {
            beta = rho / rho_prev;
        }
        if (it == 2) rho0 = rho;  // the metric test of later steps refers to step 2

        for (int i = 1; i <= neq; ++i) pv[i] = beta * pv[i] - s[i];
        matvec_lower(p, a, ps, ss);
        double pap = 0.0;
        for (int i = 1; i <= neq; ++i) pap += pv[i] * s[i];

        if (pap <= 0.0) {
            const std::string msg = " step " + fmt_i(it, 4) + " determined the matrix to be indefinite!";
            con.line(msg);
            stop_run(lst, {msg});
        }
        if (pap < rho * cstep) {
            con.line(" pcg: schrittweite zu gross!");
            break;
        }

        const double alpha = rho / pap;
        for (int i = 1; i <= neq; ++i) {
            r[i] += alpha * s[i];
            xv[i] += alpha * pv[i];
            s[i] = r[i];
        }

        // rr is this step's residual before its update: an exact step is seen one step late.
        if (rr <= std::min(rr0 * cred, acc) || rr <= bb * cfloor) {
            if (steps) *steps = it;
            return;
        }
        if (rho < rho0 * cmetric) {
            if (rho >= -rho0 * cacc)
                con.line(" pcg - warning: matrix already preconditioned - input data is probably wrong");
            else
                con.line(" preconditioning is not good - problem to tough");
            break;
        }
        if (2 * it > maxit && rr > 0.25 * rr0) {
            con.line(" pcg: nach halber max. schrittzahl noch keine echte reduktion!");
            break;
        }
        rho_prev = rho;
    }
    it = std::min(it, maxit);  // all steps run: the report names the last one
    if (steps) *steps = it;

    if (rr >= acc) {
        const std::string rec1 = "pcg used " + fmt_i(it, 4) + " steps";
        const std::string rec2 = "for a relative accuracy of only " + fmt_e(std::sqrt(rr / bb), 11, 2);
        con.line(rec1);
        con.line(rec2);
        lst.line(rec1);
        lst.line(rec2);
    }
}

}  // namespace ssor
