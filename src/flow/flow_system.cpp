#include "flow/flow_system.hpp"

#include "base/limits.hpp"
#include "element/fracture_geometry.hpp"
#include "element/hex.hpp"
#include "element/layers.hpp"
#include "solver/lower_csr.hpp"
#include "solver/pcg_ssor.hpp"
#include "solver/stream_ahead.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

struct Assembly {
    const FieldIndex& flow;
    const std::vector<double>& u0;
    ScatterTarget t;
    std::vector<double>& bs;
};

// Adds ek + es of an element with `n` nodes to the matrix; fixed neighbours are taken out
// with ek alone, and the diagonal gathers the old-level storage and the buoyancy drive
// rhs[i] into bs.  `slots`, when given, are the element's positions found in advance
// (a brick's 64, see ElementPositions): the same additions, without the searches.
// `share` picks the destinations a brick adds to on this sweep (see for_each_element_in_order).
template <int N>
void scatter_flow(const int nodes[N + 1], const double ek[N + 1][N + 1], const double es[N + 1][N + 1],
                  const double rhs[N + 1], Assembly& as, const std::uint8_t* slots = nullptr,
                  Share share = Share::all)
{
    const int* ia = as.flow.pat.ia.data();
    const int* idir = as.flow.idir.data();
    const int* ncum = as.flow.ncum.data();
    const double* fc = as.flow.fc.data();
    for (int i = 1; i <= N; ++i) {
        const int p = nodes[i];
        if (idir[p] == 1) continue;
        const int m1 = p - ncum[p];
        for (int j = 1; j <= N; ++j) {
            const int q = nodes[j];
            if (idir[q] == 1) {
                if (adds_to(share, i, i)) as.t.b[m1] -= ek[i][j] * fc[q];
                continue;
            }
            const int m2 = q - ncum[q];
            if (m2 < m1 || !adds_to(share, i, j)) continue;
            const int pos = slots ? ia[m2] + slots[(i - 1) * 8 + j - 1] - 1 : lower_position(as.t, m1, m2);
            as.t.a[pos] += ek[i][j] + es[i][j];
            if (i == j) as.bs[m1] = es[i][i] * as.u0[p] + as.bs[m1] - rhs[i];
        }
    }
}

double mean_at(const std::vector<double>& v, const std::vector<int>& nmap, const int* nodes, int n)
{
    double s = 0;
    for (int i = 1; i <= n; ++i) s += v[nmap[nodes[i]]];
    return s / n;
}

}  // namespace

void assemble_flow(const Grid& g, const Media& m, const Fractures& fr, const ElementTables& et, const FlowParams& fp,
                   const std::vector<double>& qsrc, const FieldIndex& flow, const Fields& f, SolverWork& w,
                   std::vector<double>& bs)
{
    const LowerPattern& pat = flow.pat;
    const int neq = flow.neq;
    for (int k = 1; k <= neq; ++k) bs[k] = 0.0;
    std::fill(w.iblk.begin(), w.iblk.end(), 0);
    fill_rhs(g.nn, flow.idir, flow.ncum, flow.qnode, w.b);
    clear_values(pat, w.a);

    Assembly as{flow, f.u0, ScatterTarget{pat, w.a, w.b, g.nb}, bs};
    const std::vector<int>& nmap = g.nmap;
    const FreezeParams& pm = fp.medium;
    const FreezeParams& pf = fp.fracture;
    const bool fast = flow.epos.ne == g.ne && g.ne > 0;  // slots found in advance
    // the temperatures and concentrations are read by transport node: the same numbers
    // in a saturated grid, where fetching them ahead pays
    const ElementStreams streams{g.in.data(), g.ne,        flow.idir.data(), flow.ncum.data(), pat.ia.data(),
                                 w.a.data(),  w.b.data(), bs.data(),
                                 {f.u0.data(), flow.fc.data(), f.t1.data(), f.t2.data()}};
    auto element = [&](int l, Share share) {
        int nodes[9], tnodes[9];
        double ek[9][9], es[9][9], rhs[9], gv[9];
        if (fp.kint != 0 && fp.kint != 1) {  // no element matrices: the element adds zeros
            std::fill(&ek[0][0], &ek[0][0] + 81, 0.0);
            std::fill(&es[0][0], &es[0][0] + 81, 0.0);
            std::fill(gv, gv + 9, 0.0);
        }
        if (fast) prefetch_element(streams, l);
        for (int a = 1; a <= 8; ++a) {
            nodes[a] = node_at(g.in, l, a);
            tnodes[a] = nmap[nodes[a]];
        }
        // Wu as the mean of the nodal values, not at the mean temperature
        double wu = 0, tbar = 0, csum = 0;
        for (int a = 1; a <= 8; ++a) {
            wu += Wu(f.t1[tnodes[a]], pm);
            tbar += f.t1[tnodes[a]];
            csum += f.t2[tnodes[a]];
        }
        wu /= 8.0;
        tbar /= 8.0;
        double kr = ::kr(wu, pm.p, pm.omega, m.por[l], pm.modelkr);
        if (fp.lkr1top && l > g.ne - g.nexy) kr = 1.0;
        const double rv = fp.lheat ? flow_viscosity(tbar) : 1.0;
        const double kx = m.ckx[l] / rv * kr, ky = m.cky[l] / rv * kr, kz = m.ckz[l] / rv * kr;
        const double st = m.ss * wu;
        double r = fp.lheat ? flow_buoyancy_T(tbar) : 0.0;
        if (fp.lmass) r = r + 0.125 * csum * fp.gammac;

        if (fp.kint == 0) {
            const double dx = g.dxe[l], dy = g.dye[l], dz = g.dze[l];
            const double cx = kx * dy * dz / dx / 36, cy = ky * dx * dz / dy / 36, cz = kz * dx * dy / dz / 36;
            const double lump = 27 * (st * fp.dtinv * dx * dy * dz) / 216;
            for (int i = 1; i <= 8; ++i) {
                for (int j = 1; j <= 8; ++j) {
                    ek[i][j] = cx * et.sxx[i][j] + cy * et.syy[i][j] + cz * et.szz[i][j];
                    es[i][j] = 0.0;
                }
                es[i][i] = lump;
                gv[i] = et.sz[i] * dx * dy * 0.25;
            }
        } else if (fp.kint == 1) {
            flow_element_gauss(kx, ky, kz, g.x, g.y, g.z, tnodes, ek, es, st, fp.dtinv, gv, et.gauss);
        }
        for (int i = 1; i <= 8; ++i) rhs[i] = gv[i] * kz * r;
        scatter_flow<8>(nodes, ek, es, rhs, as, fast ? &flow.epos.k[(std::size_t)(l - 1) * 64] : nullptr, share);
    };
    if (fast) {
        for_each_element_in_order(g.ne, g.nexy, element);
    } else {
        for (int l = 1; l <= g.ne; ++l) element(l, Share::all);  // the searches carry their state along
    }
    if (fast) as.t.k = flow.epos.last_k;

    for (int l = 1; l <= fr.nfrac; ++l) {
        const int host = fr.ifracl[l];
        if (fr.ifdim[l] == 1) {
            int fn[3] = {0, 0, 0};
            double len = 0;
            edgegeo(fr.lvert, fn, g.in, l, host, len, g.dxe, g.dye, g.dze);
            if (fn[1] == 0) continue;
            const double tbar = mean_at(f.t1, nmap, fn, 2);
            const double wu = Wu(tbar, pf);
            // the line takes the medium's kr model with the fracture's parameters
            const double kr = ::kr(wu, pf.p, pf.omega, m.por[host], pm.modelkr);
            const double rv = fp.lheat ? flow_viscosity(tbar) : 1.0;
            const double k = kr * fr.xarea[l] * fr.ck[l] / (rv * len);
            double e2[3][3] = {{0, 0, 0}, {0, k, -k}, {0, -k, k}};
            double s2[3][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};
            s2[1][1] = s2[2][2] = fp.dtinv * 0.5 * m.ss * fr.xarea[l] * len;
            const bool vertical = fr.lvert[l] == 1 || fr.lvert[l] == 4;
            double dterm = fp.lheat ? flow_buoyancy_T(tbar) : 0.0;
            if (fp.lmass) dterm += 0.5 * (f.t2[nmap[fn[1]]] + f.t2[nmap[fn[2]]]) * fp.gammac;
            const double drive = fr.ck[l] * kr * dterm / rv;
            double r2[3] = {0, vertical ? -fr.xarea[l] * drive : 0.0, vertical ? fr.xarea[l] * drive : 0.0};
            scatter_flow<2>(fn, e2, s2, r2, as);
        } else if (fr.ifdim[l] == 2) {
            int fn[5] = {0, 0, 0, 0, 0};
            double d1 = 0, d2 = 0, ratio = 0, area = 0;
            facegeo(fr.lvert, fn, g.in, l, host, d1, d2, g.dxe, g.dye, g.dze, ratio, area);
            if (fn[1] == 0) continue;
            const double tbar = mean_at(f.t1, nmap, fn, 4);
            const double cbar = mean_at(f.t2, nmap, fn, 4);
            const double wu = Wu(tbar, pf);
            const double kr = ::kr(wu, pf.p, pf.omega, m.por[host], pf.modelkr);
            const double rv = fp.lheat ? flow_viscosity(tbar) : 1.0;
            const double k = kr * fr.xarea[l] * fr.ck[l] / rv;
            double e4[5][5], s4[5][5], r4[5];
            const double mass = fp.dtinv * area * m.ss * fr.xarea[l] / 36;
            for (int i = 1; i <= 4; ++i)
                for (int j = 1; j <= 4; ++j) {
                    e4[i][j] = et.fxx[i][j] * k * ratio / 6 + et.fyy[i][j] * k / (6 * ratio);
                    s4[i][j] = et.fm[i][j] * mass;
                }
            const bool horizontal = fr.lvert[l] == 5 || fr.lvert[l] == 6;
            double dterm = fp.lheat ? flow_buoyancy_T(tbar) : 0.0;
            if (fp.lmass) dterm += cbar * fp.gammac;
            const double drive = fr.ck[l] * kr * dterm / rv;
            const double side[5] = {0, -1, -1, 1, 1};
            for (int i = 1; i <= 4; ++i) r4[i] = horizontal ? 0.0 : side[i] * fr.xarea[l] * 0.5 * d1 * drive;
            scatter_flow<4>(fn, e4, s4, r4, as);
        }
    }

    for (int i = 1; i <= g.nn; ++i) {
        if (flow.idir[i] == 1) continue;
        const int mq = i - flow.ncum[i];
        const int t = nmap[i];
        const double q = t < (int)qsrc.size() ? qsrc[t] : 0.0;
        w.b[mq] = q + w.b[mq] + bs[mq];
    }
}

void flow_step(const Grid& g, const Media& m, const Fractures& fr, const ElementTables& et, const FlowParams& fp,
               const std::vector<double>& qsrc, const FieldIndex& flow, Fields& f, SolverWork& w,
               std::vector<double>& bs, const Console& con, const Listing& lst, int* steps)
{
    assemble_flow(g, m, fr, et, fp, qsrc, flow, f, w, bs);
    const LowerPattern& pat = flow.pat;
    // u itself, in node numbering, is the start vector
    ssor::pcg(w.a, pat, w.b, f.u, w.work, max_work, w.iblk, maxblk, 1, con, lst, steps);
    restore_nodal(g.nn, FixedNodes{flow.idir, flow.ncum, flow.fc}, f.u);
}
