#pragma once
#include <ostream>
#include <vector>

#include "base/listing.hpp"
#include "grid/grid.hpp"

// Discrete fractures: 1D pipes along brick edges and 2D planes on brick faces.  They add
// no nodes; each fracture element is a (brick, code) pair with its own conductivity and
// cross-section, added on top of the brick matrices by the assemblers.

// One fracture record as read: element index ranges of the flow grid, dimension,
// location code and aperture.
struct FractureRecord {
    int ilx1 = 0, ilx2 = 0, ily1 = 0, ily2 = 0, ilz1 = 0, ilz2 = 0;  // element index ranges
    int idim = 0;         // 1 line (pipe), 2 plane
    int iloc = 0;         // plane: face 1..6 (x-min, x-max, y-min, y-max, lower, upper);
                          // line: direction 1, 2, 3 = z, x, y
    double aperture = 0;  // m: pipe diameter, or plane opening 2b
};

// The fracture elements l = 1..nfrac, in the order the records generate them.
struct Fractures {
    int nfrac = 0;              // fracture elements
    int nskip = 0;              // (element, code) pairs given more than once
    std::vector<double> ck;     // conductivity (m/s at 0 C)
    std::vector<double> xarea;  // cross-section: m^2 for a line, the aperture (m) for a plane
    std::vector<int> lvert;     // iloc of the record: face of a plane, direction of a line
    std::vector<int> ifracl;    // host brick element number (flow grid)
    std::vector<int> ifdim;     // 1 line, 2 plane
    std::vector<char> lfrac;    // pair in use: lfrac[(e-1)*6 + iloc], e = 1..ne, iloc = 1..6
    int ne = 0;                 // bricks covered by lfrac

    double gk = 0;         // specific weight over viscosity at the reference state (1/(m s))
    double ck_rec = 0;     // conductivity of the last line or plane record
    double xarea_rec = 0;  // cross-section of the last line or plane record
};

inline char& lfrac_at(Fractures& fr, int e, int iloc) { return fr.lfrac[(e - 1) * 6 + iloc]; }

// Clears the tables for a flow grid of ne bricks and sets gk for this kmass.
void size_fractures(Fractures& fr, int ne, int kmass, bool lheat);

// gk = 10 pw(T) / (rvisc_w(0) 160/86400): gravity 10 over the viscosity of water at 0 C
// (the relative value times 160/86400 kg/m/s), with T = 0 C for solute or age runs
// (kmass 1..3) and the density maximum 4 C otherwise.
double fracture_gk(int kmass, bool lheat);

// A record with any index 0 stands for no fracture: the dummy of an empty list.
bool is_dummy(const FractureRecord& r);

// One record after its read: echo, checks, generation of its elements, the running plane
// counts, and its block in each geometry file (xz, xy).  A dummy record (a zero index)
// does nothing.  Stops the run on a record inside the unsaturated zone, on an index
// below 1, on a location code outside 1..6 for a record that generates elements, and
// once nfrac passes maxfrac.
void fracture_record(FractureRecord r, bool unsat, const Grid& g, Fractures& fr, const Listing& lst,
                     std::ostream& xz, std::ostream& xy);

// The geometry block(s) of one record, with indices already truncated to the grid: a
// segment in the xz file (x, z) and/or one in the xy file (x, y), by (idim, iloc).
void write_fracture_geometry(const FractureRecord& r, const Grid& g, std::ostream& xz, std::ostream& xy);

// The closing report: duplicates, count, the first 100 elements and the last 100 (101
// rows once nfrac passes 100).
void fracture_summary(const Fractures& fr, const Listing& lst);
