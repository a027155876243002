#pragma once
#include "control/files.hpp"
#include "control/options.hpp"
#include "element/tables.hpp"
#include "flow/field_index.hpp"
#include "grid/fractures.hpp"
#include "grid/grid.hpp"
#include "grid/properties.hpp"
#include "input/deck.hpp"

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
};

// A whole run in directory dir, console trace to `console`; returns the exit status.
int run_gelmor(const std::filesystem::path& dir, std::ostream& console);
