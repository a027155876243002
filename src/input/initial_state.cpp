#include "input/initial_state.hpp"

#include "element/fluid.hpp"
#include "output/fortran_format.hpp"

#include <algorithm>

void set_initial_heads(Files& files, const Listing& lst, const Deck& deck, const Grid& g, Fields& f)
{
    if (deck.init == 1) {
        read_hinput(files, lst, g, f);
        return;
    }
    for (int n = 1; n <= g.nn; ++n) f.u[n] = f.u0[n] = f.ui[n] = deck.h0;
    lst.line(free_line("uniform initial condition for flow; h0= ", deck.h0));
}

namespace {

// One initial block: t_bot at the bottom, rising linearly to t_top at k2 unless the
// gradient is switched off; fixed nodes keep a boundary value that is set.
void fill_block(const InitialBlock& b, bool gradient, const Grid& g, FieldIndex& fi, std::vector<double>& a,
                std::vector<double>& a0, std::vector<double>& ai, double& vmin, double& vmax)
{
    if (b.k1 > b.k2) return;  // an empty range names no node, not even its ends
    for (int i = b.i1; i <= b.i2; ++i)
        for (int j = b.j1; j <= b.j2; ++j) {
            const double zb = g.z[grid_node(i, j, b.k1, g.ny, g.nzt)];
            const double zt = g.z[grid_node(i, j, b.k2, g.ny, g.nzt)];
            for (int k = b.k1; k <= b.k2; ++k) {
                const int n = grid_node(i, j, k, g.ny, g.nzt);
                double value = b.t_bot;
                if (b.k2 > b.k1 && gradient) value = b.t_bot + (b.t_top - b.t_bot) * (g.z[n] - zb) / (zt - zb);
                vmin = std::min(vmin, value);
                vmax = std::max(vmax, value);
                if (fi.idir[n] == 1 && !(fi.fc[n] < -900)) continue;
                fi.fc[n] = value;
                a[n] = a0[n] = ai[n] = value;
            }
        }
}

}  // namespace

bool set_initial_transport(const Listing& lst, const Options& opt, const Deck& deck, const Grid& g, FieldIndex& heat,
                           FieldIndex& mass, Fields& f)
{
    for (int n = 1; n <= g.nnt; ++n) {
        if (heat.fc[n] > -900) f.t1[n] = f.t10[n] = f.t1i[n] = heat.fc[n];
        if (n < (int)mass.fc.size() && mass.fc[n] > -900) f.t2[n] = f.t20[n] = f.t2i[n] = mass.fc[n];
    }
    double tmin = 999, tmax = -999;
    const bool leaky = heat.kb[6] == 4;  // a leaky top turns the gradient off altogether
    for (const InitialBlock& b : deck.tinit) fill_block(b, !leaky, g, heat, f.t1, f.t10, f.t1i, tmin, tmax);
    lst.line(free_line("min/max temps : ", tmin, tmax));
    if (opt.kmass == 1 || opt.kmass == 3) {
        double cmin = 999, cmax = -999;
        for (const InitialBlock& b : deck.cinit) fill_block(b, true, g, mass, f.t2, f.t20, f.t2i, cmin, cmax);
        lst.line(free_line("min/max concs : ", cmin, cmax));
    }

    // A fixed surface temperature of -999 stands for the cosine air temperature.
    if (heat.last_value < -998) {
        lst.line(free_line("assigning cosine surfat temps as type-1 top nodes"));
        for (int set = 1; set <= 2; ++set) {
            const CosineSet& s = deck.tsurf_sets[set];
            for (int ix = std::max(s.ix1, 1); ix <= std::min(s.ix2, g.nx); ++ix)
                for (int j = 1; j <= g.ny; ++j) {
                    const int n = grid_node(ix, j, g.nzt, g.ny, g.nzt);
                    const double v =
                        cosine_forcing(s.surfmin, s.amp, s.period, s.phase, 0.0, s.cutoff, s.gradt) + s.gradx * g.x[n];
                    heat.fc[n] = v;
                    f.t1[n] = f.t10[n] = f.t1i[n] = v;
                }
        }
    }
    double smin = 999, smax = -999;
    for (int c = 1; c <= g.nxy; ++c) {
        smin = std::min(smin, f.t1[c * g.nzt]);
        smax = std::max(smax, f.t1[c * g.nzt]);
    }
    lst.line(free_line("min/max temps along surface : ", smin, smax));

    bool can_freeze = false;
    for (int set = 1; set <= 2; ++set)
        if (deck.tsurf_sets[set].surfmin < 0) can_freeze = true;
    for (int n = 1; n <= g.nnt && !can_freeze; ++n)
        if (heat.fc[n] < 0 || f.t1[n] < 0) can_freeze = true;
    return can_freeze;
}

void h_adjust(const Listing& lst, bool setup, double htide, double gammac, const Grid& g, const FieldIndex& flow,
              const std::vector<double>& fc0, const ForcingTables& tables, std::vector<double>& fc, Fields& f)
{
    const int nz = g.nz;
    // heights and concentrations are taken by flow node number: the walk is meant for a
    // saturated grid, where both numberings agree
    const std::vector<double>& z = g.z;
    const std::vector<double>& t2 = f.t2;
    for (int ix = 1; ix <= g.nx; ++ix)
        for (int iy = 1; iy <= g.ny; ++iy) {
            const int base = grid_node(ix, iy, 1, g.ny, nz) - 1;
            const int nt = base + nz;
            const double hw = ix < (int)tables.hwcol.size() ? tables.hwcol[ix] : 0.0;
            for (int k = 1; k <= nz; ++k) {
                const int n = base + k;
                if (flow.idir[n] != 1) continue;
                double sum = 0, zd = 0;
                for (int kk = nz; kk >= k; --kk) {
                    const int above = base + (kk < nz ? kk + 1 : kk);
                    const int below = base + (kk > 1 ? kk - 1 : kk);
                    zd = z[above] - z[below];
                    sum = sum + zd * 0.5 * t2[base + kk];
                }
                if (setup) {
                    fc[n] = (sum + hw * t2[nt]) * gammac + fc0[n];
                } else {
                    const double beta = (sum + (htide + hw) * t2[nt]) * gammac;
                    fc[n] = htide + fc0[n] + beta;
                    if (iy == 1 && k == 1)
                        lst.line(free_line("h_adjust: i,j,k,t2,zdiff,beta,fc,htide: ", ix, iy, k, t2[n], zd, beta,
                                           fc[n], htide));
                }
                f.u0[n] = f.ui[n] = f.u[n] = fc[n];
            }
        }
    if (!setup) return;
    lst.line(free_line("top bdy heads along top x-row adjusted for"));
    lst.line(free_line(" saltwater and slope:"));
    lst.line(free_line("    ix, node       x           conc.       u0(m)"));
    for (int ix = 1; ix <= g.nx; ++ix) {
        const int n = grid_node(ix, g.ny, nz, g.ny, nz);  // the last y row
        lst.line(free_line(ix, n, g.x[n], t2[n], f.u0[n]));
    }
}
