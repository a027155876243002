#include "timeloop/histories.hpp"

#include "base/limits.hpp"
#include "base/stop.hpp"
#include "output/fortran_format.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr int max_levels = 500;                     // heater levels kept per step
constexpr long long first_cap = 1024;               // steps held before the first growth
constexpr double front_dt = 9.99999974737875e-06;   // smallest temperature step a z front interpolates
constexpr double window_end = 0.119999997317791;    // m: a heater level keeps this far from both ends
constexpr double window_half = 0.0599999986588955;  // m: half the averaging window

// Grows v to hold `steps` steps of `per_step` entries, keeping what it holds.
void grow(std::vector<float>& v, long long steps, int per_step) { v.resize(steps * per_step + 1, 0.0f); }

}  // namespace

void size_histories(Histories& h, int nbt, const Grid& g)
{
    h = Histories{};
    h.nbt = nbt;
    h.maxlev = std::min(g.nezt, max_levels);
    h.hcz.assign(h.maxlev + 1, 0.0f);
}

void record_time(Histories& h, long long numit, double tdays)
{
    if (numit > h.cap) {
        // the history never outgrows the run's step limit, which the loop has checked
        h.cap = std::min<long long>(std::max(2 * h.cap, first_cap), maxit);
        for (auto* v : {&h.ttime, &h.xfront, &h.zfront1, &h.zfront2}) grow(*v, h.cap, 1);
        for (auto* v : {&h.tavgw, &h.havgw, &h.tpeakw, &h.tminw, &h.cpeakw, &h.cminw}) grow(*v, h.cap, h.nbt);
    }
    h.ttime[numit] = (float)tdays;
}

void record_wells(const Grid& g, const Fields& f, const std::vector<Well>& wells, int ksat, long long numit,
                  Histories& h, const Listing& lst)
{
    for (int w = 1; w <= h.nbt; ++w) {
        const Well& wl = wells[w - 1];
        double st = 0, sh = 0, tp = -999, tm = 999, cp = -999, cm = 999;
        for (int k = wl.izw1; k <= wl.izw2; ++k) {
            const int m = (wl.ixw - 1) * g.nyzt + (wl.iyw - 1) * g.nzt + k;
            const int n = (wl.ixw - 1) * g.ny * g.nz + (wl.iyw - 1) * g.nz + k;
            if (m <= 0 || m > g.nnt)
                stop_run(lst, {"error in breakthrough curve nodes ixw() etc.", free_items("btc node = ", m),
                               "stopping ..."});
            st += f.t1[m];
            // nodes of the unsaturated zone above the flow grid carry no head
            if (ksat == 1 || k <= g.nz) sh += f.u[n];
            tp = std::max(tp, f.t1[m]);
            tm = std::min(tm, f.t1[m]);
            cp = std::max(cp, f.t2[m]);
            cm = std::min(cm, f.t2[m]);
        }
        // both means over the whole screen, also where the top nodes added no head; an
        // empty screen divides by a count of zero or less
        const double count = wl.izw2 - wl.izw1 + 1;
        const double tavg = count != 0 ? st / count : 0.0;
        const double havg = count != 0 ? sh / count : 0.0;
        hist_at(h.tavgw, h.nbt, numit, w) = (float)tavg;
        hist_at(h.havgw, h.nbt, numit, w) = (float)havg;
        hist_at(h.tpeakw, h.nbt, numit, w) = (float)tp;
        hist_at(h.tminw, h.nbt, numit, w) = (float)tm;
        hist_at(h.cpeakw, h.nbt, numit, w) = (float)cp;
        hist_at(h.cminw, h.nbt, numit, w) = (float)cm;
    }
}

namespace {

// Depth below the top of the first column of the level where T crosses ts between node n
// and the node above it; the node's own height where the two are too close to tell apart.
double front_depth(const Grid& g, const Fields& f, int n, double ts)
{
    const double tn = f.t1[n], ta = f.t1[n + 1];
    if (std::fabs(tn - ta) > front_dt) return (g.z[g.nzt] - g.z[n]) + (g.z[n] - g.z[n + 1]) * (tn - ts) / (tn - ta);
    return g.z[n];
}

}  // namespace

void record_fronts(const Grid& g, const Fields& f, const std::array<int, 6>& knox, const std::array<int, 6>& knoy,
                   const std::array<int, 6>& knoz, double ts, long long numit, Histories& h)
{
    if (g.ny != 2) return;
    const int ix0 = knox[1] == 0 ? 1 : knox[1];
    const int iy0 = knoy[1] == 0 ? 1 : knoy[1];
    const int iz0 = knoz[1] == 0 ? 1 : knoz[1];
    if (g.nzt == 2) {
        float& xf = h.xfront[numit];
        xf = 0;
        for (int ix = 2; ix <= g.nx; ++ix) {
            const int n = grid_node(ix, iy0, iz0, g.ny, g.nzt);
            const int np = grid_node(ix - 1, iy0, iz0, g.ny, g.nzt);
            if (f.t1[n] > ts) {
                const double dt = f.t1[n] - f.t1[np];
                // equal temperatures (both above ts at the first pair) give no crossing to
                // interpolate: the front sits at the start of the row
                xf = dt != 0 ? (float)(g.x[np] + (ts - f.t1[np]) * (g.x[n] - g.x[np]) / dt) : (float)g.x[np];
                break;
            }
        }
    }
    if (g.nx == 2) {
        const int base = grid_node(ix0, iy0, 0, g.ny, g.nzt);
        // walk down from the top; the depth is set at every node on the way
        for (int pass = 1; pass <= 2; ++pass) {
            float& zf = pass == 1 ? h.zfront1[numit] : h.zfront2[numit];
            for (int i = 1; i <= g.nzt; ++i) {
                const int n = base + g.nzt - i + 1;
                zf = (float)g.z[n];
                const bool crossed = pass == 1 ? f.t1[n] > ts : f.t1[n] < ts;
                if (i > 1 && crossed) {
                    zf = (float)front_depth(g, f, n, ts);
                    break;
                }
            }
        }
    }
}

void record_heaters(const Grid& g, const Fields& f, const Sources& s, long long numit, Histories& h)
{
    if (numit > h.hct_cap) {
        h.hct_cap = std::min<long long>(std::max({2 * h.hct_cap, first_cap, numit}), maxit);
        grow(h.hct, h.hct_cap, h.maxlev);
    }
    const int nexy = g.nex * g.ney;
    const double zmax = g.z[g.nzt];
    int m = 0;
    for (int iz = 1; iz <= g.nezt && m < h.maxlev; ++iz) {
        float sum = 0;
        int nl = 0, elast = 0;
        bool pass = true;
        for (int i = 1; i <= s.nhcol && pass; ++i) {
            // each column lists nezt layers; past the list a shorter heater has none
            const int l = (i - 1) * g.nezt + iz;
            if (l > s.nheat) continue;
            const int e = s.helem[l];
            const double z1 = g.z[node_at(transport_incidence(g), e, 1)], z8 = g.z[node_at(transport_incidence(g), e, 8)];
            pass = z1 >= window_end && zmax - z8 >= window_end;
            if (!pass) break;
            int lo = e, hi = e;
            while (lo > nexy && z8 - g.z[node_at(transport_incidence(g), lo, 1)] < window_half) lo -= nexy;
            while (hi + nexy <= g.net && g.z[node_at(transport_incidence(g), hi, 1)] - z1 < window_half) hi += nexy;
            for (int el = lo; el <= hi; el += nexy)
                for (int k = 1; k <= 8; ++k) sum += (float)f.t1[node_at(transport_incidence(g), el, k)];
            nl = (hi - lo) / nexy;
            elast = e;
        }
        if (!pass || elast == 0) continue;
        ++m;
        h.hcz[m] = (float)(0.5 * (g.z[node_at(transport_incidence(g), elast, 1)] + g.z[node_at(transport_incidence(g), elast, 8)]));
        hist_at(h.hct, h.maxlev, numit, m) = sum / (float)(s.nhcol * (1 + nl) * 8);
    }
    h.nlev = m;
}
