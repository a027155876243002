#include "element/function_table.hpp"

#include <string>

#include "output/fortran_format.hpp"

namespace {
void put(std::ostream& os, const std::string& rec) { os << rec << '\n'; }
}  // namespace

void write_function_table(std::ostream& os, const FreezeParams& medium,
                          const ThermalConstants& tc, const FluidSwitches& fs, double por,
                          double sw, double csol, double tkmax)
{
    put(os, free_line("variables=\"Temp\",\"pw(kg/m3)\",\"rden(T,C=0)\",\"rden(T,C=1)\", "
                      "\"rvisc_w(T)\",\"Wu(T)\",\"dWu(T)\",\"tk(T)\",\"Co(T)\""));
    put(os, free_line("zone i= 500"));
    for (int i = 1; i <= 500; ++i) {
        // the temperature steps are formed in single precision, then widened
        const float prod = 0.06f * (float)i;
        const float tf = prod - 5.0f;
        const double T = (double)tf;
        const double wu = Wu(T, medium);
        FreeLine fl;
        fl << T << pw(T, fs.lheat) << rden(T, 0.0, fs.gammac, fs.lheat, fs.lmass)
           << rden(T, 1.0, fs.gammac, fs.lheat, fs.lmass) << rvisc_w(T, fs.lheat) << wu
           << dWu(T, medium) << tk(wu, por, sw, tc.tclw, tc.tcli, tkmax)
           << Co(T, por, sw, csol, medium, tc, fs.lheat);
        put(os, fl.str());
    }
}
