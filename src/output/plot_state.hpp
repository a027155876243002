#pragma once
#include <string>
#include <vector>

// State of the result files across a run: the record buffer every writer builds in, the
// zone and record counters behind the shared-coordinate zones and the 9999 placeholders,
// the running peak maps, and the values that the balances and the deformation hand to
// the files.  Those start at zero and print as zero until the step that computes them
// fills them in.

// The record of htot_flux.plt: heat contents and cumulative heat flows (J).
struct HeatTotals {
    double htotr = 0;  // content relative to -273 C
    double htota = 0;  // content relative to tref
    double hinr = 0;   // injected above ambient in the last step
    double hts2 = 0;   // cumulative leak through the conductance layer
    double hqtop = 0;  // cumulative heat carried in by recharge
};

// The record of heatflux_bndy.plt.
struct BoundaryFluxes {
    double fluxleft = 0, fluxright = 0;  // through the x faces (W)
    double sumfl = 0, sumfr = 0;         // their time integrals (J)
    double hflxtop = 0, hflxbot = 0;     // conductive flows through top and bottom (W)
    double wu_vol = 0;                   // unfrozen water volume (m3)
    double keqleft = 0, keqright = 0;    // equivalent conductivities of the x faces (m/s)
};

// Per stack of elements s = (iy-1)*nex + ix: the surface flux terms of the top element.
struct TopFluxes {
    std::vector<double> alpha, beta;     // velocity direction and top slope (rad)
    std::vector<double> vmag, vperp;     // velocity magnitude and its part across the top (m/s)
    std::vector<double> area, tref2;     // top face area (m2), reference temperature (C)
    std::vector<double> conv, cond;      // convective and conductive flux (W/m2)
    std::vector<double> fbot;            // conductive flux through the bottom (W/m2)
};

// The three mass sums of gelmor_mass.out (kg).
struct MassSums { double matrix = 0, fractures = 0, column = 0; };

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

    HeatTotals heat;
    BoundaryFluxes bndy;
    TopFluxes top;
    MassSums mass;
};
