#pragma once
#include "base/fields.hpp"
#include "base/listing.hpp"
#include "element/fluid.hpp"
#include "flow/velocities.hpp"
#include "grid/fractures.hpp"
#include "grid/grid.hpp"
#include "grid/properties.hpp"
#include "input/auxfiles.hpp"
#include "timeloop/forcing.hpp"
#include "timeloop/sources.hpp"

#include <vector>

// Heat and fluid balances of the run: the heat stored in the domain against what the
// sources, the conductance layer and the recharge brought in, the fluxes through the
// top, bottom and x faces at the moment steps, the solute inventory, and the recoveries
// at the end.  The result files read these totals; the balance step owns them.

// The record of htot_flux.plt: heat contents and cumulative heat flows (J).
struct HeatTotals {
    double htotr = 0;  // content relative to -273 C
    double htota = 0;  // content relative to tref
    double hinr = 0;   // injected above ambient in the last step
    double hts2 = 0;   // cumulative leak through the conductance layer
    double hqtop = 0;  // cumulative heat carried in by recharge
};

// The record of heatflux_bndy.plt.
struct BoundaryFluxes {
    double fluxleft = 0, fluxright = 0;  // through the x faces (W)
    double sumfl = 0, sumfr = 0;         // their time integrals (J)
    double hflxtop = 0, hflxbot = 0;     // conductive flows through top and bottom (W)
    double wu_vol = 0;                   // unfrozen water volume (m3)
    double keqleft = 0, keqright = 0;    // equivalent conductivities of the x faces (m/s)
};

// Per stack of elements s = (iy-1)*nex + ix: the surface flux terms of the top element.
struct TopFluxes {
    std::vector<double> alpha, beta;     // velocity direction and top slope (rad)
    std::vector<double> vmag, vperp;     // velocity magnitude and its part across the top (m/s)
    std::vector<double> area, tref2;     // top face area (m2), reference temperature (C)
    std::vector<double> conv, cond;      // convective and conductive flux (W/m2)
    std::vector<double> fbot;            // conductive flux through the bottom (W/m2)
};

// The three mass sums of gelmor_mass.out (kg).
struct MassSums { double matrix = 0, fractures = 0, column = 0; };

struct Balances {
    double tref = 0;            // reference temperature: initial T at level nzt/2 of the first column
    HeatTotals heat;            // contents and the flows of htot_flux.plt
    double hincum = 0;          // injected above ambient, cumulative (J)
    double houtcum = 0;         // recovered above ambient, cumulative (J)
    double hexp = 0;            // expected content of this step (J)
    double pc = 0;              // pw cf of the last element of the last content sum (J/m3/C)
    double qin = 0, qout = 0;   // fluid through the sources this step (m3/s)
    bool content_now = false;   // the content was recomputed this step
    BoundaryFluxes bndy;
    TopFluxes top;
    MassSums mass;              // inventory of the last moment step
    MassSums mass0;             // solute inventory of the initial state
};

// What the heat sums read of the deck.
struct BalanceConstants {
    double cf = 0;          // fluid specific heat (J/kg/C)
    double cice = 0;        // volumetric heat capacity of ice (J/m3/C)
    double tcon = 0;        // conductivity of the surface layer (J/m/s/C)
    FreezeParams medium;    // freezing curve of the porous medium
    bool lheat = false;     // the water density follows T
};

// Sizes the per-stack arrays; all totals zero.
void size_balances(Balances& b, const Grid& g);

// htota and htotr from the element means of t1; pc keeps the value of the last element.
void heat_content(const Grid& g, const Media& m, const Fields& f, const BalanceConstants& k, Balances& b);

// The step's source, leak and recharge sums and the expected content; dt in seconds.
void step_balance(const Grid& g, const Fields& f, const Sources& s, const Forcing& fo,
                  const std::vector<double>& areacol, const BalanceConstants& k, int kmass, double dt, Balances& b);

// Conductive and convective fluxes through the top and the bottom of every stack.
void surface_fluxes(const Grid& g, const Media& m, const Fields& f, const Velocities& v, const ForcingTables& aux,
                    const BalanceConstants& k, Balances& b);

// Heat and fluid through the two x faces, their equivalent conductivities and the
// unfrozen water volume; dt in seconds.
void boundary_fluxes(const Grid& g, const Media& m, const Fields& f, const Velocities& v,
                     const BalanceConstants& k, double dt, Balances& b);

// Mass of a nodal field c in the matrix, the fractures and the heater elements.
void mass_inventory(const Grid& g, const Media& m, const Fractures& fr, const Sources& s,
                    const std::vector<double>& c, MassSums& out);

// The recoveries of the run for the listing.
void recovery_summary(const Balances& b, int kmass, int kcntrl, bool lsrc, const Listing& lst);
