#pragma once
#include "base/listing.hpp"
#include "base/options.hpp"
#include "element/fluid.hpp"
#include "grid/fractures.hpp"
#include "grid/grid.hpp"
#include "grid/properties.hpp"
#include "input/record_reader.hpp"

#include <array>
#include <string>
#include <vector>

// Values of the deck records that later phases use.  Each record group is read by its
// own function, in the order the run frame calls them; echoes and checks go with it.
struct Well { int ixw = 0, iyw = 0, izw1 = 0, izw2 = 0; };            // node column and screen range
struct CosineSet {                    // a cosine curve in time with a trend, floored at cutoff
    int ix1 = 0, ix2 = 0;             // x-node range (surface temperature sets only)
    double surfmin = 0, amp = 0, period = 0, phase = 0, cutoff = 0, gradt = 0, gradx = 0;
};
struct InitialBlock { int i1 = 0, i2 = 0, j1 = 0, j2 = 0, k1 = 0, k2 = 0; double t_bot = 0, t_top = 0; };

struct Deck {
    std::array<std::string, 4> title;       // title lines 1..3
    int nwtl = 0;                           // deformable top layers
    double datum = 0;                       // offset of the head scale over the grid (m)
    double gammac = 0;                      // concentration to density coefficient
    std::vector<Well> wells;                // monitor wells, nbt = size
    int init = 0;                           // 1: initial heads from hinput.data
    double h0 = 0;                          // uniform initial head (m)
    double tcon = 0, porsurf = 0, satsurf = 0;  // surface zone conductivity, porosity, saturation
    std::array<CosineSet, 3> tsurf_sets;    // air temperature sets 1..maxs
    CosineSet bz_thick, bz_sat, tide;       // conductance layer thickness, saturation; tide
    int ivel = 0;                           // velocity choice
    double vx0 = 0, vy0 = 0, vz0 = 0;       // given velocity (m/s)
    int iflipv = 1;                         // -1 reverses the velocity field
    double al = 0, alt = 0, ath = 0, atv = 0;  // dispersivities (m)
    double dd = 0;                          // molecular diffusion (m^2/s)
    double ret = 0, decay = 0, agefx = 0;   // retardation, decay (1/s), age growth
    int idisp = 0;                          // 0 Burnett-Frind, 1 Lichtner dispersion tensor
    double cf = 0, pf = 0, ci = 0, rhoi = 0, tclw = 0, tcli = 0, wlh = 0;  // thermal constants
    FreezeParams medium, fracture;          // records 23 and 24
    std::vector<InitialBlock> tinit, cinit; // initial temperature and concentration blocks
    double ccp = 0, cct = 0, ccw = 0, ccc = 0;  // convergence limits
    int maxit1 = 0, maxit2 = 0;             // non-linear and water table iteration limits
    double hext = 0, text = 0, tsearch = 0; // extrapolation factors, tpeak search area
    std::array<int, 6> knox{}, knoy{}, knoz{};  // contour plane node indices 1..5
    std::array<double, 6> tprint3d{};       // 3D print times (days) 1..5
};

// The banner block, written to the listing and then to the console.
std::vector<std::string> banner_lines(const Deck& deck);

void read_titles(RecordReader& rd, const Listing& lst, Deck& deck);
void read_options(RecordReader& rd, const Listing& lst, Options& opt);
void read_grid_definition(RecordReader& rd, const Listing& lst, Grid& g);
void read_datum_record(RecordReader& rd, const Listing& lst, const Grid& g, Deck& deck);
void read_wells(RecordReader& rd, const Listing& lst, Deck& deck);
// The fracture records, each built into fracture elements and drawn into the geometry
// files (xz, xy) as soon as it is read.
void read_fractures(RecordReader& rd, const Listing& lst, bool unsat, const Grid& g, Fractures& fr,
                    std::ostream& xz, std::ostream& xy);
// The property ranges and then the indexed blocks, each applied as it is read.
void read_properties(RecordReader& rd, const Listing& lst, bool unsat, const Grid& g, Media& m);
void read_storage(RecordReader& rd, const Listing& lst, Media& m);
void read_init_head(RecordReader& rd, const Listing& lst, Deck& deck);
void read_surface_records(RecordReader& rd, const Listing& lst, bool leaky, Deck& deck);
void read_velocity_choice(RecordReader& rd, const Listing& lst, const Options& opt, Deck& deck);
void read_transport_constants(RecordReader& rd, const Listing& lst, const Options& opt, Deck& deck);
void read_initial_blocks(RecordReader& rd, const Listing& lst, const Options& opt, const Grid& g, Deck& deck);
void read_iteration_control(RecordReader& rd, const Listing& lst, const Grid& g, Deck& deck);
