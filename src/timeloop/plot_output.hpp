#pragma once

struct RunState;

// The result files of a run, in the order a run writes them.  Each file has its fixed
// unit; a file whose content this run can never produce (no section slot, no solute, a
// flow-only run for temperature plots) keeps no header either and stays empty.

// Units of the result files.
namespace plot_unit {
constexpr int txz = 8, hxz = 9, tbck = 11, vxz = 12, txy = 14, tyz = 16, peak = 18, htot = 19, t1dz = 20,
              hyz = 21, vfracxz = 22, tdif = 25, tc3d1 = 26, t1dx = 31, v3d = 32, vfracxy = 33, vxy = 34,
              movie = 35, vyz = 36, mass = 40, tpeak = 41, t1dz_tdum = 43, surface_flux = 44, hxy = 46,
              t1dx_tdum = 49, kplot = 51, vfracset1 = 52, bndy = 54, peclet = 59, hflux_xl = 60, bzq = 61,
              cxz = 62, heatfluxtop = 63, debug_1dx = 88, brk = 15, xfront = 42, heater_z = 55,
              heater_t = 56, zfront = 58;
}

// Setup: the headers, the t = 0 sections and profiles, the first heat total record and
// the first profile of each time plot.
void initial_plot_output(RunState& rs);
// After the balances of a step: peak line, heat totals, the sections of a plot step, the
// moment-step maps, the time plots, the field files of a print time, the movie frame and
// the mass sums.
void step_plot_output(RunState& rs);
// The Peclet and Courant numbers of the step.
void peclet_output(RunState& rs);
// The 2-D vector files, and at a print time the 3-D one.
void velocity_output(RunState& rs);
// End of a run: fracture velocities, the closing count lines, and the time plots
// rewritten with their true profile counts.
void end_plot_output(RunState& rs);
