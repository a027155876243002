#include "timeloop/balances.hpp"

#include "element/fracture_geometry.hpp"
#include "output/fortran_format.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double absolute_zero = 273.0;                  // C below which the absolute content counts
constexpr double right_angle = 1.5707950592041;          // pi/2 as the single-precision product left it
constexpr double keq_floor = 9.99999968265523e-21;       // smallest gradient and equivalent K
constexpr double no_injection = 1e-20;                   // J: below it no recovery is defined

// Mean of a nodal field over the local nodes `loc` of element e.
template <std::size_t N>
double local_mean(const std::vector<int>& inc, int e, const int (&loc)[N], const std::vector<double>& v)
{
    double s = 0;
    for (int i : loc) s += v[node_at(inc, e, i)];
    return s / N;
}

constexpr int all_nodes[] = {1, 2, 3, 4, 5, 6, 7, 8};
constexpr int lower_face[] = {1, 2, 3, 4};
constexpr int upper_face[] = {5, 6, 7, 8};
constexpr int xmin_face[] = {1, 4, 5, 8};
constexpr int xmax_face[] = {2, 3, 6, 7};
constexpr int top_left_edge[] = {5, 8};
constexpr int top_right_edge[] = {6, 7};

double at(const std::vector<double>& v, int i) { return i < (int)v.size() ? v[i] : 0.0; }
int at(const std::vector<int>& v, int i) { return i < (int)v.size() ? v[i] : 0; }

// atan of a ratio as the division gives it: +-pi/2 for a zero denominator, and 0 where
// both vanish (an element at rest has no direction; the quotient would be undefined).
double atan_ratio(double a, double b)
{
    if (b == 0 && a == 0) return 0;
    return std::atan(a / b);
}

// Vertical conductive flux through element e, positive upward out of the domain (W/m2).
double vertical_flux(const Grid& g, const Media& m, const Fields& f, int e)
{
    const double tt = local_mean(transport_incidence(g), e, upper_face, f.t1);
    const double tb = local_mean(transport_incidence(g), e, lower_face, f.t1);
    const double zt = local_mean(transport_incidence(g), e, upper_face, g.z);
    const double zb = local_mean(transport_incidence(g), e, lower_face, g.z);
    return -m.tkel[e] * (tt - tb) / (zt - zb);
}

// Mean of a nodal transport field over the n flow nodes fnodes[1..n].
double flow_nodes_mean(const Grid& g, const int* fnodes, int n, const std::vector<double>& c)
{
    double s = 0;
    for (int i = 1; i <= n; ++i) s += c[g.nmap[fnodes[i]]];
    return s / n;
}

}  // namespace

void size_balances(Balances& b, const Grid& g)
{
    b = Balances{};
    const int ns = g.nex * g.ney + 1;
    TopFluxes& t = b.top;
    for (auto* v : {&t.alpha, &t.beta, &t.vmag, &t.vperp, &t.area, &t.tref2, &t.conv, &t.cond, &t.fbot})
        v->assign(ns, 0.0);
}

void heat_content(const Grid& g, const Media& m, const Fields& f, const BalanceConstants& k, Balances& b)
{
    double htota = 0, htotr = 0, pc = b.pc;
    for (int e = 1; e <= g.net; ++e) {
        double ta = 0, tk = 0;
        for (int i = 1; i <= 8; ++i) {
            const double t = f.t1[node_at(transport_incidence(g), e, i)];
            ta += t;
            tk += absolute_zero + t;
        }
        ta *= 0.125;
        tk *= 0.125;
        pc = pw(ta, k.lheat) * k.cf;
        const double w = Wu(ta, k.medium);
        const double ps = m.por[e] * m.sw[e];
        const double c = (1 - m.por[e]) * m.csol[e] + (1 - w) * (ps * k.cice) + pc * (ps * w);
        htota += (ta - b.tref) * m.vol[e] * c;
        htotr += c * tk * m.vol[e];
    }
    b.heat.htota = htota;
    b.heat.htotr = htotr;
    b.pc = pc;  // the fluid capacity of the source sums of the next step
}

void step_balance(const Grid& g, const Fields& f, const Sources& s, const Forcing& fo,
                  const std::vector<double>& areacol, const BalanceConstants& k, int kmass, double dt, Balances& b)
{
    // the first column is the ambient: node i is compared with the level kzt(i) there
    double hin1 = 0, hin2 = 0, hout1 = 0, hout2 = 0;
    b.qin = 0;
    b.qout = 0;
    if (s.lsrc)
        for (int i = 1; i <= g.nnt; ++i) {
            const double q = s.qsrc[i];
            const double amb = f.t1[g.kzt[i]];
            if (q > 0) {
                hin1 += (s.tsrc[i] - b.tref) * q;
                hin2 += (s.tsrc[i] - amb) * q;
                b.qin += q;
            } else {
                hout1 += (f.t1[i] - b.tref) * q;
                hout2 += (f.t1[i] - amb) * q;
                b.qout += q;
            }
        }
    // a solute run counts mass, so its factor carries no heat capacity
    const double fac = kmass == 1 ? dt : b.pc * dt;
    HeatTotals& h = b.heat;
    h.hinr = hin2 * fac;
    b.hincum += h.hinr;
    b.houtcum += hout2 * fac;

    double leak = 0, recharge = 0;
    for (int ix = 1; ix <= g.nx; ++ix)
        for (int iy = 1; iy <= g.ny; ++iy) {
            const int c = (ix - 1) * g.ny + iy;
            const double a = at(areacol, c);
            if (fo.lleaky) leak += (fo.tsurf[ix] - b.tref) * a / fo.bz[c];
            const double ttop = f.t1[grid_node(ix, iy, g.nzt, g.ny, g.nzt)];
            recharge += std::max(0.0, fo.tsurf[ix] + fo.rtdiff - ttop) * fac * a * fo.rech[c];
        }
    leak *= k.tcon * dt;
    h.hts2 += leak;
    b.hexp = leak + h.htota + fac * (hin1 + hout1);  // from the content before this step
    h.hqtop += recharge;
}

void surface_fluxes(const Grid& g, const Media& m, const Fields& f, const Velocities& v, const ForcingTables& aux,
                    const BalanceConstants& k, Balances& b)
{
    TopFluxes& t = b.top;
    BoundaryFluxes& q = b.bndy;
    q.hflxtop = 0;
    q.hflxbot = 0;
    for (int iy = 1; iy <= g.ney; ++iy)
        for (int ix = 1; ix <= g.nex; ++ix) {
            const int s = (iy - 1) * g.nex + ix;
            const int et = grid_element(ix, iy, g.nezt, g.nex, g.ney);
            const int eb = grid_element(ix, iy, 1, g.nex, g.ney);
            const double ftop = vertical_flux(g, m, f, et);
            const double fbot = vertical_flux(g, m, f, eb);
            q.hflxbot += fbot * g.dxe[eb] * g.dye[eb];
            q.hflxtop += ftop * g.dxe[et] * g.dye[et];

            // the reference of the convective flux: each x row of the stack takes the sea-bed
            // temperature where slope_zt.data marks it, else its own top nodes
            const double tl = at(aux.slope_row, ix) == 1 ? at(aux.tsea, ix) : local_mean(transport_incidence(g), et, top_left_edge, f.t1);
            const double tr =
                at(aux.slope_row, ix + 1) == 1 ? at(aux.tsea, ix + 1) : local_mean(transport_incidence(g), et, top_right_edge, f.t1);
            const double tref2 = 0.5 * (tl + tr);

            const double ta = 0.5 * (local_mean(transport_incidence(g), et, upper_face, f.t1) + local_mean(transport_incidence(g), et, lower_face, f.t1));
            const double zt = local_mean(transport_incidence(g), et, upper_face, g.z);
            const double zb = local_mean(transport_incidence(g), et, lower_face, g.z);
            const double x1 = g.x[node_at(transport_incidence(g), et, 1)];
            const double x2 = g.x[node_at(transport_incidence(g), et, 2)];
            const double vx = v.vx[et], vz = v.vz[et];
            const double vmag = std::sqrt(vx * vx + vz * vz);
            const double alpha = atan_ratio(vz, vx);
            const double beta = atan_ratio(zt - zb, x2 - x1);
            const double w = Wu(ta, k.medium);
            t.alpha[s] = alpha;
            t.beta[s] = beta;
            t.vmag[s] = vmag;
            t.vperp[s] = vmag * std::sin(alpha - right_angle + beta);
            t.area[s] = g.dye[et] * (x2 - x1);
            t.tref2[s] = tref2;
            t.conv[s] = (m.por[et] * m.sw[et] * w) * (ta - tref2) * (k.cf * vz * pw(ta, k.lheat));
            t.cond[s] = ftop;
            t.fbot[s] = fbot;
        }
}

void boundary_fluxes(const Grid& g, const Media& m, const Fields& f, const Velocities& v,
                     const BalanceConstants& k, double dt, Balances& b)
{
    const int nyz = g.ny * g.nz;
    double hl = 0, hr = 0;
    for (int n = 1; n <= nyz; ++n) {
        hl += f.u[n];
        hr += f.u[g.nn - nyz + n];
    }
    hl /= nyz;
    hr /= nyz;
    const double grad = (hl - hr) / (g.x[g.nnt] - g.x[1]);

    BoundaryFluxes& q = b.bndy;
    for (int side = 1; side <= 2; ++side) {
        const int ix = side == 1 ? 1 : g.nex;
        double flux = 0, fluid = 0, area = 0;
        for (int iz = 1; iz <= g.nezt; ++iz)
            for (int iy = 1; iy <= g.ney; ++iy) {
                const int e = grid_element(ix, iy, iz, g.nex, g.ney);
                const double tl = local_mean(transport_incidence(g), e, xmin_face, f.t1);
                const double tr = local_mean(transport_incidence(g), e, xmax_face, f.t1);
                const double xl = local_mean(transport_incidence(g), e, xmin_face, g.x);
                const double xr = local_mean(transport_incidence(g), e, xmax_face, g.x);
                const double ta = 0.5 * (tl + tr);
                const double a = g.dye[e] * g.dze[e];
                const double sf = m.por[e] * m.sw[e] * Wu(ta, k.medium);
                flux += a * (sf * (ta - b.tref) * (v.vx[e] * k.cf) * pw(ta, k.lheat) - m.tkel[e] * (tr - tl) / (xr - xl));
                fluid += sf * a * v.vx[e];
                area += a;
            }
        // a gradient at or below the floor (of either sign) gives the floor, not a quotient
        const double keq = grad <= keq_floor ? keq_floor : (fluid / area) / grad;
        if (side == 1) {
            q.fluxleft = flux;
            q.sumfl += flux * dt;
            q.keqleft = keq;
        } else {
            q.fluxright = flux;
            q.sumfr += flux * dt;
            q.keqright = keq;
        }
    }

    double wv = 0;
    for (int e = 1; e <= g.net; ++e)
        wv += m.por[e] * m.sw[e] * Wu(local_mean(transport_incidence(g), e, all_nodes, f.t1), k.medium) * m.vol[e];
    q.wu_vol = wv;
}

void mass_inventory(const Grid& g, const Media& m, const Fractures& fr, const Sources& s,
                    const std::vector<double>& c, MassSums& out)
{
    auto element_mass = [&](int e) { return local_mean(transport_incidence(g), e, all_nodes, c) * m.vol[e] * m.por[e]; };
    out = MassSums{};
    for (int e = 1; e <= g.net; ++e) out.matrix += element_mass(e);
    for (int l = 1; l <= fr.nfrac; ++l) {
        const int e = fr.ifracl[l];
        if (fr.ifdim[l] == 1) {
            int fn[3] = {};
            double len = 0;
            edgegeo(fr.lvert, fn, g.in, l, e, len, g.dxe, g.dye, g.dze);
            out.fractures += len * fr.xarea[l] * flow_nodes_mean(g, fn, 2, c);
        } else {
            int fn[5] = {};
            double l1 = 0, l2 = 0, asp = 0, area = 0;
            facegeo(fr.lvert, fn, g.in, l, e, l1, l2, g.dxe, g.dye, g.dze, asp, area);
            out.fractures += area * fr.xarea[l] * flow_nodes_mean(g, fn, 4, c);
        }
    }
    for (int l = 1; l <= s.nheat; ++l) out.column += element_mass(s.helem[l]);
}

void recovery_summary(const Balances& b, int kmass, int kcntrl, bool lsrc, const Listing& lst)
{
    if (kcntrl != 0 || !lsrc) return;
    if (std::fabs(b.hincum) < no_injection) {
        lst.line(free_line("thermal energy recovery undefined"));
        return;
    }
    // the same two sums are heat for a heat run and mass for a solute run
    const double eff = 100 * std::fabs(b.houtcum / b.hincum);
    if (kmass == 0 || kmass == 3) {
        lst.line(free_line("total thermal energy injected  above ambient:", b.hincum));
        lst.line(free_line("total thermal energy recovered above ambient:", b.houtcum));
        lst.line(free_line("thermal recovery efficiency (%) ... ", eff));
    }
    if (kmass == 1 || kmass == 3) {
        lst.line(free_line("total mass injected  above background :", b.hincum));
        lst.line(free_line("total mass recovered above background :", b.houtcum));
        lst.line(free_line("mass recovery efficiency (out/in %)   :", eff));
    }
}
