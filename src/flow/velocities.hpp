#pragma once
#include <vector>

// Pore velocities: one vector per element of the transport grid, and the velocities
// of the fracture elements (along a line, or in the plane of a plane fracture).
struct Velocities {
    std::vector<double> vx, vy, vz;  // by element 1..net (m/s)
    std::vector<double> vlin;        // line fractures, by fracture element
    std::vector<double> vx2d, vy2d;  // plane fractures, in-plane components
};

#include "base/fields.hpp"
#include "element/tables.hpp"
#include "grid/fractures.hpp"
#include "grid/grid.hpp"
#include "grid/properties.hpp"

struct FlowParams;

// Pore velocities of the flow elements from the heads: Darcy flux K kr/rv (grad h + r e_z)
// over Wu por, at the element centre (kintv 0, magnitudes below 1e-40 raised to +1e-40)
// or as the mean over the 2x2x2 Gauss points (kintv 1).  Other kintv leave them as they are.
void element_velocities(const Grid& g, const Media& m, const ElementTables& et, const FlowParams& fp, int kintv,
                        const Fields& f, Velocities& v);
// Velocities along the line fractures and in the planes of the plane fractures.
void fracture_velocities(const Grid& g, const Media& m, const Fractures& fr, const FlowParams& fp, const Fields& f,
                         Velocities& v);
