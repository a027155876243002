#include "grid/gengrid.hpp"

#include "base/limits.hpp"
#include "base/options.hpp"
#include "base/stop.hpp"
#include "output/fortran_format.hpp"

#include <limits>
#include <numeric>

void grid_sizes(Grid& g, const Options& opt, const Listing& lst)
{
    if (g.ngx > mxgx || g.ngy > mxgy || g.ngz > mxgz)
        stop_run(lst, {"dimension error in grid definition ", "you have too many grid sub-intervals",
                       "recompile with larger mxgx,mxgy,mxgz", "or reduce your number of sub-intervals (ngx,ngy,ngz)",
                       "... program ending "});
    if (opt.unsat && g.ngz <= 1)
        stop_run(lst, {"error in grid definition ", "if unsat. zone included, then ngz must be > 1 ",
                       "with the topmost layer representing the unsat. zone"});
    // A grid needs at least one element along each axis; counts below that would leave
    // the box without nodes or with negative sizes.
    const auto bad_count = [](const std::vector<int>& v, int n) {
        for (int m = 1; m <= n; ++m)
            if (v[m] < 0) return true;
        return false;
    };
    if (g.ngx < 1 || g.ngy < 1 || g.ngz < 1 || bad_count(g.nlx, g.ngx) || bad_count(g.nly, g.ngy) ||
        bad_count(g.nlz, g.ngz))
        stop_run(lst, {"error in grid definition ", "ngx,ngy,ngz must be at least 1 and nlx,nly,nlz not negative",
                       "program stopping ..."});

    const int ngz_flow = opt.unsat ? g.ngz - 1 : g.ngz;
    long long nex = 0, ney = 0, nez = 0;
    for (int m = 1; m <= g.ngx; ++m) nex += g.nlx[m];
    for (int m = 1; m <= g.ngy; ++m) ney += g.nly[m];
    for (int m = 1; m <= ngz_flow; ++m) nez += g.nlz[m];
    const long long nx = nex + 1, ny = ney + 1, nz = nez + 1;
    // Counts are at most 7 sub-intervals of 2^31 each, so a product of three can pass the
    // range of long long; it stops at the top of the range, far beyond every limit.
    const auto times = [](long long a, long long b) {
        return a != 0 && b > std::numeric_limits<long long>::max() / a ? std::numeric_limits<long long>::max() : a * b;
    };
    const long long nn = times(times(nx, ny), nz), ne = times(times(nex, ney), nez), nxy = times(nx, ny);

    // Sizes beyond the limits are printed as they are before the limit check stops the run.
    const auto clip = [](long long v) { return (int)std::min<long long>(v, 2'000'000'000LL); };
    g.nex = clip(nex); g.ney = clip(ney); g.nez = clip(nez);
    g.nx = clip(nx); g.ny = clip(ny); g.nz = clip(nz);
    g.nn = clip(nn); g.ne = clip(ne); g.nxy = clip(nxy);
    g.nyz = clip(times(ny, nz));
    g.nexy = clip(times(nex, ney));
    g.xl = g.xg[g.ngx];
    g.yl = g.yg[g.ngy];
    g.zl = opt.unsat ? g.zg[g.ngz - 1] : g.zg[g.ngz];
    g.nb = nb_flow;
    g.nbb = nb_transport;

    lst.line(free_line("flow grid size, elements (nex,ney,nez):", g.nex, g.ney, g.nez));
    lst.line(free_line("estimated bandwidth (nb,nbb):     ", g.nb, g.nbb));
    lst.line(free_line("flow grid size, nx,ny,nz:", g.nx, g.ny, g.nz));
    lst.line(free_line("total nodes in flow grid   ", g.nn));
    lst.line(free_line("total elements in flow grid", g.ne));

    if (ne > maxne || nn > maxn) stop_run(lst, {"error, ne>maxne or nn>maxn, check dimensions", "program stopping ..."});
    if (nxy > nf) stop_run(lst, {"error, nxy>nf, check dimensions", "program stopping ..."});
    // An element count of zero along an axis gives a flat box without elements.
    if (nex < 1 || ney < 1 || nez < 1)
        stop_run(lst, {"error in grid definition ", "the flow grid needs at least one element in x, y and z",
                       "program stopping ..."});

    g.nzt = g.nz;
    g.nezt = g.nez;
    g.nnt = g.nn;
    g.net = g.ne;
    g.nyzt = g.ny * g.nzt;
}

namespace {
// Planes along one axis: 0, then each sub-interval's equal steps added one at a time,
// so rounding accumulates along the axis as it does in the coordinates of the run.
void axis_planes(const std::vector<double>& ends, const std::vector<int>& counts, int nsub, std::vector<double>& planes)
{
    planes.assign(1, 0.0);
    planes.push_back(0.0);
    double c = 0.0;
    for (int m = 1; m <= nsub; ++m) {
        const double d = (m == 1) ? ends[1] / counts[1] : (ends[m] - ends[m - 1]) / counts[m];
        for (int l = 1; l <= counts[m]; ++l) {
            c += d;
            planes.push_back(c);
        }
    }
}
}  // namespace

void gengrid(Grid& g, int kflag, bool unsat, int kgo)
{
    const int nx = g.nx, ny = g.ny, nex = g.nex, ney = g.ney;
    int nzg = g.nz, nezg = g.nez, neg = g.ne;
    if (kflag == 1) {
        nzg = g.nzt;
        // an external grid (kgo 4) brings the transport-only layers with it
        if (unsat && kgo != 4) nzg += g.nlz[g.ngz];
        nezg = nzg - 1;
        neg = nex * ney * nezg;
        g.nnt = nx * ny * nzg;
        g.nzt = nzg;
        g.nezt = nezg;
        g.net = neg;
        g.nyzt = ny * nzg;
    }
    const int nng = nx * ny * nzg;
    const int nyzg = ny * nzg;

    if ((int)g.x.size() < nng + 1) {
        g.x.resize(nng + 1, 0.0);
        g.y.resize(nng + 1, 0.0);
        g.z.resize(nng + 1, 0.0);
    }
    if (kgo != 4) {
        std::vector<double> px, py, pz;
        axis_planes(g.xg, g.nlx, g.ngx, px);
        axis_planes(g.yg, g.nly, g.ngy, py);
        const int ngz_pass = (kflag == 0 && unsat) ? g.ngz - 1 : g.ngz;
        axis_planes(g.zg, g.nlz, ngz_pass, pz);
        for (int i = 1; i <= nx; ++i)
            for (int j = 1; j <= ny; ++j)
                for (int k = 1; k <= nzg; ++k) {
                    const int n = grid_node(i, j, k, ny, nzg);
                    g.x[n] = px[i];
                    g.y[n] = py[j];
                    g.z[n] = pz[k];
                }
    }

    // a transport grid with no layers of its own has the flow grid's incidence: it is
    // kept once (transport_incidence)
    const bool shared = kflag == 1 && nzg == g.nz;
    if (shared) std::vector<int>().swap(g.int8);
    std::vector<int>& inc = (kflag == 0 || shared) ? g.in : g.int8;
    inc.assign((std::size_t)neg * 8 + 1, 0);
    g.dxe.resize(neg + 1);
    g.dye.resize(neg + 1);
    g.dze.resize(neg + 1);
    const double* x = g.x.data();
    const double* y = g.y.data();
    const double* z = g.z.data();
    for (int ke = 1; ke <= nezg; ++ke)
        for (int je = 1; je <= ney; ++je)
            for (int ie = 1; ie <= nex; ++ie) {
                const int l = grid_element(ie, je, ke, nex, ney);
                const int b = grid_node(ie, je, ke, ny, nzg);
                int* nd = &inc[(l - 1) * 8];  // nd[1..8]
                nd[1] = b;
                nd[2] = b + nyzg;
                nd[3] = b + nyzg + nzg;
                nd[4] = b + nzg;
                nd[5] = b + 1;
                nd[6] = b + nyzg + 1;
                nd[7] = b + nyzg + nzg + 1;
                nd[8] = b + nzg + 1;
                // mean edge lengths of the brick
                g.dxe[l] = 0.25 * (x[nd[2]] - x[nd[1]] + x[nd[3]] - x[nd[4]] - x[nd[5]] + x[nd[6]] + x[nd[7]] - x[nd[8]]);
                g.dye[l] = 0.25 * (y[nd[3]] + y[nd[4]] - y[nd[1]] - y[nd[2]] - y[nd[5]] - y[nd[6]] + y[nd[7]] + y[nd[8]]);
                g.dze[l] = 0.25 * (z[nd[5]] + z[nd[6]] + z[nd[7]] + z[nd[8]] - z[nd[1]] - z[nd[2]] - z[nd[3]] - z[nd[4]]);
            }

    g.itopf.assign((std::size_t)nex * ney * 4 + 1, 0);
    for (int je = 1; je <= ney; ++je)
        for (int ie = 1; ie <= nex; ++ie) {
            int* t = &g.itopf[((je - 1) * nex + ie - 1) * 4];
            t[1] = grid_node(ie, je, nzg, ny, nzg);
            t[2] = grid_node(ie + 1, je, nzg, ny, nzg);
            t[3] = grid_node(ie + 1, je + 1, nzg, ny, nzg);
            t[4] = grid_node(ie, je + 1, nzg, ny, nzg);
        }
    g.ileftf.assign((std::size_t)ney * nezg * 4 + 1, 0);
    g.irightf.assign((std::size_t)ney * nezg * 4 + 1, 0);
    for (int ke = 1; ke <= nezg; ++ke)
        for (int je = 1; je <= ney; ++je) {
            const int f = (ke - 1) * ney + je;
            int* lf = &g.ileftf[(f - 1) * 4];
            int* rf = &g.irightf[(f - 1) * 4];
            lf[1] = grid_node(1, je, ke, ny, nzg);
            lf[2] = grid_node(1, je + 1, ke, ny, nzg);
            lf[3] = grid_node(1, je, ke + 1, ny, nzg);
            lf[4] = grid_node(1, je + 1, ke + 1, ny, nzg);
            rf[1] = grid_node(nx, je, ke, ny, nzg);
            rf[2] = grid_node(nx, je + 1, ke, ny, nzg);
            rf[3] = grid_node(nx, je, ke + 1, ny, nzg);
            rf[4] = grid_node(nx, je + 1, ke + 1, ny, nzg);
        }

    if (kflag == 0) {
        g.nmap.assign(g.nn + 1, 0);
        const int add = unsat ? g.nlz[g.ngz] : 0;
        for (int n = 1; n <= g.nn; ++n) g.nmap[n] = n + ((n - 1) / g.nz) * add;
    } else {
        g.kzt.assign(nng + 1, 0);
        for (int n = 1; n <= nng; ++n) {
            const int k = n % nzg;
            g.kzt[n] = (k == 0) ? nzg : k;
        }
    }
}
