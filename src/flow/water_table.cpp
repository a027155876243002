#include "flow/water_table.hpp"

#include "base/stop.hpp"
#include "grid/deformation.hpp"
#include "output/fortran_format.hpp"

#include <cmath>

namespace {
bool free_column(const WaterTable& wt, int c)
{
    return wt.kwt == 1 || (wt.kwt == 2 && (*wt.kwtcol)[c] != 1);
}
}  // namespace

bool water_table_test(const Grid& g, const WaterTable& wt, const std::vector<double>& u, const Listing& lst)
{
    double dmax = -999, dsigned = 999;
    int node = -999;
    for (int c = 1; c <= g.nxy; ++c) {
        if (!free_column(wt, c)) continue;
        const int n = c * g.nz;
        const double d = wt.datum + u[n] - g.z[g.nmap[n]];
        if (std::fabs(d) > dmax) {
            dmax = std::fabs(d);
            dsigned = d;
            node = n;
        }
    }
    lst.line(free_line("max. difference at free watertable: ", dsigned, " node: ", node));
    return dmax < wt.ccw;
}

void water_table_move(Grid& g, const WaterTable& wt, const std::vector<double>& u, const Listing& lst)
{
    // the layer count divides through single precision, as it always has
    const double layers = static_cast<double>(static_cast<float>(wt.nwtl));
    for (int c = 1; c <= g.nxy; ++c) {
        if (!free_column(wt, c)) continue;
        const int n = c * g.nz;
        const double dz = (wt.datum + u[n] - g.z[g.nmap[n - wt.nwtl]]) / layers;
        if (dz <= 0)
            stop_run(lst, {free_items("negative dz detected ... surface node# ", n),
                           "your flow grid is trying to deform down too much",
                           "check flow boundary conditions, number of deformable",
                           "layers (nwtl), datum, grid coordinates and dimensions"});
        for (int k = 1; k <= wt.nwtl; ++k) g.z[g.nmap[n - wt.nwtl + k]] = g.z[g.nmap[n - wt.nwtl + k - 1]] + dz;
    }
    if (wt.unsat_layers > 0) {
        // the layers above the flow grid stretch or shrink up to the deck's top
        const int nl = wt.unsat_layers;
        for (int c = 1; c <= g.nxy; ++c) {
            const int m = g.nmap[c * g.nz];
            const double dzu = (g.zg[g.ngz] - g.z[m]) / nl;
            for (int i = 1; i <= nl; ++i) g.z[m + i] = g.z[m + i - 1] + dzu;
        }
    }
    renew_top_dze(g, wt.nwtl + wt.unsat_layers);
}
