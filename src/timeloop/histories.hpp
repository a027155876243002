#pragma once
#include "base/fields.hpp"
#include "base/listing.hpp"
#include "grid/grid.hpp"
#include "input/deck.hpp"
#include "timeloop/sources.hpp"

#include <array>
#include <vector>

// Per-step histories kept in memory and written at the end of a run: monitor wells, the
// freezing front along a line, and the mean temperature around the heater columns.  Kept
// in single precision like the files they feed; step n of the run is index n.

struct Histories {
    int nbt = 0;                      // monitor wells
    long long cap = 0;                // steps the arrays hold; they grow by doubling
    std::vector<float> ttime;         // tdays of step n
    // well w at step n: [(n-1)*nbt + w]
    std::vector<float> tavgw, havgw;  // mean temperature and head over the screen
    std::vector<float> tpeakw, tminw; // extremes of temperature on the screen
    std::vector<float> cpeakw, cminw; // extremes of concentration on the screen
    std::vector<float> xfront;        // x of the freezing front along the row knoy(1), knoz(1)
    std::vector<float> zfront1;       // depth of the first node above Ts, down the column knox(1), knoy(1)
    std::vector<float> zfront2;       // the same for the first node below Ts
    int maxlev = 0;                   // heater levels a step can have: nezt, at most 500
    int nlev = 0;                     // heater levels of the last step that had heaters
    std::vector<float> hcz;           // 1..maxlev: height of heater level m
    std::vector<float> hct;           // level m at step n: [(n-1)*maxlev + m]; sized at the first heater step
    long long hct_cap = 0;            // steps hct holds
};

// Empty histories for nbt wells on grid g.
void size_histories(Histories& h, int nbt, const Grid& g);

// Makes room for step numit (growing every array geometrically) and records its time.
void record_time(Histories& h, long long numit, double tdays);

// Screen means and extremes of every well at step numit.  Stops when a screen node lies
// off the transport grid.
void record_wells(const Grid& g, const Fields& f, const std::vector<Well>& wells, int ksat, long long numit,
                  Histories& h, const Listing& lst);

// The freezing front at temperature ts on a grid one element wide in y: along x when the
// grid has two z levels, down the column when it has two x rows.
void record_fronts(const Grid& g, const Fields& f, const std::array<int, 6>& knox, const std::array<int, 6>& knoy,
                   const std::array<int, 6>& knoz, double ts, long long numit, Histories& h);

// The 12 cm means of t1 around the heater columns at each element layer far enough from
// both ends of the domain; sets nlev, hcz and the step's hct.
void record_heaters(const Grid& g, const Fields& f, const Sources& s, long long numit, Histories& h);

// Entry of the history of level m (or well w) at step n.
inline float& hist_at(std::vector<float>& v, int per_step, long long n, int m) { return v[(n - 1) * per_step + m]; }
inline float hist_at(const std::vector<float>& v, int per_step, long long n, int m) { return v[(n - 1) * per_step + m]; }
