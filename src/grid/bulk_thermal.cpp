#include "grid/bulk_thermal.hpp"

#include "base/stop.hpp"
#include "output/fortran_format.hpp"

#include <algorithm>

void bulk_thermal_conductivity(const Grid& g, const Fields& f, const FreezeParams& medium, const ThermalConstants& tc,
                               Media& m, const Listing& lst)
{
    m.tkel.assign(g.net + 1, 0.0);
    double tmin = 0, tmax = 0;
    for (int e = 1; e <= g.net; ++e) {
        double sum = 0;
        for (int a = 1; a <= 8; ++a) {
            const int n = node_at(transport_incidence(g), e, a);
            sum += f.t1[n] + f.t10[n];
        }
        const double T = sum / 16.0;
        const double wu = Wu(T, medium);
        if (e == 1) lst.line(free_line("using square-root thermal K weighting"));
        m.tkel[e] = tk(wu, m.por[e], m.sw[e], tc.tclw, tc.tcli, m.tcx[e]);
        tmin = (e == 1) ? m.tkel[e] : std::min(tmin, m.tkel[e]);
        tmax = (e == 1) ? m.tkel[e] : std::max(tmax, m.tkel[e]);
    }
    m.tkmax = tmax;
    lst.line(free_line("Initial limits for bulk thermal K of porous medium:"));
    lst.line(free_line("minimum thermal K: ", tmin));
    lst.line(free_line("maximum thermal K: ", tmax));
    if (tmin <= 0) stop_run(lst, {"error ... bulk thermal K <= 0", "program stopping ..."});
}

void derived_parameters(const Grid& g, const Fields& f, const FreezeParams& medium, const ThermalConstants& tc,
                        bool lheat, double porsurf, double satsurf, const Media& m, const Listing& lst)
{
    constexpr double undefined = -999.0;
    const double T = f.t1[node_at(transport_incidence(g), 1, 1)];
    const double ww = Wu(T, medium);
    const double por = m.por[1];
    // the saturated capacity fills the pores with water and ice; the unsaturated one
    // takes the surface zone's porosity and saturation
    const double csat = heat_capacity(T, ww, por, 1.0, m.csol[1], tc, lheat);
    const double cunsat = heat_capacity(T, ww, porsurf, satsurf, m.csol[1], tc, lheat);
    const double cfluid = pw(T, lheat) * tc.cf;
    const double diffusivity = csat > 0 ? m.tkel[1] / csat : undefined;
    const double rsat = por * cfluid > 0 ? csat / (por * cfluid) : undefined;
    const double runsat = porsurf * satsurf * cfluid > 0 ? cunsat / (porsurf * satsurf * cfluid) : undefined;
    lst.line(free_line("derived thermal parameters "));
    lst.line(free_line("(at tdays=0, ref temp for pf, element 1)"));
    lst.line(free_line("(-999 = undefined)"));
    lst.line(free_line("sat.   aquifer heat capacity (J/m3/C):  ", csat));
    lst.line(free_line("unsat. aquifer heat capacity:           ", cunsat));
    lst.line(free_line("aquifer thermal diffusivity (m2/s):     ", diffusivity));
    lst.line(free_line("sat.   retardation coefficient:         ", rsat));
    lst.line(free_line("unsat. retardation coefficient (top):   ", runsat));
    lst.line(free_line("latent heat coefficient (L*p*ww):       ", por * tc.rhoi * tc.wlh));
    lst.line(free_line("ww: unfrozen water content:             ", ww));
    lst.line(free_line("wi:   frozen water content:             ", 1.0 - ww));
}
