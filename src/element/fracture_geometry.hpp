#pragma once
#include <span>

// Where a discrete fracture lies on its host brick.  lvert[ifr] is the position code of
// fracture element ifr and ie its host element; `in` is the flat one-based incidence
// (in[(e-1)*8 + i], see incidence.hpp); dxe, dye, dze are the brick sizes.

// Plane fracture on a face of element ie.  fnodes[1..4] get the global nodes round the
// rectangle in the order of the 4x4 fracture tables: first side l1, second side l2;
// asp = l2/l1, area = l1*l2.  Codes 1..6: x-min, x-max, y-min, y-max, lower, upper face.
// Any other code leaves every output as it was.
void facegeo(std::span<const int> lvert, int fnodes[5], std::span<const int> in, int ifr,
             int ie, double& l1, double& l2, std::span<const double> dxe,
             std::span<const double> dye, std::span<const double> dze, double& asp,
             double& area);

// Line fracture on an edge of element ie: fnodes[1..2] and its length l.  Codes 1..6:
// vertical edge at node 1, x edge 1-2, y edge 1-4, vertical edge at node 4, x edge 4-3,
// y edge 2-3.  Any other code leaves the outputs as they were.
void edgegeo(std::span<const int> lvert, int fnodes[3], std::span<const int> in, int ifr,
             int ie, double& l, std::span<const double> dxe, std::span<const double> dye,
             std::span<const double> dze);
