#pragma once
#include <vector>

#include "base/fields.hpp"
#include "base/listing.hpp"
#include "element/fluid.hpp"
#include "grid/grid.hpp"
#include "grid/properties.hpp"

// Heave and settlement of the surface by freezing and thawing: pore water that turns to
// ice expands by the density ratio, and the columns above move by the sum of their
// elements' share.  Columns c = (ix-1)*ny + iy; all arrays one-based.
struct Deformation {
    std::vector<double> dzcol;    // 1..nxy: movement of each column in the pass (m, + = settlement)
    std::vector<double> dztot;    // 1..nxy: movement in all (m, + = heave, - = settlement)
    std::vector<double> dzel;     // 1..net: each element's share of the last movement (m)
    std::vector<int> ncolcnt;     // 1..nxy: element stacks whose top touches the column (1, 2, 4)
    double dmin = 0, dmax = 0;    // extremes of dzcol in the last pass
};

// Sizes the arrays and counts the stacks about each column from the first element layer;
// the per-element heave dzel only when the ground deforms (`deforms`): it stays 0 otherwise.
void size_deformation(Deformation& d, const Grid& g, bool deforms = true);

// New vertical sizes dze of the top `layers` element layers of the transport grid from
// their node heights: the mean height of the four upper nodes over the four lower.
void renew_top_dze(Grid& g, int layers);

// One pass's freeze and thaw movement from the old level t10 to the new t1: dzel of every
// element, dzcol of every column, and the uniform shift of the top min(nzt, 120) nodes of
// each column by dzcol/m.  rhoi is the ice density; lheat gives water its density at the
// mean temperature (1000 kg/m3 otherwise).  `unsat_layers` are the transport-only layers.
void deformation_update(Grid& g, const Media& m, const Fields& f, const FreezeParams& medium, double rhoi,
                        bool lheat, int unsat_layers, Deformation& d);

// Once a step: dztot takes the last pass's column movement; its extremes to the listing.
void dztot_update(const Grid& g, Deformation& d, const Listing& lst);
