#pragma once
#include "base/listing.hpp"
#include "flow/field_index.hpp"
#include "grid/grid.hpp"
#include "input/record_reader.hpp"

#include <vector>

// Heater columns and nodal fluid sources of the current interval.
struct Sources {
    int nheat = 0;                 // heater elements over all records
    int nhcol = 0;                 // heater element columns (ix, iy) over all records
    std::vector<int> helem;        // element of heater entry l (transport numbering)
    std::vector<double> fluxin1;   // surface heat flux of entry l (W/m2)
    std::vector<double> fluxin2;   // volumetric heat source of entry l (W/m3)
    std::vector<int> hnode;        // faces the flux acts on: hnode[(l-1)*8 + s], s = 1..8; kept between intervals
    double decay2 = 0;             // read and echoed; no decay law uses it
    int nsrc = 0;                  // source nodes
    std::vector<int> isrc;         // node of source s
    std::vector<double> qsrc, tsrc, csrc;  // by transport node: strength (>0 injection), temperature,
                                           // concentration; empty in an interval with no source
    bool lsrc = false;             // nsrc > 0
};

// Surface temperature patches of an interval.
struct Patches {
    std::vector<int> kbct;         // 1: the top node follows a patch this interval
    double tpatch = 0;             // temperature of the last patch record read
};

// T3: the patch records of an interval; the heat fixed values of the patched top nodes.
void read_patches(RecordReader& rd, const Listing& lst, const Grid& g, FieldIndex& heat, Patches& p);
// T4: heater records, element lists and face nodes, with the interval's totals.
void read_heaters(RecordReader& rd, const Listing& lst, int kmass, const Grid& g, Sources& s);
// T5: source and sink records.
void read_sources(RecordReader& rd, const Listing& lst, const Grid& g, Sources& s);
