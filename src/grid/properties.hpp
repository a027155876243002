#pragma once
#include <istream>
#include <vector>

#include "base/listing.hpp"
#include "grid/grid.hpp"

// Element properties of the medium.  Zones are applied in reading order, so a later zone
// overwrites an earlier one: ranges of element numbers, then blocks of element indices,
// then optional random K and porosity fields.  Hydraulic conductivity is stated at 0 C;
// viscosity and relative permeability scale it at assembly.

// The eight values of a zone record.
struct PropertyValues {
    double ckx = 0, cky = 0, ckz = 0;  // hydraulic conductivity at 0 C (m/s)
    double tcx = 0;                    // solid thermal conductivity (J/m/s/C)
    double cps = 0, ps = 0;            // solid specific heat (J/kg/C), solid density (kg/m3)
    double theta = 0, satw = 0;        // porosity, saturation
};
struct PropertyRange { int j1 = 0, j2 = 0; PropertyValues v; };  // element numbers j1..j2
struct PropertyBlock {                                           // element indices, x fastest
    int i1 = 0, i2 = 0, j1 = 0, j2 = 0, k1 = 0, k2 = 0;
    PropertyValues v;
};

// Per-element arrays, one-based.  The unsaturated layers (elements ne+1..net) carry
// thermal data but no K: no head is solved there.
struct Media {
    int ne = 0;                          // flow elements: K is held for 1..ne
    int net = 0;                         // transport elements: the rest for 1..net
    std::vector<double> ckx, cky, ckz;   // hydraulic conductivity at 0 C (m/s), 1..ne
    std::vector<double> por;             // porosity, 1..net
    std::vector<double> sw;              // saturation, 1..net
    std::vector<double> tcx;             // solid thermal conductivity, 1..net
    std::vector<double> csol;            // solid volumetric heat capacity cps*ps (J/m3/C), 1..net
    double ss = 0;                       // specific storage of the whole domain (1/m)
    std::vector<double> vol;             // element volumes (m^3), 1..net
    double voltot = 0;                   // their sum
    std::vector<double> tkel;            // bulk thermal conductivity (J/m/s/C), 1..net
    std::vector<double> co0, co1;        // per element, written by the transport steps: heat
                                         // capacity at the old level and the last pass, or R
    double tkmax = 0;                    // largest bulk thermal conductivity of the start-up
                                         // state; 0 until initial temperatures give it
};

// Transport element count: the flow elements plus the unsaturated top sub-interval.
// Sizes every array, all zero (an element left out of every zone keeps K = 0 and so fails
// the check).  Stops if the transport grid would pass maxne.
void size_media(Media& m, const Grid& g, bool unsat, const Listing& lst);

// The heads of the two zone lists.
void echo_range_head(const Listing& lst);
void echo_block_head(const Listing& lst);

// One range record after its read: echo, bound checks, storage.
void property_range(const PropertyRange& r, bool unsat, Media& m, const Listing& lst);
// One block record after its read: echo, checks, storage.  Returns false when the record
// holds a zero (or negative) index, which ends the list whatever its `more`.
bool property_block(const PropertyBlock& b, bool unsat, const Grid& g, Media& m, const Listing& lst);

// The fgen92.asc fields for krk > 0: ln K into ckx = cky = ckz, and with krk = 2 ln
// porosity into por, elements 1..ne.  `in` is the open file or nullptr if absent.
void read_random_fields(std::istream* in, int krk, Media& m, const Listing& lst);

// K above 0 and porosity in (0, 1] over the flow elements 1..ne; stops otherwise.
void check_properties(const Media& m, const Listing& lst);
