#pragma once
#include <string>
#include <vector>

// State of the result files across a run: the record buffer every writer builds in, the
// zone and record counters behind the shared-coordinate zones and the 9999 placeholders,
// the running peak maps, and the values that the deformation hands to the files.  Those
// start at zero and print as zero until the step that computes them fills them in.

struct PlotOutputs {
    std::string rec;                     // records are built here and written in blocks

    // zones written so far: the first carries the coordinates, later ones share them
    int zones_txz = 0, zones_cxz = 0, zones_tdif = 0, zones_txy = 0, zones_hxy = 0, zones_tpeak = 0;
    int zones_peclet = 0, movie_frames = 0;
    // records behind the open-ended zone counts
    int n_htot = 0, n_peak = 0, n_bndy = 0, n_mass = 0;
    int n_t1dz = 0, n_t1dx = 0;          // profiles in the two vertical and horizontal time plots
    bool t1dz_on = false, t1dx_on = false;  // the time plot has its header

    std::vector<double> tpk, tmin;       // by column c = (ix-1)*ny + iy: extremes of T so far

};
