#pragma once
#include "control/listing.hpp"
#include "control/options.hpp"
#include "grid/gengrid.hpp"

#include <sstream>

// A saturated box of nex x ney x nez bricks of dx x dy x dz with both grid passes done,
// so that flow and transport numbering coincide.  Header-only: the benchmarks use it too.
inline Grid box_grid(int nex, int ney, int nez, double dx, double dy, double dz)
{
    Grid g;
    g.ngx = g.ngy = g.ngz = 1;
    g.xg = {0, nex * dx}; g.nlx = {0, nex};
    g.yg = {0, ney * dy}; g.nly = {0, ney};
    g.zg = {0, nez * dz}; g.nlz = {0, nez};
    Options opt;
    opt.ksat = 1;
    std::ostringstream sink;
    grid_sizes(g, opt, Listing{&sink});
    gengrid(g, 0, false, 0);
    gengrid(g, 1, false, 0);
    return g;
}
