#pragma once
#include "base/listing.hpp"
#include "base/options.hpp"
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

// The flow-grid pass (and with `transport` the transport pass) over a box of xl x yl x zl;
// with ntop > 0 the run is unsaturated and ntop more layers of 1 m belong to the
// transport grid only.
inline Grid flow_box(int nex, int ney, int nez, double xl, double yl, double zl, int ntop = 0,
                     bool transport = false)
{
    Grid g;
    g.ngx = g.ngy = 1;
    g.ngz = ntop > 0 ? 2 : 1;
    g.xg = {0, xl}; g.nlx = {0, nex};
    g.yg = {0, yl}; g.nly = {0, ney};
    g.zg = {0, zl}; g.nlz = {0, nez};
    if (ntop > 0) {
        g.zg.push_back(zl + ntop);
        g.nlz.push_back(ntop);
    }
    Options opt;
    opt.ksat = ntop > 0 ? 0 : 1;
    opt.unsat = ntop > 0;
    std::ostringstream sink;
    grid_sizes(g, opt, Listing{&sink});
    gengrid(g, 0, opt.unsat, 0);
    if (transport) {
        g.nezt = g.nez;
        g.net = g.ne;
        g.nnt = g.nx * g.ny * g.nzt;
        gengrid(g, 1, opt.unsat, 0);
    }
    return g;
}

// A saturated grid through the node planes xp, yp, zp (each starting at 0, one element
// between neighbouring planes), flow pass only.
inline Grid plane_grid(const std::vector<double>& xp, const std::vector<double>& yp, const std::vector<double>& zp)
{
    Grid g;
    const auto axis = [](const std::vector<double>& p, int& ng, std::vector<double>& ends, std::vector<int>& counts) {
        ng = (int)p.size() - 1;
        ends = p;
        counts.assign(p.size(), 1);
        counts[0] = 0;
    };
    axis(xp, g.ngx, g.xg, g.nlx);
    axis(yp, g.ngy, g.yg, g.nly);
    axis(zp, g.ngz, g.zg, g.nlz);
    Options opt;
    opt.ksat = 1;
    std::ostringstream sink;
    grid_sizes(g, opt, Listing{&sink});
    gengrid(g, 0, false, 0);
    return g;
}
