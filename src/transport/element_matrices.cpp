#include "transport/element_matrices.hpp"

#include <cmath>

#include "element/hex.hpp"
#include "solver/entry_pairs.hpp"

namespace {
// One time level's tensor wd D + wa dthalf cw v v.  The weights are halves and wholes, so
// the order of the products does not round.
Tensor level_tensor(const Tensor& D, double vx, double vy, double vz, double wd, double wa, double h, double cw)
{
    return Tensor{wd * D.xx + vx * vx * cw * wa * h, wd * D.yy + vy * vy * cw * wa * h,
                  wd * D.zz + vz * vz * cw * wa * h, wd * D.xy + vx * vy * cw * wa * h,
                  wd * D.xz + vx * vz * cw * wa * h, wd * D.yz + vy * vz * cw * wa * h};
}

// grad N_i . T . grad N_j at one Gauss point
inline double gauss_form(const Tensor& t, const double* nx, const double* ny, const double* nz, int i, int j)
{
    return t.xx * nx[i] * nx[j] + t.yy * ny[i] * ny[j] + t.zz * nz[i] * nz[j] + t.xy * (nx[i] * ny[j] + ny[i] * nx[j]) +
           t.xz * (nx[i] * nz[j] + nz[i] * nx[j]) + t.yz * (ny[i] * nz[j] + nz[i] * ny[j]);
}

}  // namespace

ElementCoefficients element_coefficients(const Tensor& D, double vx, double vy, double vz, const TransportScheme& s,
                                         double cw)
{
    return ElementCoefficients{level_tensor(D, vx, vy, vz, s.wdisp, s.waug, s.dthalf, cw),
                               level_tensor(D, vx, vy, vz, s.wdisp1, s.waug1, s.dthalf, cw), vx * cw, vy * cw,
                               vz * cw};
}

void elmatn(const ElementCoefficients& c, double dtinv, std::span<const double> x, std::span<const double> y,
            std::span<const double> z, const int nodes[9], double amat[9][9], double bmat[9][9], double R,
            const GaussRules& gr)
{
    double nx[9], ny[9], nz[9], n[9];
    for (int i = 1; i <= 8; ++i)
        for (int j = 1; j <= 8; ++j) amat[i][j] = bmat[i][j] = 0.0;
    for (int g = 1; g <= 8; ++g) {
        double xi, eta, zeta, w, det;
        gauss_point_2x2x2(gr, g, xi, eta, zeta, w);
        hex_shape(x, y, z, nodes, xi, eta, zeta, det, nx, ny, nz, n);
        const double wg = det * w;
        for (int i = 1; i <= 8; ++i)
            for (int j = 1; j <= 8; ++j) {
                const double mass = dtinv * n[i] * n[j];
                const double sl = gauss_form(c.e, nx, ny, nz, i, j);
                const double sr =
                    gauss_form(c.r, nx, ny, nz, i, j) + n[i] * (c.ax * nx[j] + c.ay * ny[j] + c.az * nz[j]);
                amat[i][j] += wg * (sl / R + mass);
                bmat[i][j] += wg * (sr / R - mass);
            }
    }
}

void elmatd(ElementCoefficients& c, const ElementTables& et, double dtinv, double dx, double dy, double dz, double R,
            double decay, double agefx, double amat[9][9], double bmat[9][9], double cmat[9][9])
{
    const double sx = dy * dz / (36.0 * dx), sy = dx * dz / (36.0 * dy), sz = dx * dy / (36.0 * dz);
    c.e.xx *= sx;
    c.r.xx *= sx;
    c.e.yy *= sy;
    c.r.yy *= sy;
    c.e.zz *= sz;
    c.r.zz *= sz;
    c.e.xy *= dz / 12.0;
    c.r.xy *= dz / 12.0;
    c.e.xz *= dy / 12.0;
    c.r.xz *= dy / 12.0;
    c.e.yz *= dx / 12.0;
    c.r.yz *= dx / 12.0;
    c.ax *= dy * dz / 72.0;
    c.ay *= dx * dz / 72.0;
    c.az *= dx * dy / 72.0;
    const double v216 = dx * dy * dz / 216.0;
    const double t = dtinv * v216, d = decay * v216, g = agefx * v216;
    // two columns at a time, each lane rounded as the scalar formula would round it
    const double_pair exx = splat(c.e.xx), eyy = splat(c.e.yy), ezz = splat(c.e.zz), exy = splat(c.e.xy),
                      exz = splat(c.e.xz), eyz = splat(c.e.yz);
    const double_pair rxx = splat(c.r.xx), ryy = splat(c.r.yy), rzz = splat(c.r.zz), rxy = splat(c.r.xy),
                      rxz = splat(c.r.xz), ryz = splat(c.r.yz);
    const double_pair ax = splat(c.ax), ay = splat(c.ay), az = splat(c.az);
    const double_pair r2 = splat(R), t2 = splat(t), d2 = splat(d), g2 = splat(g);
    for (int i = 1; i <= 8; ++i)
        for (int j = 1; j <= 7; j += 2) {
            const double_pair sxx = load_pair(&et.sxx[i][j]), syy = load_pair(&et.syy[i][j]);
            const double_pair szz = load_pair(&et.szz[i][j]), sxy = load_pair(&et.sxy[i][j]);
            const double_pair sxz = load_pair(&et.sxz[i][j]), syz = load_pair(&et.syz[i][j]);
            const double_pair m = load_pair(&et.amcons[i][j]);
            const double_pair sl = exx * sxx + eyy * syy + ezz * szz + exy * sxy + exz * sxz + eyz * syz;
            const double_pair sr = rxx * sxx + ryy * syy + rzz * szz + rxy * sxy + rxz * sxz + ryz * syz +
                                   ax * load_pair(&et.cx[i][j]) + ay * load_pair(&et.cy[i][j]) +
                                   az * load_pair(&et.cz[i][j]);
            store_pair(&amat[i][j], sl / r2 + t2 * m + d2 * m);
            store_pair(&bmat[i][j], sr / r2 - t2 * m);
            store_pair(&cmat[i][j], g2 * load_pair(&et.amlump[i][j]));
        }
}

void line_dispersion(double Df, double vf, double wf, double len, const TransportScheme& s, LineTerms& t)
{
    t.dl = (s.wdisp * Df + s.waug * vf * vf * s.dthalf) * wf / len;
    t.dr = (s.wdisp1 * Df + s.waug1 * vf * vf * s.dthalf) * wf / len;
}

void line_fracture_matrices(const LineTerms& t, double R, double amat[3][3], double bmat[3][3])
{
    amat[1][1] = amat[2][2] = t.dl / R + t.m + t.lam;
    amat[1][2] = amat[2][1] = -t.dl / R + t.m + t.lam;
    bmat[1][1] = (t.dr - t.adv) / R - t.m;
    bmat[2][2] = (t.dr + t.adv) / R - t.m;
    bmat[1][2] = -(t.dr - t.adv) / R;
    bmat[2][1] = -(t.dr + t.adv) / R;
}

void plane_fracture_matrices(const PlaneFracture& pf, const PlaneCoefficients& pc, const TransportScheme& s,
                             const ElementTables& et, double amat[5][5], double bmat[5][5], double cmat[5][5])
{
    const double u = pf.vx2d, v = pf.vy2d, wf = pf.wf, al = pc.al, at = pc.at, cap = pc.cap, R = pc.R;
    const double vm = std::sqrt(u * u + v * v);
    double d11 = pc.dd, d22 = pc.dd, d12 = 0.0;  // a still plane: diffusion alone
    if (vm != 0.0) {
        d11 = (al * u * u + at * v * v) / vm + pc.dd;
        d22 = (al * v * v + at * u * u) / vm + pc.dd;
        d12 = (al - at) * u * v / vm;
    }
    const double e11 = (s.wdisp * d11 + s.waug * s.dthalf * u * u) * cap * wf * pf.asp / 6.0;
    const double e22 = (s.wdisp * d22 + s.waug * s.dthalf * v * v) * cap * wf / (6.0 * pf.asp);
    const double e12 = (s.wdisp * d12 + s.waug * s.dthalf * u * v) * cap * wf / 2.0;
    const double r11 = (s.wdisp1 * d11 + s.waug1 * s.dthalf * u * u) * cap * wf * pf.asp / 6.0;
    const double r22 = (s.wdisp1 * d22 + s.waug1 * s.dthalf * v * v) * cap * wf / (6.0 * pf.asp);
    const double r12 = (s.wdisp1 * d12 + s.waug1 * s.dthalf * u * v) * cap * wf / 2.0;
    const double a1 = u * pf.l2 * cap * wf / 12.0, a2 = v * pf.l1 * cap * wf / 12.0;
    const double m = pc.storage * s.dtinv * wf * pf.area / (36.0 * R);
    const double lam = pc.decay * wf * pf.area / 36.0;
    const double g = pc.agefx * wf * pf.area / 36.0;
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 4; ++j) {
            amat[i][j] = (e11 * et.fxx[i][j] + e22 * et.fyy[i][j] + e12 * et.fxy[i][j]) / R + m * et.fm[i][j] +
                         lam * et.fm[i][j];
            bmat[i][j] = (r11 * et.fxx[i][j] + r22 * et.fyy[i][j] + r12 * et.fxy[i][j] + a1 * et.fcx[i][j] +
                          a2 * et.fcy[i][j]) / R - m * et.fm[i][j];
            cmat[i][j] = g * et.fm[i][j];
        }
}

void scatter_transport(int n, const int* nodes, const double* amat, const double* bmat, const double* cmat, int ld,
                       TransportTarget& tt)
{
    const int* idir = tt.idir.data();
    const int* ncum = tt.ncum.data();
    const double* w = tt.w.data();
    double* a = tt.t.a.data();
    double* b = tt.t.b.data();
    double* rvec = tt.rvec.data();
    for (int i = 1; i <= n; ++i) {
        const int p = nodes[i];
        if (idir[p] == 1) continue;
        const int m1 = p - ncum[p];
        for (int j = 1; j <= n; ++j) {
            const int q = nodes[j];
            const int ij = i * ld + j;
            if (idir[q] == 1) {
                // a fixed node holds its old value at both levels
                b[m1] -= (amat[ij] + bmat[ij]) * w[q];
                continue;
            }
            const int m2 = q - ncum[q];
            if (m1 <= m2) a[lower_position(tt.t, m1, m2)] += amat[ij];
            if (cmat)
                rvec[m1] = rvec[m1] + cmat[ij] - bmat[ij] * w[q];
            else
                rvec[m1] = rvec[m1] - bmat[ij] * w[q];
        }
    }
}

void scatter_brick(const int nodes[9], const std::uint8_t* slots, const double amat[9][9], const double bmat[9][9],
                   const double cmat[9][9], TransportTarget& tt, Share share)
{
    const int* idir = tt.idir.data();
    const int* ncum = tt.ncum.data();
    const int* ia = tt.t.pat.ia.data();
    const double* w = tt.w.data();
    double* a = tt.t.a.data();
    double* b = tt.t.b.data();
    double* rvec = tt.rvec.data();
    int eq[9];     // equation of each node, 0 if fixed
    double wq[9];  // old-level values
    for (int j = 1; j <= 8; ++j) {
        const int q = nodes[j];
        eq[j] = idir[q] == 1 ? 0 : q - ncum[q];
        wq[j] = w[q];
    }
    // each row's b and rvec gather their terms in a register, in the order of the columns;
    // a row this sweep does not add to is not touched at all (another thread may own it)
    for (int i = 1; i <= 8; ++i) {
        const int m1 = eq[i];
        if (m1 == 0) continue;
        const bool row = adds_to(share, i, i);
        double bm = row ? b[m1] : 0.0, rv = row ? rvec[m1] : 0.0;
        for (int j = 1; j <= 8; ++j) {
            if (eq[j] == 0) {
                bm -= (amat[i][j] + bmat[i][j]) * wq[j];
                continue;
            }
            if (m1 <= eq[j] && adds_to(share, i, j)) a[ia[eq[j]] + pair_slot(slots, i, j) - 1] += amat[i][j];
            rv = rv + cmat[i][j] - bmat[i][j] * wq[j];
        }
        if (row) {
            b[m1] = bm;
            rvec[m1] = rv;
        }
    }
}
