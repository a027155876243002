#pragma once
#include <span>
#include <vector>

#include "base/fields.hpp"
#include "base/listing.hpp"
#include "element/fluid.hpp"
#include "element/tables.hpp"
#include "flow/field_index.hpp"
#include "flow/velocities.hpp"
#include "grid/fractures.hpp"
#include "grid/grid.hpp"
#include "grid/properties.hpp"
#include "solver/solver_work.hpp"
#include "transport/element_matrices.hpp"

// What a heat step reads besides the grid, media and fields.
struct HeatParams {
    int kint = 0;                 // 0 integration tables, 1 Gauss points
    bool lheat = true;            // water density follows temperature
    Dispersivity disp;            // dispersivities and tensor form
    double dd = 0;                // molecular diffusion (m^2/s)
    double decay = 0, agefx = 0;  // first-order decay (1/s) and zero-order growth of the tables path
    FreezeParams medium;          // unfrozen moisture of the porous medium
    FreezeParams fracture;        // and of the fractures
    ThermalConstants tc;          // cf, cice, rhoi, tclw, tcli, wlh
    TransportScheme scheme;
};

// The thermally leaky top: a conductance layer of thickness bz between each top node and
// the air, and the recharge entering at its own temperature.
struct HeatTop {
    bool lleaky = false;
    double tcon = 0;                        // conductivity of the layer (W/m/C)
    double rtdiff = 0;                      // recharge temperature minus air temperature (C)
    std::span<const double> tsurf;          // by x index 1..nx+1 (C)
    std::span<const double> bz, bzflx;      // by column: thickness (m), heat flux (W/m2)
    std::span<const double> rech, areacol;  // by count of free top nodes: recharge (m/s), area (m2)
    std::span<const int> flow_idir;         // flow node types, read at the transport node number
};

// Fluid sources by transport node and the heater entries of the interval.
struct HeatSources {
    std::span<const double> qsrc, tsrc;       // strength (> 0 injection, m3/s), temperature (C)
    int nheat = 0;                            // heater entries
    std::span<const int> helem;               // element of entry l
    std::span<const int> hnode;               // heated face nodes: hnode[(l-1)*8 + s], 0 = none
    std::span<const double> fluxin1, fluxin2; // surface (W/m2) and volumetric (W/m3) heat
};

// One pass of the heat step in heat units, with the latent heat of freezing in the
// apparent heat capacity of the storage term (v1), or divided through by the heat
// capacity of the liquid water as a retarded solute whose storage ignores the latent heat
// (v2).  Solves for f.t1 from f.t10, the last pass f.t1i entering the coefficients;
// writes co0, co1 (apparent heat capacities of both levels) and tkel of every element.
void htran1(const Grid& g, Media& m, const Fractures& fr, const Velocities& v, const ElementTables& et,
            const HeatParams& hp, const HeatTop& top, const HeatSources& src, const FieldIndex& heat, Fields& f,
            SolverWork& w, double cmat[9][9], const Listing& lst, int* steps = nullptr);
void htran2(const Grid& g, Media& m, const Fractures& fr, const Velocities& v, const ElementTables& et,
            const HeatParams& hp, const HeatTop& top, const HeatSources& src, const FieldIndex& heat, Fields& f,
            SolverWork& w, double cmat[9][9], const Listing& lst, int* steps = nullptr);

// The assembly of a heat step alone (version 1 or 2): w.a and w.b hold its system.
void assemble_heat(int version, const Grid& g, Media& m, const Fractures& fr, const Velocities& v,
                   const ElementTables& et, const HeatParams& hp, const HeatTop& top, const HeatSources& src,
                   const FieldIndex& heat, const Fields& f, SolverWork& w, double cmat[9][9], const Listing& lst);
