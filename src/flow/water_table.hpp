#pragma once
#include <vector>

#include "base/listing.hpp"
#include "grid/grid.hpp"

// The free water table: the top nwtl element layers of every free column deform so that
// the column's top node sits where its head puts the water table, head + datum.
struct WaterTable {
    int kwt = 0;                 // 1 every column free, 2 columns whose top was not fixed at setup
    int nwtl = 0;                // deforming element layers under the top of the flow grid
    double datum = 0;            // height of head 0 on the grid's z axis (m)
    double ccw = 0;              // largest mismatch of a converged table (m)
    const std::vector<int>* kwtcol = nullptr;  // flow type of each column's top node at setup
    int unsat_layers = 0;        // transport-only layers above the flow grid (ksat 0)
};

// The largest mismatch head + datum - z over the free top nodes, with its line; true when
// it is below ccw (no free column passes at once).
bool water_table_test(const Grid& g, const WaterTable& wt, const std::vector<double>& u, const Listing& lst);

// Moves every free column: its deforming layers take equal thickness between the fixed
// node nwtl levels under the top and the water table; the transport-only layers are
// respaced up to the deck's top; dze of the moved layers renewed.  A table at or under
// the bottom of the deforming zone stops the run.
void water_table_move(Grid& g, const WaterTable& wt, const std::vector<double>& u, const Listing& lst);
