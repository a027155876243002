#pragma once
#include <vector>

// Pore velocities: one vector per element of the transport grid, and the velocities
// of the fracture elements (along a line, or in the plane of a plane fracture).
struct Velocities {
    std::vector<double> vx, vy, vz;  // by element 1..net (m/s)
    std::vector<double> vlin;        // line fractures, by fracture element
    std::vector<double> vx2d, vy2d;  // plane fractures, in-plane components
};
