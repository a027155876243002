#pragma once
#include "base/listing.hpp"
#include "flow/field_index.hpp"
#include "grid/grid.hpp"
#include "input/auxfiles.hpp"
#include "input/deck.hpp"
#include "timeloop/intervals.hpp"
#include "timeloop/sources.hpp"

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
    double bzfmult = 0;                 // factor of the interval on the tabled surface heat flux
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

// Position of time t in a table of times time(1..n): i = n when t lies beyond the last
// time, else the first pair time(i) < t <= time(i+1) and the fraction f along it.  False
// at or before the first time (and for a table without such a pair): the tabled
// quantity then keeps the value it has.
template <typename Time>
bool table_position(int n, const Time& time, double t, int& i, double& f)
{
    if (n < 1) return false;
    if (t > time(n)) {
        i = n;
        f = 0;
        return true;
    }
    for (i = 1; i < n; ++i)
        if (time(i) < t && t <= time(i + 1)) {
            f = (t - time(i)) / (time(i + 1) - time(i));
            return true;
        }
    return false;
}

// A (time, value) table at t: the last value beyond the end, linear inside; v is left
// alone, and the result false, at or before the first time.
bool table_value(const std::vector<double>& tt, const std::vector<double>& tv, int n, double t, double& v);

// The interval's changes of the top: hinc on every fixed head (a cosine top scales its
// amplitude by hinc instead), rinc on the recharge unless bzin.data drives it, and the
// interval's rtdiff and bzfmult as the start of the step forcing.
void start_interval_forcing(const IntervalRecord& iv, bool lbzin, const Grid& g, FieldIndex& flow, Forcing& fo);

// What the forcing of a step reads besides the arrays it sets.
struct SurfaceInputs {
    const Deck& d;                         // cosine sets of air, layer thickness, saturation, tide
    const ForcingTables& aux;              // tair.data, bzin.data
    const Grid& g;
    const Patches& patches;                // kbct and tpatch of the interval
    const std::vector<double>& areacol;    // plan area of each top column
    int ktair = 0;                         // not 0: air temperature from tair.data
    double tdays = 0;                      // time of the step (days)
};

// The top surface of a step: air temperature, conductance layer and recharge, the top
// temperature boundary values, saturation and tide, with their echo.  Stops when a leaky
// top is left without a positive layer thickness or saturation.
void surface_forcing(const SurfaceInputs& in, Forcing& fo, std::vector<double>& heat_fc,
                     std::vector<double>& flow_qnode, const Listing& lst);

// Fixed heads of a cosine top (flow kb(6) = 6) for the step: the hbdy.data head with its
// right plane and new slope when that table exists, then the top row regenerated with
// the amplitude scaled by hinc.  Nothing on any other top.
void boundary_heads(const ForcingTables& aux, const Grid& g, double tdays, double hinc, CosineHead& wt,
                    Forcing& fo, FieldIndex& flow, const Listing& lst);
