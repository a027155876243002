#include "timeloop/forcing.hpp"

#include "base/stop.hpp"
#include "element/fluid.hpp"
#include "output/fortran_format.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double pi = 3.14159265358979;
constexpr double follow_air = -998;  // a patch temperature below this follows the air

double cosine_at(const CosineSet& s, double tdays)
{
    return cosine_forcing(s.surfmin, s.amp, s.period, s.phase, tdays, s.cutoff, s.gradt);
}

// Air temperature along x: one value for all rows from tair.data, or the two cosine sets
// over their x ranges.
void air_temperature(const SurfaceInputs& in, std::vector<double>& tsurf)
{
    const int nx = in.g.nx;
    if (in.ktair != 0) {
        double v = 0;
        if (!table_value(in.aux.tair_t, in.aux.tair_v, in.aux.ntair, in.tdays, v)) return;
        for (int ix = 1; ix <= nx; ++ix) tsurf[ix] = v;
        return;
    }
    for (int set = 1; set <= 2; ++set) {
        const CosineSet& s = in.d.tsurf_sets[set];
        const double v = cosine_at(s, in.tdays);
        // the deck does not bound the ranges: they stop at the array, whose spare row
        // nx+1 a range may reach
        for (int ix = std::max(s.ix1, 1); ix <= std::min(s.ix2, nx + 1); ++ix) tsurf[ix] = v;
    }
}

// The conductance layer from bzin.data: the zones of the last row beyond the table, else
// the zones of the bracketing row interpolated toward the next row, which also carries
// rtdiff.  The recharge follows bzq wherever the table set values.
void layer_from_table(const SurfaceInputs& in, Forcing& fo, std::vector<double>& flow_qnode)
{
    const Grid& g = in.g;
    const std::vector<BzPoint>& tb = in.aux.bz;
    const int nb = (int)tb.size() - 1;
    int i = 0;
    double f = 0;
    if (!table_position(nb, [&](int k) { return tb[k].time; }, in.tdays, i, f)) return;
    const bool beyond = i == nb;
    const BzPoint& r = tb[i];
    const BzPoint& r1 = beyond ? tb[i] : tb[i + 1];
    const auto lerp = [&](double a, double b) { return beyond ? a : a + f * (b - a); };
    for (int z = 1; z <= r.nzones; ++z) {
        // a zone the next row lacks interpolates towards zero
        static const BzZone none{};
        const BzZone& a = r.zone[z];
        const BzZone& b = z <= r1.nzones ? r1.zone[z] : none;
        // zone ranges come from a file the deck does not check: columns off the grid are skipped
        for (int ix = std::max(a.ix1, 1); ix <= std::min(a.ix2, g.nx); ++ix)
            for (int iy = 1; iy <= g.ny; ++iy) {
                const int c = (ix - 1) * g.ny + iy;
                fo.bz[c] = lerp(a.bz, b.bz);
                fo.bzflx[c] = lerp(a.bzflx, b.bzflx);
                fo.bzq[c] = lerp(a.bzq, b.bzq);
            }
    }
    if (!beyond) fo.rtdiff = lerp(r.tdiff, r1.tdiff);
    for (int c = 1; c <= g.nxy; ++c) {
        fo.rech[c] = fo.bzq[c];
        flow_qnode[c * g.nz] = fo.bzq[c] * in.areacol[c];
    }
}

// Top temperature boundary values.  A patch of -999 lets its nodes follow the air; the
// test reads only the last patch record of the interval.  Free leaky nodes take the air
// temperature with the x gradient of the two cosine sets, which exist for rows 1 and 2.
void top_temperatures(const SurfaceInputs& in, const Forcing& fo, std::vector<double>& heat_fc)
{
    const Grid& g = in.g;
    const std::vector<int>& kbct = in.patches.kbct;
    const bool follow = in.patches.tpatch < follow_air;
    for (int ix = 1; ix <= g.nx; ++ix) {
        const double gradx = ix <= 2 ? in.d.tsurf_sets[ix].gradx : 0.0;
        for (int iy = 1; iy <= g.ny; ++iy) {
            const int n = (ix - 1) * g.nyzt + iy * g.nzt;
            if (follow && kbct[n] == 1) heat_fc[n] = fo.tsurf[ix];
            if (fo.lleaky && kbct[n] == 0) heat_fc[n] = fo.tsurf[ix] + gradx * g.x[n];
        }
    }
}

}  // namespace

bool table_value(const std::vector<double>& tt, const std::vector<double>& tv, int n, double t, double& v)
{
    int i = 0;
    double f = 0;
    if (!table_position(n, [&](int k) { return tt[k]; }, t, i, f)) return false;
    v = i == n ? tv[n] : tv[i] + f * (tv[i + 1] - tv[i]);
    return true;
}

void start_interval_forcing(const IntervalRecord& iv, bool lbzin, const Grid& g, FieldIndex& flow, Forcing& fo)
{
    if (flow.kb[6] != 6)
        for (int n = 1; n <= g.nn; ++n) flow.fc[n] += iv.hinc;
    // multiplied in place: a factor 0 ends the recharge for all later intervals too
    if (!lbzin)
        for (int c = 1; c <= g.nxy; ++c) {
            fo.rech[c] *= iv.rinc;
            flow.qnode[c * g.nz] *= iv.rinc;
        }
    fo.rtdiff = iv.rtdiff;
    fo.bzfmult = iv.bzfmult;
}

void surface_forcing(const SurfaceInputs& in, Forcing& fo, std::vector<double>& heat_fc,
                     std::vector<double>& flow_qnode, const Listing& lst)
{
    const Grid& g = in.g;
    const bool lbzin = in.aux.lbzin;
    air_temperature(in, fo.tsurf);
    if (lbzin) {
        layer_from_table(in, fo, flow_qnode);
        // applied to the stored flux every step: where the table does not refresh it
        // (before its first row) the flux compounds from step to step
        for (int c = 1; c <= g.nxy; ++c) fo.bzflx[c] *= fo.bzfmult;
    }
    if (fo.lleaky) {
        lst.line(free_line("reference surface air temperature (x=0,XL) = ", fo.tsurf[1], fo.tsurf[g.nx]));
        lst.line(free_line("reference temp. difference (Tq - Tair) =     ", fo.rtdiff));
        lst.line(free_line("recharge flux m/s =                          ", fo.rech[1]));
    } else {
        lst.line(free_line("reference ground temperature (x=0,XL) = ", fo.tsurf[1], fo.tsurf[g.nx]));
    }
    top_temperatures(in, fo, heat_fc);
    if (!lbzin) {
        const double bzv = cosine_at(in.d.bz_thick, in.tdays);
        for (int c = 1; c <= g.nxy; ++c) {
            fo.bz[c] = bzv;
            fo.bzflx[c] = 0;
        }
    }
    fo.sat = cosine_at(in.d.bz_sat, in.tdays);
    fo.htide = cosine_at(in.d.tide, in.tdays);
    const int mid = g.nxy / 2;
    lst.line(free_line("surface layer thickness bz 1,mid,nx  = ", fo.bz[1], fo.bz[mid], fo.bz[g.nxy]));
    lst.line(free_line("surface heat flux bzflx    1,mid,nx  = ", fo.bzflx[1], fo.bzflx[mid], fo.bzflx[g.nxy]));
    lst.line(free_line("surface layer saturation sat = ", fo.sat));
    lst.line(free_line("tide height htide ........   = ", fo.htide));
    if (!fo.lleaky) return;
    for (int c = 1; c <= g.nxy; ++c)
        if (!(fo.bz[c] > 0) || !(fo.sat > 0))
            stop_run(lst, {"error: bz or sat <= 0; check sin curve parameters", "or check bzin.data file for bz <= 0",
                           "program stopping ..."});
}

void boundary_heads(const ForcingTables& aux, const Grid& g, double tdays, double hinc, CosineHead& wt,
                    Forcing& fo, FieldIndex& flow, const Listing& lst)
{
    if (flow.kb[6] != 6) return;
    // x of a flow node: the coordinates are held by transport node
    const auto xf = [&](int n) { return g.x[g.nmap[n]]; };
    const double xl = xf(g.nn);
    const double k1 = 2 * pi * wt.wave_cos / xl;
    const double k2 = 2 * pi * wt.wave_sin / xl;
    const auto wave = [&](double x) {
        return wt.amp_cos * std::cos(k1 * x + wt.phase) + wt.amp_sin * std::sin(k2 * x + wt.phase);
    };
    if (aux.lhbdy) {
        table_value(aux.hbdy_t, aux.hbdy_h, aux.nhbdy, tdays, fo.hb);
        for (int c = 1; c <= g.nxy; ++c) {
            const double x = xf(c * g.nz);
            flow.fc[c * g.nz] = fo.hb + wave(x) + wt.slope * x;
        }
        const double hr = flow.fc[g.nn];
        const int plane = (g.nx - 1) * g.ny * g.nz;
        for (int i = 1; i <= g.ny * g.nz; ++i)
            if (flow.idir[plane + i] == 1) flow.fc[plane + i] = hr;
        // the slope between the two ends stays for the regeneration and later steps
        wt.slope = (hr - fo.hb) / xl;
        lst.line(free_line("left,right bdy head,slope: ", fo.hb, hr, wt.slope));
    }
    // the top row is rebuilt about rise, not hb: of the table step only the right plane
    // below the top survives
    lst.line(free_line("regenerating fc array ... "));
    for (int c = 1; c <= g.nxy; ++c) {
        const double x = xf(c * g.nz);
        flow.fc[c * g.nz] = wt.rise + hinc * wave(x) + wt.slope * x;
    }
    lst.line(free_line("wt amplitude updated by *hinc:", hinc));
}
