#pragma once
#include "base/listing.hpp"
#include "flow/field_index.hpp"
#include "input/record_reader.hpp"

#include <vector>

// Reads one field's boundary section from the deck and builds its boundary index and
// matrix pattern.  ktype 0 flow, 1 heat, 2 mass; the grid passed is the flow grid for
// flow and the transport grid otherwise (nz = nzt there), with x, y, z by node.
void mindex(RecordReader& rd, const Listing& lst, int ktype, int nn, int ne, int nx, int ny, int nz,
            const std::vector<int>& inc, const std::vector<double>& x, const std::vector<double>& y,
            const std::vector<double>& z, int nb, FieldIndex& fi, FaceScratch& fs, CosineHead& wt);

// ncum, ndirn, neq from idir.
void count_fixed(FieldIndex& fi);
// The sorted compressed pattern of the free nodes of `ne` elements.  Every overflowing row
// is reported; returns the widest row found (nb + 1 after an overflow).
int build_pattern(const Listing& lst, const std::vector<int>& inc, int ne, int nb, FieldIndex& fi);
