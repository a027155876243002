#include "transport/mass_step.hpp"

#include "base/limits.hpp"
#include "transport/system.hpp"

namespace {

// The fracture elements: lines along brick edges, planes on brick faces, each with R of
// the last brick.
void assemble_fractures(const Grid& g, const Media& m, const Fractures& fr, const Velocities& v,
                        const ElementTables& et, const MassParams& mp, double R, TransportTarget& tt)
{
    // a Lichtner run leaves the fractures without longitudinal dispersivity
    const double al = mp.disp.idisp == 0 ? mp.disp.al : 0.0;
    double a2[3][3], b2[3][3], a4[5][5], b4[5][5], c4[5][5];
    int tn[5] = {0, 0, 0, 0, 0};
    for (int l = 1; l <= fr.nfrac; ++l) {
        // the porosity of the first element scales every fracture
        const double wf = fr.xarea[l] / m.por[1];
        if (fr.ifdim[l] == 1) {
            double len = 0;
            if (!line_fracture_nodes(g, fr, l, tn, len)) continue;
            LineTerms t;
            line_dispersion(al * v.vlin[l] + mp.dd, v.vlin[l], wf, len, mp.scheme, t);
            t.adv = v.vlin[l] * wf / 2.0;
            t.m = len * wf * mp.scheme.dtinv / (2.0 * R);
            t.lam = mp.decay * len * wf;
            line_fracture_matrices(t, R, a2, b2);
            scatter_transport(2, tn, &a2[0][0], &b2[0][0], nullptr, 3, tt);
        } else if (fr.ifdim[l] == 2) {
            PlaneFracture pf;
            if (!plane_fracture_nodes(g, fr, v, l, tn, pf)) continue;
            pf.wf = wf;
            // planes on the y faces (codes 3 and 4) take the vertical transverse value
            const double at = (fr.lvert[l] == 3 || fr.lvert[l] == 4) ? mp.disp.atv : mp.disp.ath;
            const PlaneCoefficients pc{al, at, mp.dd, 1.0, 1.0, R, mp.decay, mp.agefx};
            plane_fracture_matrices(pf, pc, mp.scheme, et, a4, b4, c4);
            scatter_transport(4, tn, &a4[0][0], &b4[0][0], &c4[0][0], 5, tt);
        }
    }
}

}  // namespace

void assemble_mass(const Grid& g, Media& m, const Fractures& fr, const Velocities& v, const ElementTables& et,
                   const MassParams& mp, const MassSources& src, const FieldIndex& mass, const Fields& f,
                   SolverWork& w, double cmat[9][9])
{
    start_transport_system(g.nnt, mass, w);
    TransportTarget tt{ScatterTarget{mass.pat, w.a, w.b, nb_transport}, mass.idir, mass.ncum, f.t20, w.rvec};
    const auto terms = [&](int e, const int*) {
        BrickTerms bt;
        bt.R = (mp.ret + mp.ret) / 2.0;
        m.co0[e] = bt.R;
        m.co1[e] = bt.R;
        const Tensor D = dispersion_tensor(mp.disp, v.vx[e], v.vy[e], v.vz[e], mp.dd);
        bt.c = element_coefficients(D, v.vx[e], v.vy[e], v.vz[e], mp.scheme);
        bt.dtinv = mp.scheme.dtinv;
        return bt;
    };
    const double R = assemble_bricks(g, et, mp.kint, mp.decay, mp.agefx, mass, f.t20, f.t20, w, cmat, tt, true, terms);
    assemble_fractures(g, m, fr, v, et, mp, R, tt);

    // injected water dilutes the node towards its concentration: a third-type term; a
    // withdrawal takes the node's own water and needs none
    if (src.qsrc.empty()) return;
    for (int n = 1; n <= g.nnt; ++n)
        if (src.qsrc[n] > 0) add_nodal_term(mass, n, src.qsrc[n] / m.por[1], src.csrc[n], w);
}

void mtran(const Grid& g, Media& m, const Fractures& fr, const Velocities& v, const ElementTables& et,
           const MassParams& mp, const MassSources& src, const FieldIndex& mass, Fields& f, SolverWork& w,
           double cmat[9][9], const Listing& lst, int* steps)
{
    assemble_mass(g, m, fr, v, et, mp, src, mass, f, w, cmat);
    // concentrations below the floor (negative ones too) are cleared; ages are not
    solve_transport_system(g.nnt, mass, w, f.t2, mp.lmass, lst, steps);
}
