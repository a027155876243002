#pragma once
#include "base/listing.hpp"
#include "input/record_reader.hpp"

#include <vector>

// The records of one time interval, read at its start.
struct IntervalRecord {
    double t1 = 0, t2 = 0, dt = 0;  // interval start, end and step (days)
    int k2dfreq = 0;                // steps between section plots
    int kflowfreq = 0;              // steps between flow solves
    int k3dfreq = 0;                // steps between 3D outputs
    int kmomfreq = 0;               // steps between moment outputs
    int more = 0;                   // > 0: another interval follows
    double hinc = 0, rinc = 0;      // head increment, recharge factor
    double rtdiff = 0;              // surface temperature offset
    double bzfmult = 0;             // conductance layer flux factor
};
struct PatchRecord { int i1 = 0, i2 = 0, j1 = 0, j2 = 0; double tpatch = 0; };
struct HeaterRecord {
    int i1 = 0, i2 = 0, j1 = 0, j2 = 0, k1 = 0, k2 = 0;  // element index ranges
    double fluxin1 = 0;   // surface heat flux (W/m2)
    double fluxin2 = 0;   // volumetric heat flux (W/m3)
    double decay2 = 0;    // exponential source decay
};
struct SourceRecord { int i = 0, j = 0, k1 = 0, k2 = 0; double qs = 0, ts = 0, cs = 0; };

// T1, with its checks; end of file on it has its own words.
void read_interval_times(RecordReader& rd, const Listing& lst, IntervalRecord& iv);
// T2.
void read_interval_changes(RecordReader& rd, const Listing& lst, IntervalRecord& iv);
// One T3 patch record; returns false when the list ends with it (an index 0 or more <= 0).
bool read_patch(RecordReader& rd, const Listing& lst, PatchRecord& p, bool& active);
// One T4 heater record and its `more`.
void read_heater(RecordReader& rd, const Listing& lst, HeaterRecord& h, int& more);
// One T5 source record and its `more`.
void read_source(RecordReader& rd, const Listing& lst, SourceRecord& s, int& more);
