#include "transport/heat_step.hpp"

#include "base/limits.hpp"
#include "base/stop.hpp"
#include "output/fortran_format.hpp"
#include "transport/system.hpp"

#include <cmath>

namespace {

// sqrt of a water conductivity of 0.6 W/m/C: the line fractures of v1 use it in place of
// the deck's value
constexpr double sqrt_water_conductivity = 0.7745966692414834;

double mean8(const std::vector<double>& t, const int* nodes)
{
    double s = 0;
    for (int i = 1; i <= 8; ++i) s += t[nodes[i]];
    return s / 8.0;
}

// Unfrozen moisture along the source loop: the linear model keeps its knee from the node
// before, as that loop always has.
double source_wu(double T, const FreezeParams& f, double& knee)
{
    if (f.modelwu != 3) return Wu(T, f);
    double w = 1.0;
    if (T < f.Ts) {
        knee = f.Ts - (1.0 - f.p) / f.q;
        w = f.p + f.q * (T - knee);
    }
    if (T < knee) w = f.p;
    return w;
}

// What a brick holds at both levels, from the element means: temperatures, unfrozen
// fractions, liquid water heat capacities and the water content.
struct BrickLevels {
    double Tn, Ti, wn, wi, cn, ci, th;
};

BrickLevels brick_levels(const Fields& f, const Media& m, const HeatParams& hp, int e, const int* nodes)
{
    BrickLevels b;
    b.Tn = mean8(f.t10, nodes);
    b.Ti = mean8(f.t1i, nodes);
    b.th = m.por[e] * m.sw[e];
    b.wn = Wu(b.Tn, hp.medium);
    b.wi = Wu(b.Ti, hp.medium);
    b.cn = pw(b.Tn, hp.lheat) * hp.tc.cf;
    b.ci = pw(b.Ti, hp.lheat) * hp.tc.cf;
    return b;
}

// The heat capacity of the liquid water of a brick, mean of both levels: what carries
// advection, and what v2 divides its equation by.
double water_capacity(const BrickLevels& b) { return ((b.cn + b.ci) / 2.0) * ((b.wn * b.th + b.wi * b.th) / 2.0); }

// v2 cannot take a brick without liquid water: the first such brick stops the run before
// any is assembled, so that the assembly itself never stops and may share the bricks
// among the threads.
void check_water_capacities(const Grid& g, const Media& m, const HeatParams& hp, const Fields& f, const Listing& lst)
{
    const std::vector<int>& inc = transport_incidence(g);
    for (int e = 1; e <= g.net; ++e) {
        const double den = water_capacity(brick_levels(f, m, hp, e, &inc[(std::size_t)(e - 1) * 8]));
        if (!(den > 0))
            stop_run(lst, {free_items("error, element", e, "holds no liquid water for heat transport (v2)"),
                           "its water capacity (wn*th + wi*th)/2 * (cn + ci)/2 is not above 0:", free_items(den),
                           "check porosity and saturation, or use ksubtr=1", "program stopping ..."});
    }
}

// The bricks: contents of water and ice at both levels from the element means, the
// apparent capacities and the bulk conductivity, then the coefficients of each version.
double assemble_heat_bricks(int version, const Grid& g, Media& m, const Velocities& v, const ElementTables& et,
                            const HeatParams& hp, const FieldIndex& heat, const Fields& f, SolverWork& w,
                            double cmat[9][9], TransportTarget& tt, const Listing& lst)
{
    const ThermalConstants& tc = hp.tc;
    const TransportScheme& s = hp.scheme;
    const double root_tclw = std::sqrt(tc.tclw), root_tcli = std::sqrt(tc.tcli);
    if (version == 2) check_water_capacities(g, m, hp, f, lst);
    return assemble_bricks(g, et, hp.kint, hp.decay, hp.agefx, heat, f.t10, f.t1i, w, cmat, tt, true,
                           [&](int e, const int* nodes) {
        const BrickLevels b = brick_levels(f, m, hp, e, nodes);
        const double por = m.por[e], th = b.th;
        const double wn = b.wn, wi = b.wi, cn = b.cn, ci = b.ci;
        const double cs = m.csol[e] * (1.0 - por);
        m.tkel[e] = tk_roots(wi, por, m.sw[e], root_tclw, root_tcli, std::sqrt(m.tcx[e]));
        const double vx = v.vx[e], vy = v.vy[e], vz = v.vz[e];
        BrickTerms bt;
        if (version == 1) {
            m.co0[e] = wn * th * cn + cs + (1.0 - wn) * th * tc.cice + dWu(b.Tn, hp.medium) * por * tc.wlh * tc.rhoi;
            m.co1[e] = cs + wi * th * ci + (1.0 - wi) * th * tc.cice + dWu(b.Ti, hp.medium) * por * tc.wlh * tc.rhoi;
            const double co = (m.co0[e] + m.co1[e]) / 2.0;
            // conductivity next to dispersivities that keep their diffusivity units: the
            // capacity multiplies only the augmentation and the advection
            const Tensor D = dispersion_tensor(hp.disp, vx, vy, vz, m.tkel[e] + hp.dd);
            const double cwm = (wn * th + wi * th) * (cn + ci) / 4.0;
            bt.c = element_coefficients(D, vx, vy, vz, s, cwm);
            bt.R = 1.0;
            bt.dtinv = s.dtinv * co;
            return bt;
        }
        const double C0 = wn * th * cn + cs + (1.0 - wn) * th * tc.cice;
        const double C1 = cs + wi * th * ci + (1.0 - wi) * th * tc.cice;
        m.co0[e] = C0 + dWu(b.Tn, hp.medium) * por * tc.rhoi * tc.wlh;
        m.co1[e] = C1 + dWu(b.Ti, hp.medium) * por * tc.rhoi * tc.wlh;
        const double den = water_capacity(b);  // above 0: checked before the loop
        bt.R = ((C0 + C1) / 2.0) / den;
        const double kappa = m.tkel[e] / den;
        const Tensor D = dispersion_tensor(hp.disp, vx, vy, vz, kappa + hp.dd);
        bt.c = element_coefficients(D, vx, vy, vz, s);
        bt.dtinv = s.dtinv;
        return bt;
    });
}

void assemble_heat_fractures(int version, const Grid& g, const Media& m, const Fractures& fr, const Velocities& v,
                             const ElementTables& et, const HeatParams& hp, const Fields& f, double R,
                             TransportTarget& tt)
{
    const ThermalConstants& tc = hp.tc;
    const TransportScheme& s = hp.scheme;
    const double al = hp.disp.idisp == 0 ? hp.disp.al : 0.0;  // none in a Lichtner run
    double a2[3][3], b2[3][3], a4[5][5], b4[5][5], c4[5][5];
    int tn[5] = {0, 0, 0, 0, 0};
    for (int l = 1; l <= fr.nfrac; ++l) {
        const double wf = fr.xarea[l] / m.por[1];  // the first element's porosity for all
        if (fr.ifdim[l] == 1) {
            double len = 0;
            if (!line_fracture_nodes(g, fr, l, tn, len)) continue;
            const int a = tn[1], b = tn[2];
            const double T = (f.t1i[a] + f.t10[a] + f.t1i[b] + f.t10[b]) / 4.0;
            const double wu = Wu(T, hp.fracture), vf = v.vlin[l];
            LineTerms t;
            double Rl = R;
            if (version == 1) {
                const double cfr = wu * pw(T, hp.lheat) * tc.cf;
                const double sk = sqrt_water_conductivity * wu + std::sqrt(tc.tcli) * (1.0 - wu);
                line_dispersion(sk * sk + (al * vf + hp.dd) * cfr, vf, wf, len, s, t);
                t.adv = vf * cfr * wf / 2.0;
                t.m = (len / 2.0) * wf * s.dtinv *
                      (cfr + (1.0 - wu) * tc.cice + dWu(T, hp.fracture) * tc.rhoi * tc.wlh);
                Rl = 1.0;
            } else {
                // a conductivity added unscaled to a diffusivity: kept as this formulation has it
                const double sk = std::sqrt(tc.tclw) * wu + std::sqrt(tc.tcli) * (1.0 - wu);
                line_dispersion(al * vf + sk * sk + hp.dd, vf, wf, len, s, t);
                t.adv = vf * wf / 2.0;
                t.m = len * wf * s.dtinv / (2.0 * R);
            }
            t.lam = hp.decay * len * wf;
            line_fracture_matrices(t, Rl, a2, b2);
            scatter_transport(2, tn, &a2[0][0], &b2[0][0], nullptr, 3, tt);
        } else if (fr.ifdim[l] == 2) {
            PlaneFracture pf;
            if (!plane_fracture_nodes(g, fr, v, l, tn, pf)) continue;
            pf.wf = wf;
            const double at = (fr.lvert[l] == 3 || fr.lvert[l] == 4) ? hp.disp.atv : hp.disp.ath;
            PlaneCoefficients pc{al, at, hp.dd, 1.0, 1.0, R, hp.decay, hp.agefx};
            if (version == 1) {
                double sum = 0;
                for (int k = 1; k <= 4; ++k) sum += f.t1i[tn[k]] + f.t10[tn[k]];
                const double T = sum / 8.0;
                // the fracture's own unfrozen moisture with the porous medium's slope
                const double wu = Wu(T, hp.fracture);
                const double cfr = pw(T, hp.lheat) * tc.cf * wu;
                pc.cap = cfr;
                pc.storage = cfr + (1.0 - wu) * tc.cice + dWu(T, hp.medium) * tc.rhoi * tc.wlh;
                pc.R = 1.0;
            }
            plane_fracture_matrices(pf, pc, s, et, a4, b4, c4);
            scatter_transport(4, tn, &a4[0][0], &b4[0][0], &c4[0][0], 5, tt);
        }
    }
}

// The leaky top: each free top node exchanges heat with the air through the layer and
// takes the recharge at its own temperature.  rech and areacol are read by the running
// count of free top nodes.
void assemble_leaky_top(int version, const Grid& g, const Media& m, const Velocities& v, const HeatParams& hp,
                        const HeatTop& top, const FieldIndex& heat, SolverWork& w, const Listing& lst)
{
    const int ny1 = g.ney + 1, ncol = g.nnt / g.nzt;
    int i = 0;
    for (int c = 1; c <= ncol; ++c) {
        const int n = c * g.nzt;
        if (heat.idir[n] == 1) continue;
        int jj = c % ny1;
        if (jj == 0) jj = g.ney;
        int kx = c / ny1 + (c % ny1 == 0 ? 0 : 1);
        if (kx == g.nex + 1) kx = g.nex;
        const int e = (g.nez - 1) * g.nex * g.ney + (jj - 1) * g.nex + kx;
        if (e > g.net || e < 1) {
            lst.line(free_line("error in assigning element# in trans ..."));
            stop_run(lst, {"stopping ... "});
        }
        // the last y row reads the next x entry of tsurf (the spare beyond the last)
        const int ix = c / ny1 + 1;
        const double ts = ix < (int)top.tsurf.size() ? top.tsurf[ix] : 0.0;
        double tq = ts + top.rtdiff;
        if (tq < 0.0) tq = 0.0;
        const double rho = pw(tq, hp.lheat);
        ++i;
        const bool fixed_flow = n < (int)top.flow_idir.size() && top.flow_idir[n] == 1;
        const double qn = (version == 1 || fixed_flow) ? -v.vz[e] * m.por[e] : top.rech[i];
        const double qp = qn >= 0 ? qn : 0.0;
        const double gl = top.tcon / top.bz[c];
        const double area = i < (int)top.areacol.size() ? top.areacol[i] : 0.0;
        const int k = n - heat.ncum[n];
        w.a[heat.pat.ia[k]] += (rho * hp.tc.cf * qp + gl) * area;
        w.b[k] += (gl * heat.fc[n] + top.bzflx[c] + rho * hp.tc.cf * tq * qp) * area;
    }
}

// Injection sources at their temperature, and heater columns on the right-hand side.
void assemble_heat_sources(int version, const Grid& g, const Media& m, const HeatParams& hp, const HeatSources& src,
                           const FieldIndex& heat, const Fields& f, SolverWork& w)
{
    double knee = 0.0;
    for (int n = 1; n <= (src.qsrc.empty() ? 0 : g.nnt); ++n) {  // no array: no source this interval
        if (!(src.qsrc[n] > 0)) continue;  // a withdrawal takes the node's own heat
        const double T = (f.t1i[n] + f.t10[n]) / 2.0;
        const double wu = source_wu(T, hp.medium, knee);
        const double s = src.qsrc[n] * hp.tc.cf * wu * m.sw[1] * m.por[1] * pw(T, hp.lheat) / m.por[1];
        add_nodal_term(heat, n, s, src.tsrc[n], w);
    }
    for (int l = 1; l <= src.nheat; ++l) {
        const int e = src.helem[l];
        const double pp = (g.dxe[e] + g.dye[e]) * g.dze[e];
        const int* hn = &src.hnode[(std::size_t)(l - 1) * 8];  // hn[1..8]
        const double ar = hn[3] == node_at(transport_incidence(g), e, 3) ? 2.0 * pp : pp;  // all four sides heated
        double d = src.fluxin1[l] * ar / 8.0;
        if (version == 1) d = g.dxe[e] / 8.0 * g.dye[e] * g.dze[e] * src.fluxin2[l] + d;
        for (int k = 1; k <= 8; ++k) {
            if (hn[k] == 0) continue;  // a slot without a node
            const int q = hn[k] - heat.ncum[hn[k]];
            if (q >= 1) w.b[q] += d;
        }
    }
}

void heat_step(int version, const Grid& g, Media& m, const Fractures& fr, const Velocities& v,
               const ElementTables& et, const HeatParams& hp, const HeatTop& top, const HeatSources& src,
               const FieldIndex& heat, Fields& f, SolverWork& w, double cmat[9][9], const Listing& lst, int* steps)
{
    assemble_heat(version, g, m, fr, v, et, hp, top, src, heat, f, w, cmat, lst);
    solve_transport_system(g.nnt, heat, w, f.t1, false, lst, steps);
}

}  // namespace

void assemble_heat(int version, const Grid& g, Media& m, const Fractures& fr, const Velocities& v,
                   const ElementTables& et, const HeatParams& hp, const HeatTop& top, const HeatSources& src,
                   const FieldIndex& heat, const Fields& f, SolverWork& w, double cmat[9][9], const Listing& lst)
{
    start_transport_system(g.nnt, heat, w);
    TransportTarget tt{ScatterTarget{heat.pat, w.a, w.b, nb_transport}, heat.idir, heat.ncum, f.t10, w.rvec};
    const double R = assemble_heat_bricks(version, g, m, v, et, hp, heat, f, w, cmat, tt, lst);
    assemble_heat_fractures(version, g, m, fr, v, et, hp, f, R, tt);
    if (top.lleaky) assemble_leaky_top(version, g, m, v, hp, top, heat, w, lst);
    assemble_heat_sources(version, g, m, hp, src, heat, f, w);
}

void htran1(const Grid& g, Media& m, const Fractures& fr, const Velocities& v, const ElementTables& et,
            const HeatParams& hp, const HeatTop& top, const HeatSources& src, const FieldIndex& heat, Fields& f,
            SolverWork& w, double cmat[9][9], const Listing& lst, int* steps)
{
    heat_step(1, g, m, fr, v, et, hp, top, src, heat, f, w, cmat, lst, steps);
}

void htran2(const Grid& g, Media& m, const Fractures& fr, const Velocities& v, const ElementTables& et,
            const HeatParams& hp, const HeatTop& top, const HeatSources& src, const FieldIndex& heat, Fields& f,
            SolverWork& w, double cmat[9][9], const Listing& lst, int* steps)
{
    heat_step(2, g, m, fr, v, et, hp, top, src, heat, f, w, cmat, lst, steps);
}
