#include "timeloop/step_calls.hpp"

#include "control/run_state.hpp"

void initial_output(RunState&, const Listing&) {}
void apply_forcing(RunState&, const Listing&) {}
void update_boundary_heads(RunState&, const Listing&) {}
void flow_solve(RunState&, const Listing&, const Console&) {}
bool water_table_converged(RunState&, const Listing&) { return true; }
void water_table_move(RunState&, const Listing&) {}
void compute_velocities(RunState&, const Listing&) {}
void fracture_velocities(RunState&, const Listing&) {}
void uniform_fracture_velocities(RunState&) {}
void age_exit_rule(RunState&, const Listing&) {}
void heat_transport_v1(RunState&, const Listing&, const Console&) {}
void heat_transport_v2(RunState&, const Listing&, const Console&) {}
void deformation_update(RunState&, const Listing&) {}
void mass_transport(RunState&, const Listing&, const Console&) {}
void node_type_change(RunState&, const Listing&) {}
void dztot_update(RunState&, const Listing&) {}
void peclet_courant_plot(RunState&) {}
void velocity_files(RunState&) {}
void balances(RunState&, const Listing&) {}
void update_element_volumes(RunState&, const Listing&) {}
void step_output(RunState&, const Listing&) {}
void final_summaries(RunState&, const Listing&) {}
