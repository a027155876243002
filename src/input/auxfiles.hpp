#pragma once
#include "base/fields.hpp"
#include "base/files.hpp"
#include "base/listing.hpp"
#include "base/options.hpp"
#include "flow/velocities.hpp"
#include "grid/grid.hpp"

#include <array>
#include <vector>

// Tables read from the optional input files that drive the surface forcing.
struct BzZone { int ix1 = 0, ix2 = 0; double bz = 0, bzflx = 0, bzq = 0; };
struct BzPoint {
    double time = 0;                // days
    int nzones = 0;
    std::vector<BzZone> zone;       // zones 1..nzones (8 are usual; more are taken)
    double tdiff = 0;               // surface temperature offset
};
struct ForcingTables {
    std::vector<double> tair_t, tair_v;  // air temperature table 1..ntair: days, C
    int ntair = 0;
    std::vector<double> hbdy_t, hbdy_h;  // boundary head table 1..nhbdy: days, m
    int nhbdy = 0;
    bool lhbdy = false;                  // hbdy.data was present
    std::vector<BzPoint> bz;             // conductance layer table 1..nbz
    bool lbzin = false;                  // bzin.data was present
    std::vector<double> hwcol, tsea;     // sea-bed water column and temperature by x index
    int nslope = 0;                      // groups read from slope_zt.data
    std::vector<int> slope_row;          // 1: the top row at this x index follows tsea
};

// kgo = 4: coordinates of every node from grid3d.plt; sets nzt and nnt.
void read_grid3d(Files& files, const Listing& lst, const Options& opt, Grid& g);
// init = 1: heads of one xz section from hinput.data, uniform in y.  Fills u, u0, ui.
void read_hinput(Files& files, const Listing& lst, const Grid& g, Fields& f);
void read_tair(Files& files, const Listing& lst, ForcingTables& t);
void read_hbdy(Files& files, const Listing& lst, ForcingTables& t);
void read_bzin(Files& files, const Listing& lst, ForcingTables& t);
// ivel = 3: vx, vz of every transport element from veloc2d_in.data; vy = 0.
void read_veloc2d(Files& files, const Listing& lst, const Grid& g, Velocities& v);
// slope_zt.data: sea-bed water column and temperature by x index; with
// `seabed_temps` the top row takes those temperatures as fixed values and as initial state.
void read_slope_zt(Files& files, const Listing& lst, const Grid& g, bool seabed_temps, ForcingTables& t,
                   std::vector<double>& heat_fc, Fields& f);
// kgo 1-3: coordinates and fields from therm_in.data; `fixed_from_file` lets the heads
// also replace the flow fixed values.
void read_restart(Files& files, const Listing& lst, const Options& opt, Grid& g, Fields& f,
                  bool fixed_from_file, std::vector<double>& flow_fc);
