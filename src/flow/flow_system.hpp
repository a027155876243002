#pragma once
#include "base/fields.hpp"
#include "base/listing.hpp"
#include "element/fluid.hpp"
#include "element/tables.hpp"
#include "flow/field_index.hpp"
#include "grid/fractures.hpp"
#include "grid/grid.hpp"
#include "grid/properties.hpp"
#include "solver/solver_work.hpp"

#include <vector>

// What the flow step reads besides the grid, the media and the fields: the switches of
// the density and viscosity couplings, the freezing parameters and the step length.
struct FlowParams {
    int kint = 0;               // 0 closed-form element matrices, 1 Gauss points
    bool lheat = false;         // density and viscosity follow temperature
    bool lmass = false;         // density follows concentration
    double gammac = 0;          // density increase per unit concentration
    bool lkr1top = false;       // the top element layer keeps kr = 1
    FreezeParams medium;        // Wu and kr of the porous medium
    FreezeParams fracture;      // Wu and kr parameters of the fractures
    double dtinv = 0;           // 1/dt (1/s)
};

// Coefficients of the flow equation in one hexahedron, from its nodal temperatures and
// concentrations: kr from the element mean of Wu, relative viscosity and the buoyancy
// term of the mean temperature and concentration.
struct ElementFlow {
    double wu = 1;   // unfrozen moisture
    double kr = 1;   // relative permeability
    double rv = 1;   // relative viscosity
    double r = 0;    // buoyancy, relative density excess
};

// Relative viscosity of water at T (C) and the temperature part of the density excess
// relative to 4 C, written out as the flow step has always used them.
inline double flow_viscosity(double T) { return std::exp((0.0001303 * T - 0.03073) * T); }
inline double flow_buoyancy_T(double T)
{
    const double t4 = T - 4.0;
    return t4 * (t4 * 2.166e-08 - 6.562e-06) * t4;
}

// One implicit step of the head equation div(K kr/rv (grad h + r e_z)) + Q = ss Wu dh/dt
// on the flow grid with hexahedra and fractures, solved for f.u from f.u as start vector;
// f.u0 is the head at the start of the step.  qsrc are the nodal sources by transport node.
// bs is a work column of at least neq+1 values, which may be w.work (the solve starts
// after bs is spent); `steps`, when given, receives the solver's step count.
// The assembly of flow_step alone: w.a and w.b hold the system, by equation.
void assemble_flow(const Grid& g, const Media& m, const Fractures& fr, const ElementTables& et, const FlowParams& fp,
                   const std::vector<double>& qsrc, const FieldIndex& flow, const Fields& f, SolverWork& w,
                   std::vector<double>& bs);

void flow_step(const Grid& g, const Media& m, const Fractures& fr, const ElementTables& et, const FlowParams& fp,
               const std::vector<double>& qsrc, const FieldIndex& flow, Fields& f, SolverWork& w,
               std::vector<double>& bs, const Console& con, const Listing& lst, int* steps = nullptr);
