#pragma once
#include "solver/pattern.hpp"

#include <array>
#include <vector>

// Boundary index of one field (flow, heat or mass): which nodes are fixed and at what
// value, the nodal boundary fluxes, the equation numbering of the free nodes and the
// pattern of the condensed matrix.  Equation of free node i: i - ncum[i].
struct FieldIndex {
    int ktype = 0;                 // 0 flow (head), 1 heat (temperature), 2 mass (concentration)
    std::array<int, 8> kb{};       // boundary code of faces 1-6 and of the internal position 7
    std::vector<int> idir;         // 1 = node fixed (Dirichlet), 0 = free
    std::vector<double> fc;        // fixed value of a fixed node
    std::vector<double> qnode;     // nodal boundary flux times the node's face area
    std::vector<int> ncum;         // fixed nodes up to and including node i
    int nn = 0;                    // nodes of the field's grid
    int ndirn = 0;                 // fixed nodes
    int neq = 0;                   // degrees of freedom, nn - ndirn
    int kbtop = 0;                 // -1 when kb(6) = 4 (top thermally leaky for heat)
    double last_value = 0;         // value of the last Dirichlet patch read (-999: cosine surface)
    LowerPattern pat;              // ia, ja
    ElementPositions epos;         // brick slots in pat for transport assembly; remade with pat
};

// Cosine head on the top face (code 6, flow only): the parameters of the last record,
// kept for the surface forcing.
struct CosineHead {
    int ix1 = 0, ix2 = 0;          // x-node range of the last record
    double rise = 0;               // watertable rise (m)
    double amp_cos = 0, amp_sin = 0;    // amplitudes (m)
    double wave_cos = 0, wave_sin = 0;  // wave fractions over the x range
    double slope = 0;              // linear slope
    double phase = 0;              // phase shift (rad)
    int several = 0;               // -1 when more than one record was given
};

// Scratch over the positions of one face, shared by the calls; areacol keeps the areas
// of the last face processed.
struct FaceScratch {
    std::vector<double> rechcol;   // patch values by face position
    std::vector<double> areacol;   // tributary area by face position
};
