#pragma once
#include "base/fields.hpp"
#include "base/files.hpp"
#include "base/options.hpp"
#include "element/tables.hpp"
#include "flow/field_index.hpp"
#include "grid/deformation.hpp"
#include "grid/fractures.hpp"
#include "grid/grid.hpp"
#include "grid/properties.hpp"
#include "flow/velocities.hpp"
#include "input/auxfiles.hpp"
#include "solver/solver_work.hpp"
#include "input/deck.hpp"
#include "output/plot_state.hpp"
#include "timeloop/balances.hpp"
#include "timeloop/forcing.hpp"
#include "timeloop/histories.hpp"
#include "timeloop/sources.hpp"
#include "timeloop/time_loop.hpp"

#include <string>
#include <vector>

// Everything a run holds from start to exit, grouped by subsystem.  Only the run frame
// and the time loop see the whole; each step gets the pieces it reads and writes.
struct RunState {
    Files files;
    Options opt;
    Deck deck;
    ElementTables tables;          // integration templates, filled before any input
    double cmat[9][9] = {};        // growth matrix of direct transport integration, cleared
    Grid grid;
    Fractures frac;                // discrete fracture elements
    Media media;                   // element properties and volumes
    FieldIndex flow, heat, mass;   // boundary index and pattern of each field
    FaceScratch faces;             // face buffers shared by the boundary index calls
    CosineHead wt;                 // cosine head of the flow top, last record
    std::vector<double> fc0;       // flow fixed values as read, the reference boundary heads
    std::vector<int> top_idir;     // flow node type of each column's top node, by column
    Fields f;                      // heads, temperatures, concentrations at three levels
    Deformation defo;              // freeze-thaw movement of the surface
    Velocities vel;                // element and fracture pore velocities
    ForcingTables aux;             // tables of the optional input files
    Forcing forcing;               // top surface state of the step: air, conductance layer, tide
    Sources src;                   // heaters and fluid sources of the interval
    Patches patches;               // surface temperature patches of the interval
    LoopState loop;                // clock and counters of the time loop
    Balances bal;                  // heat and fluid balances, boundary fluxes, mass inventory
    Histories hist;                // per-step series of wells, fronts and heater means
    PlotOutputs plots;             // counters and buffer of the result files
    SolverWork work;               // matrix values, right-hand side and solver work of one solve
};
