#pragma once
#include <vector>

// The state of the top surface that the forcing of a step sets and the flow, heat and
// balance steps read.  Columns c = (ix-1)*ny + iy, 1..nxy; all arrays one-based.
struct Forcing {
    std::vector<double> tsurf;          // 1..nx+1: reference surface temperature by x index (C);
                                        // nx+1 is read by the leaky top of the last y row, 0 unless set
    std::vector<double> bz;             // 1..nxy: conductance layer thickness (m)
    std::vector<double> bzflx;          // 1..nxy: surface heat flux (W/m2)
    std::vector<double> bzq;            // 1..nxy: recharge given by bzin.data (m/s)
    std::vector<double> rech;           // 1..nxy: recharge (m/s); 0 until bzin.data sets it
    double rtdiff = 0;                  // recharge temperature minus air temperature (C)
    double sat = 0;                     // saturation of the conductance layer
    double htide = 0;                   // tide level (m)
    double hb = 0;                      // head of the hbdy.data table, kept between steps (m)
    bool lleaky = false;                // the heat top is thermally leaky (heat kb(6) = 4)
};

// All arrays zero for a grid of nx x-rows and nxy columns.
inline void size_forcing(Forcing& f, int nx, int nxy)
{
    f.tsurf.assign(nx + 2, 0.0);
    for (auto* v : {&f.bz, &f.bzflx, &f.bzq, &f.rech}) v->assign(nxy + 1, 0.0);
}
