#pragma once
#include "base/listing.hpp"
#include "grid/grid.hpp"

struct Options;

// Checks the sub-interval definition, derives and prints the flow grid sizes, and
// checks them against the node, element and column limits.
void grid_sizes(Grid& g, const Options& opt, const Listing& lst);
// The flow-grid pass (kflag 0) or the transport-grid pass (kflag 1): coordinates unless
// they come from an external grid, incidence, element sizes, face lists, nmap or kzt.
void gengrid(Grid& g, int kflag, bool unsat, int kgo);
// Sets the transport sizes (nzt, nezt, nnt, net, nyzt) and sizes the grid arrays.
void size_grid(Grid& g, bool unsat);
