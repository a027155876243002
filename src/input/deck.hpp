#pragma once
#include "control/listing.hpp"
#include "control/options.hpp"
#include "grid/grid.hpp"
#include "input/record_reader.hpp"

#include <array>
#include <string>
#include <vector>

// Values of the deck records that later phases use.  Each record group is read by its
// own function, in the order the run frame calls them; echoes and checks go with it.
struct Well { int ixw = 0, iyw = 0, izw1 = 0, izw2 = 0; };            // node column and screen range
struct FractureRecord {
    int ilx1 = 0, ilx2 = 0, ily1 = 0, ily2 = 0, ilz1 = 0, ilz2 = 0;   // element index ranges
    int idim = 0;             // 1 line, 2 plane
    int iloc = 0;             // face of a plane, direction of a line
    double aperture = 0;      // m
};
struct PropertyValues {
    double ckx = 0, cky = 0, ckz = 0;  // hydraulic conductivity at 0 C (m/s)
    double tcx = 0;                    // solid thermal conductivity
    double cps = 0, ps = 0;            // solid specific heat, solid density
    double theta = 0, satw = 0;        // porosity, saturation
};
struct PropertyRange { int j1 = 0, j2 = 0; PropertyValues v; };              // element number range
struct PropertyBlock { int i1 = 0, i2 = 0, j1 = 0, j2 = 0, k1 = 0, k2 = 0; PropertyValues v; };
struct CosineSet {                    // a cosine curve in time with a trend, floored at cutoff
    int ix1 = 0, ix2 = 0;             // x-node range (surface temperature sets only)
    double surfmin = 0, amp = 0, period = 0, phase = 0, cutoff = 0, gradt = 0, gradx = 0;
};
struct FreezeRecord {                 // unfrozen moisture and relative permeability parameters
    double p = 0, q = 0, Ts = 0, omega = 0;
    int modelwu = 0, modelkr = 0;
};
struct InitialBlock { int i1 = 0, i2 = 0, j1 = 0, j2 = 0, k1 = 0, k2 = 0; double t_bot = 0, t_top = 0; };

struct Deck {
    std::array<std::string, 4> title;       // title lines 1..3
    int nwtl = 0;                           // deformable top layers
    double datum = 0;                       // offset of the head scale over the grid (m)
    double gammac = 0;                      // concentration to density coefficient
    std::vector<Well> wells;                // monitor wells, nbt = size
    std::vector<FractureRecord> fractures;  // fracture records that are not dummies
    std::vector<PropertyRange> prop_ranges;
    std::vector<PropertyBlock> prop_blocks;
    double ss = 0;                          // storage term
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
    FreezeRecord medium, fracture;          // records 23 and 24
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
void read_fractures(RecordReader& rd, const Listing& lst, Deck& deck);
void read_properties(RecordReader& rd, const Listing& lst, Deck& deck);
void read_storage_and_init(RecordReader& rd, const Listing& lst, Deck& deck);
void read_surface_records(RecordReader& rd, const Listing& lst, bool leaky, Deck& deck);
void read_velocity_choice(RecordReader& rd, const Listing& lst, const Options& opt, Deck& deck);
void read_transport_constants(RecordReader& rd, const Listing& lst, const Options& opt, Deck& deck);
void read_initial_blocks(RecordReader& rd, const Listing& lst, const Options& opt, const Grid& g, Deck& deck);
void read_iteration_control(RecordReader& rd, const Listing& lst, const Grid& g, Deck& deck);
