#pragma once
#include <ostream>

#include "element/fluid.hpp"

// The check table of the fluid and freezing functions (gelmor_den_visc_T.plt): a
// variables line, "zone i= 500", then 500 free-format rows of T, pw, rden at C = 0 and
// C = 1, rvisc_w, Wu, dWu, tk and Co, for T = -4.94 to 25 C in steps of 0.06.
// por, sw, csol are those of element 1; medium is the porous-medium parameter set.
// tkmax, the largest bulk conductivity found at start-up, stands in for the solid
// conductivity of the tk column, so the column brackets the conductivities of the run.
void write_function_table(std::ostream& os, const FreezeParams& medium,
                          const ThermalConstants& tc, const FluidSwitches& fs, double por,
                          double sw, double csol, double tkmax);
