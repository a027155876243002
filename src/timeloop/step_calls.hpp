#pragma once
#include "base/listing.hpp"

struct RunState;

// The physics and output steps the time loop calls, each in its place of a step.  Steps
// whose subsystem is not built yet keep the state as it is.

// Setup: plot headers, the t = 0 plots and the initial heat content.
void initial_output(RunState& rs, const Listing& lst);

// Surface forcing of a step: air temperature, conductance layer, top temperatures,
// saturation and tide.
void apply_forcing(RunState& rs, const Listing& lst);
// Boundary heads of a step: the hbdy.data table and the cosine head of the top.
void update_boundary_heads(RunState& rs, const Listing& lst);
// Assembles and solves the flow system for the heads u.
void flow_solve(RunState& rs, const Listing& lst, const Console& con);
// Free water table: true when the top of every free column sits on its water table;
// otherwise moves the tops.
bool water_table_converged(RunState& rs, const Listing& lst);
void water_table_move(RunState& rs, const Listing& lst);
// Element and fracture pore velocities from the heads.
void compute_velocities(RunState& rs, const Listing& lst);
void compute_fracture_velocities(RunState& rs, const Listing& lst);
void uniform_fracture_velocities(RunState& rs);
// Exit boundaries of a saturated age run.
void age_exit_rule(RunState& rs, const Listing& lst);
// Transport steps of one pass.
void heat_transport_v1(RunState& rs, const Listing& lst, const Console& con);
void heat_transport_v2(RunState& rs, const Listing& lst, const Console& con);
void deformation_update(RunState& rs, const Listing& lst);
void mass_transport(RunState& rs, const Listing& lst, const Console& con);
// After the iteration: free exit switching of the top and the column settlement.
void node_type_change(RunState& rs, const Listing& lst);
void dztot_update(RunState& rs, const Listing& lst);
// Outputs and balances of a step.
void peclet_courant_plot(RunState& rs);
void velocity_files(RunState& rs);
void balances(RunState& rs, const Listing& lst);
void update_element_volumes(RunState& rs, const Listing& lst);
void step_output(RunState& rs, const Listing& lst);
// End of run: summary files and recovery summaries.
void final_summaries(RunState& rs, const Listing& lst);
