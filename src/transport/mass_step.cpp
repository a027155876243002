#include "transport/mass_step.hpp"

#include "control/limits.hpp"
#include "element/fracture_geometry.hpp"
#include "solver/pcg_icc.hpp"
#include "solver/stream_ahead.hpp"

#include <algorithm>

namespace {

constexpr double tiny_concentration = 1e-50;

// Large grids keep the brick loop waiting on memory: the rows of a that an element adds
// to lie far apart.  The loads an element needs are started some elements ahead, in
// three stages so that each stage finds the index it depends on in cache: the node
// data, then the row starts, then the rows, right-hand sides and rvec.
constexpr int ahead_rows = 4, ahead_starts = 8, ahead_nodes = 12;  // elements

void prefetch_brick(const Grid& g, const FieldIndex& fi, const SolverWork& w, const std::vector<double>& t20, int e)
{
    const int ne = g.net;
    const int* int8 = g.int8.data();
    const int* idir = fi.idir.data();
    const int* ncum = fi.ncum.data();
    const int* ia = fi.pat.ia.data();
    if (e + ahead_nodes <= ne) {
        const int* nd = int8 + (std::size_t)(e + ahead_nodes - 1) * 8;
        for (int i = 1; i <= 8; ++i) {
            prefetch(idir + nd[i]);
            prefetch(ncum + nd[i]);
            prefetch(t20.data() + nd[i]);
        }
    }
    if (e + ahead_starts <= ne) {
        const int* nd = int8 + (std::size_t)(e + ahead_starts - 1) * 8;
        for (int i = 1; i <= 8; ++i)
            if (idir[nd[i]] != 1) prefetch(ia + nd[i] - ncum[nd[i]]);
    }
    if (e + ahead_rows <= ne) {
        const int* nd = int8 + (std::size_t)(e + ahead_rows - 1) * 8;
        for (int i = 1; i <= 8; ++i) {
            if (idir[nd[i]] == 1) continue;
            const int m = nd[i] - ncum[nd[i]];
            const int k = ia[m], last = ia[m + 1] - 1;  // a row holds at most 14 entries
            prefetch(w.a.data() + k);
            prefetch(w.a.data() + std::min(k + 7, last));
            prefetch(w.a.data() + last);
            prefetch(w.b.data() + m);
            prefetch(w.rvec.data() + m);
        }
    }
}

// The fracture elements: lines along brick edges, planes on brick faces, their nodes
// taken from the host brick of the flow grid and mapped to the transport grid.
void assemble_fractures(const Grid& g, const Media& m, const Fractures& fr, const Velocities& v,
                        const ElementTables& et, const MassParams& mp, double R, TransportTarget& tt)
{
    // a Lichtner run leaves the fractures without longitudinal dispersivity
    const double al = mp.disp.idisp == 0 ? mp.disp.al : 0.0;
    double a2[3][3], b2[3][3], a4[5][5], b4[5][5], c4[5][5];
    for (int l = 1; l <= fr.nfrac; ++l) {
        const int host = fr.ifracl[l];
        // the porosity of the first element scales every fracture
        const double wf = fr.xarea[l] / m.por[1];
        if (fr.ifdim[l] == 1) {
            int fn[3] = {0, 0, 0};
            double len = 0;
            edgegeo(fr.lvert, fn, g.in, l, host, len, g.dxe, g.dye, g.dze);
            if (fn[1] == 0) continue;
            const int tn[3] = {0, g.nmap[fn[1]], g.nmap[fn[2]]};
            const double Df = al * v.vlin[l] + mp.dd;
            line_fracture_matrices(Df, v.vlin[l], wf, len, R, mp.decay, mp.scheme, a2, b2);
            scatter_transport(2, tn, &a2[0][0], &b2[0][0], nullptr, 3, tt);
        } else if (fr.ifdim[l] == 2) {
            int fn[5] = {0, 0, 0, 0, 0};
            PlaneFracture pf;
            facegeo(fr.lvert, fn, g.in, l, host, pf.l1, pf.l2, g.dxe, g.dye, g.dze, pf.asp, pf.area);
            if (fn[1] == 0) continue;
            int tn[5] = {0};
            for (int k = 1; k <= 4; ++k) tn[k] = g.nmap[fn[k]];
            pf.vx2d = v.vx2d[l];
            pf.vy2d = v.vy2d[l];
            pf.wf = wf;
            // planes on the y faces (codes 3 and 4) take the vertical transverse value
            const double at = (fr.lvert[l] == 3 || fr.lvert[l] == 4) ? mp.disp.atv : mp.disp.ath;
            plane_fracture_matrices(pf, al, at, mp.dd, R, mp.decay, mp.agefx, mp.scheme, et, a4, b4, c4);
            scatter_transport(4, tn, &a4[0][0], &b4[0][0], &c4[0][0], 5, tt);
        }
    }
}

}  // namespace

void assemble_mass(const Grid& g, Media& m, const Fractures& fr, const Velocities& v, const ElementTables& et,
                   const MassParams& mp, const MassSources& src, const FieldIndex& mass, const Fields& f,
                   SolverWork& w, double cmat[9][9])
{
    const LowerPattern& pat = mass.pat;
    const int nnt = g.nnt;
    for (int i = 1; i <= nnt; ++i) w.rvec[i] = 0.0;
    fill_rhs(nnt, mass.idir, mass.ncum, mass.qnode, w.b);
    clear_values(pat, w.a);

    TransportTarget tt{ScatterTarget{pat, w.a, w.b, nb_transport}, mass.idir, mass.ncum, f.t20, w.rvec};
    const TransportScheme& s = mp.scheme;
    int nodes[9];
    double amat[9][9], bmat[9][9];
    double R = 0.0;  // the fractures take the R of the last element
    const bool fast = mass.epos.ne == g.net && g.net > 0;  // slots found in advance
    for (int e = 1; e <= g.net; ++e) {
        if (fast) prefetch_brick(g, mass, w, f.t20, e);
        for (int i = 1; i <= 8; ++i) nodes[i] = node_at(g.int8, e, i);
        R = (mp.ret + mp.ret) / 2.0;
        m.co0[e] = R;
        m.co1[e] = R;
        const Tensor D = dispersion_tensor(mp.disp, v.vx[e], v.vy[e], v.vz[e], mp.dd);
        ElementCoefficients c = element_coefficients(D, v.vx[e], v.vy[e], v.vz[e], s);
        if (mp.kint == 1) {
            elmatn(c, s.dtinv, g.x, g.y, g.z, nodes, amat, bmat, R, et.gauss);
        } else {
            elmatd(c, et, s.dtinv, g.dxe[e], g.dye[e], g.dze[e], R, mp.decay, mp.agefx, amat, bmat, cmat);
        }
        if (fast)
            scatter_brick(nodes, &mass.epos.k[(std::size_t)(e - 1) * 64], amat, bmat, cmat, tt);
        else
            scatter_transport(8, nodes, &amat[0][0], &bmat[0][0], &cmat[0][0], 9, tt);
    }
    if (fast) tt.t.k = mass.epos.last_k;
    assemble_fractures(g, m, fr, v, et, mp, R, tt);

    // injected water dilutes the node towards its concentration: a third-type term; a
    // withdrawal takes the node's own water and needs none.  At a fixed node the slot
    // n - ncum(n) is the equation of the free node below it, as the numbering gives.
    const int* ia = pat.ia.data();
    for (int n = 1; n <= nnt; ++n) {
        if (!(src.qsrc[n] > 0)) continue;
        const double sq = src.qsrc[n] / m.por[1];
        const int k = n - mass.ncum[n];
        if (k < 1) continue;  // every node up to n is fixed: no equation to take it
        w.b[k] += src.csrc[n] * sq;
        w.a[ia[k]] += sq;
    }
    for (int k = 1; k <= mass.neq; ++k) w.b[k] += w.rvec[k];
}

void mtran(const Grid& g, Media& m, const Fractures& fr, const Velocities& v, const ElementTables& et,
           const MassParams& mp, const MassSources& src, const FieldIndex& mass, Fields& f, SolverWork& w,
           double cmat[9][9], const Listing& lst, int* steps)
{
    assemble_mass(g, m, fr, v, et, mp, src, mass, f, w, cmat);
    const LowerPattern& pat = mass.pat;
    const int nnt = g.nnt;
    // t2 itself, in node numbering, is the start vector
    icc::pcg(w.a, pat, w.b, f.t2, w.work, max_work, 1, lst, steps);

    const int* idir = mass.idir.data();
    const int* ncum = mass.ncum.data();
    double* t2 = f.t2.data();
    for (int i = nnt; i >= 1; --i) {
        if (idir[i] == 1) {
            t2[i] = mass.fc[i];
            continue;
        }
        const int k = i - ncum[i];
        // concentrations below the floor (negative ones too) are cleared; ages are not
        if (mp.lmass && t2[k] < tiny_concentration) t2[k] = 0.0;
        t2[i] = t2[k];
    }
}
