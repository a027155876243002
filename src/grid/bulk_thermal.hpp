#pragma once
#include "base/fields.hpp"
#include "base/listing.hpp"
#include "element/fluid.hpp"
#include "grid/grid.hpp"
#include "grid/properties.hpp"

// Bulk thermal conductivity of every transport element at the mean of its eight nodal
// temperatures (both stored levels), by the square-root mixing of water, ice and solid;
// the limits go to the listing and a bulk conductivity of 0 or below stops the run.
// Fills tkel and the largest value, tkmax.
void bulk_thermal_conductivity(const Grid& g, const Fields& f, const FreezeParams& medium, const ThermalConstants& tc,
                               Media& m, const Listing& lst);

// The derived thermal parameters of element 1 at the temperature of its first node,
// printed once for information.
void derived_parameters(const Grid& g, const Fields& f, const FreezeParams& medium, const ThermalConstants& tc,
                        bool lheat, double porsurf, double satsurf, const Media& m, const Listing& lst);
