#pragma once
#include <span>
#include <vector>

#include "base/fields.hpp"
#include "base/listing.hpp"
#include "element/tables.hpp"
#include "flow/field_index.hpp"
#include "flow/velocities.hpp"
#include "grid/fractures.hpp"
#include "grid/grid.hpp"
#include "grid/properties.hpp"
#include "solver/solver_work.hpp"
#include "transport/element_matrices.hpp"

// What a mass or age step reads besides the grid, media and fields.
struct MassParams {
    int kint = 0;          // 0 integration tables, 1 Gauss points
    bool lmass = false;    // concentration: tiny values are cleared; age is not
    Dispersivity disp;     // dispersivities and tensor form
    double dd = 0;         // molecular diffusion (m^2/s)
    double ret = 1;        // retardation R
    double decay = 0;      // first-order decay (1/s)
    double agefx = 0;      // zero-order growth (age per second)
    TransportScheme scheme;
};

// Nodal fluid sources by transport node: strength (> 0 injection) and its concentration.
struct MassSources {
    std::span<const double> qsrc, csrc;
};

// One pass of a mass (or age) step: assembles the bricks and fracture elements of the
// transport grid and the injection sources, and solves for f.t2 from f.t20 with the
// incomplete-Cholesky pcg (`steps`, when given, receives its step count).  co0 and co1
// of every element receive R.  cmat is the growth matrix of the tables path, kept
// between calls as it was last written.
void mtran(const Grid& g, Media& m, const Fractures& fr, const Velocities& v, const ElementTables& et,
           const MassParams& mp, const MassSources& src, const FieldIndex& mass, Fields& f, SolverWork& w,
           double cmat[9][9], const Listing& lst, int* steps = nullptr);

// The assembly of mtran alone: w.a and w.b hold the system of the pass, by equation.
void assemble_mass(const Grid& g, Media& m, const Fractures& fr, const Velocities& v, const ElementTables& et,
                   const MassParams& mp, const MassSources& src, const FieldIndex& mass, const Fields& f,
                   SolverWork& w, double cmat[9][9]);
