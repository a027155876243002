#include "output/series_files.hpp"

#include <algorithm>
#include <cmath>

namespace {

// A value handed over by another step, or 0 while that step has not sized its array.
double at(const std::vector<double>& v, int i) { return i < (int)v.size() ? v[i] : 0.0; }

// Mean of a nodal field over the eight nodes of an element.
double element_mean(const std::vector<int>& inc, int e, const std::vector<double>& v)
{
    double s = 0;
    for (int i = 1; i <= 8; ++i) s += v[node_at(inc, e, i)];
    return 0.125 * s;
}

// The centre of a brick: the mean of its corners (exact for the parallel-sided bricks of
// the grid, the usual plotting point for a moved top).
double element_centre(const std::vector<int>& inc, int e, const std::vector<double>& coord)
{
    return element_mean(inc, e, coord);
}

// Zone line of an element map over the surface: i = nex, j = ney.
// The stacks are ordered x fastest, so the map is an ordered nex x ney zone.
void stack_zone(std::string& b, const PlotContext& c)
{
    add(b, "zone i=");
    add_count(b, c.g.nex);
    add(b, ", j=");
    add_count(b, c.g.ney);
    add(b, ", T=\"");
    add_days(b, c.tdays);
    add_line(b, " days\"");
}

// Smallest K(T)kr whose logarithm is plotted: a fully frozen element would give log(0).
constexpr double k_floor = 1.0e-300;

}  // namespace

// The files of one record a step take a zone of 9999 records; the count line at the end
// of the run tells the true number.
void htot_header(std::string& b)
{
    add_line(b, "Title=\"htotr=wrt_Tmpa;htota=wrt_Tref;hinr=pq;hts2=cum_leak2bdy;hqtop=cum_top_recharge\"");
    add_line(b, "variables=\"time\",\"htotr(J)\",\"htota(J)\",\"hinr(J)\" ,\"hts2-leak(J)\",\"hqtop(J)\"");
    add_line(b, "zone i=9999, T=\"htot(J); replace 9999 with bottom #\"");
}
void peak_header(std::string& b)
{
    add_line(b, "variables=\"time(d)\",\"peak temp(C)\",\"minimum temp(C)\"");
    add_line(b, "zone i=9999, T=\"replace with real # on last line\"");
}
void bndy_header(std::string& b)
{
    // no comma between the fourth and fifth names: the reader takes them as one string,
    // and files of every earlier run have the line so
    add_line(b, "variables=\"time\",\"fluxleft (W)\",\"fluxright (W)\",\"Sum_fluxleft (J)\",\"Sum_fluxright (J)\""
                "\"hflxtop (W)\",\"hflxbot (W)\",\"Wu_vol (m3)\",\"Keqleft (m/s)\",\"Keqright(m/s)\"");
    add_line(b, "zone i= 9999,T=\"Boundary Heatfluxes\"");
}
// The mass series keeps its 999 and gets no count line; a user reads the count off the
// rows.
void mass_header(std::string& b)
{
    add_line(b, "title=\"Mass in matrix, fractures and column\"");
    add_line(b, "variables=\"tdays\",\"Mass in matrix (kg)\",\"Mass in fractures\", \"Mass in column\"");
    add_line(b, "zone i=999");
}
void heatfluxtop_header(std::string& b)
{
    add_line(b, "Title=\"convective+conductive heatflux top \"");
    add_line(b, "variables=\"x\",\"y\",\"element_x\",\"alpha\",\"beta\",\"vmag\",\"vperp\",  \"vz\",\"area\",\"Tref2\","
                "\"conv.flux W/m^2\",\"cond.flux W/m2\",\"totalflx W/m2\",\"T(degC)\",\"head(m)\"");
}
void surface_flux_header(std::string& b)
{
    add_line(b, "Title=\"2D conductive heatflux top & bot; + heat leaving\"");
    add_line(b, "variables=\"x\",\"y\",\"fluxtop W/m^2\",\"fluxbot W/m^2\"");
}
void kplot_header(std::string& b)
{
    add_line(b, "title=\"2d K section \"");
    add_line(b, "variables=\"x\",\"z\",\"Ksat\",\"K(T).kr\",\"log(K(T).kr)\",\"porosity\",\"Thermal K_pm\"");
}

// Sixteen columns with eight decimals: heat contents of large domains reach 1e15 J, and
// the step changes must still show against them.
void write_htot(std::ostream& os, double tdays, const HeatTotals& h, std::string& b)
{
    Rows r = begin_rows(os, b, 6, 16, 8);
    for (double v : {tdays, h.htotr, h.htota, h.hinr, h.hts2, h.hqtop}) put(r, v);
    end_rows(r);
}

// The search starts from the limits -999 and 999, so a plane of no nodes shows them.
void write_peak(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    double hi = -999, lo = 999;
    const int iy = c.d.knoy[1];
    if (iy != 0)
        for (int ix = 1; ix <= g.nx; ++ix)
            for (int k = 1; k <= g.nzt; ++k) {
                const double t = c.f.t1[grid_node(ix, iy, k, g.ny, g.nzt)];
                hi = std::max(hi, t);
                lo = std::min(lo, t);
            }
    Rows r = begin_rows(os, b, 3, 16, 8);
    put(r, c.tdays);
    put(r, hi);
    put(r, lo);
    end_rows(r);
}

// Ten fields in one record: the file is read as a plain table by spreadsheet users too.
void write_bndy(std::ostream& os, double tdays, const BoundaryFluxes& q, std::string& b)
{
    Rows r = begin_rows(os, b, 10, 15, 5);
    for (double v : {tdays, q.fluxleft, q.fluxright, q.sumfl, q.sumfr, q.hflxtop, q.hflxbot, q.wu_vol, q.keqleft,
                     q.keqright})
        put(r, v);
    end_rows(r);
}

void write_mass(std::ostream& os, double tdays, const MassSums& m, std::string& b)
{
    Rows r = begin_rows(os, b, 4, 15, 6);
    for (double v : {tdays, m.matrix, m.fractures, m.column}) put(r, v);
    end_rows(r);
}

// A record mixes three formats (centre E12.4, index I6, twelve E15.5), so it is built
// field by field rather than through Rows.  The total is convective plus conductive flux;
// T is the mean of the top element, the head that of the top flow element of the stack
// (the top element may lie in an unsaturated zone that carries no head).
void write_heatfluxtop(std::ostream& os, const PlotContext& c, const TopFluxes& t, std::string& b)
{
    const Grid& g = c.g;
    stack_zone(b, c);
    for (int iy = 1; iy <= g.ney; ++iy)
        for (int ix = 1; ix <= g.nex; ++ix) {
            const int s = (iy - 1) * g.nex + ix;
            const int et = grid_element(ix, iy, g.nezt, g.nex, g.ney);  // top of the stack
            const int ef = grid_element(ix, iy, g.nez, g.nex, g.ney);   // top of its flow part
            append_e(b, element_centre(transport_incidence(g), et, g.x), 12, 4);
            append_e(b, element_centre(transport_incidence(g), et, g.y), 12, 4);
            b += fmt_i(ix, 6);
            const double cond = at(t.cond, s);
            for (double v : {at(t.alpha, s), at(t.beta, s), at(t.vmag, s), at(t.vperp, s), at(c.v.vz, et),
                             at(t.area, s), at(t.tref2, s), at(t.conv, s), cond, at(t.conv, s) + cond,
                             element_mean(transport_incidence(g), et, c.f.t1), element_mean(g.in, ef, c.f.u)})
                append_e(b, v, 15, 5);
            b.push_back('\n');
            if (b.size() >= block_size) write_block(os, b);
        }
    write_block(os, b);
}

// The conductive top flux is the cond column of the top flux table; the bottom flux
// comes from the lowest element of the stack.
void write_surface_flux(std::ostream& os, const PlotContext& c, const TopFluxes& t, std::string& b)
{
    const Grid& g = c.g;
    stack_zone(b, c);
    Rows r = begin_rows(os, b, 4, 15, 6);
    for (int iy = 1; iy <= g.ney; ++iy)
        for (int ix = 1; ix <= g.nex; ++ix) {
            const int s = (iy - 1) * g.nex + ix;
            const int et = grid_element(ix, iy, g.nezt, g.nex, g.ney);
            put(r, element_centre(transport_incidence(g), et, g.x));
            put(r, element_centre(transport_incidence(g), et, g.y));
            put(r, at(t.cond, s));
            put(r, at(t.fbot, s));
        }
    end_rows(r);
}

// K(T)kr is the conductivity at 0 C over the relative viscosity at the element's mean
// temperature, times kr from Wu there: what the flow step sees in that element.
void write_kplot(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    const Media& m = c.m;
    const int iy = c.d.knoy[1] == 0 ? 1 : c.d.knoy[1];
    const int nexy = g.nex * g.ney;
    add(b, "zone i=");
    add_count(b, g.nz);
    add(b, ", j=");
    add_count(b, g.nx);
    add(b, ", T=\"");
    add_days(b, c.tdays);
    add_line(b, " days\"");
    Rows r = begin_rows(os, b, 7, 16, 7);
    for (int ix = 1; ix <= g.nx; ++ix)
        for (int k = 1; k <= g.nz; ++k) {
            // the element of a section node: the first y row of elements, the last element
            // along x and z for nodes on the far faces (exact on a grid one element wide)
            int e = 0;
            if (ix < g.nx && k < g.nz) e = (k - 1) * nexy + ix;
            else if (ix == g.nx && k < g.nz) e = k * nexy - g.ney + 1;
            else if (ix < g.nx) e = (g.nz - 2) * nexy + ix;
            else e = g.ne - g.ney + 1;
            const int n = grid_node(ix, iy, k, g.ny, g.nzt);
            const double t = element_mean(transport_incidence(g), e, c.f.t1);
            const double kt = m.ckx[e] / rvisc_w(t, c.o.lheat) * kr(Wu(t, c.d.medium), m.por[e], c.d.medium);
            for (double v : {g.x[n], g.z[n], m.ckx[e], kt, std::log10(std::max(kt, k_floor)), m.por[e], at(m.tkel, e)})
                put(r, v);
        }
    end_rows(r);
}

// Written after the last record, the count line ends the file: a plotter stops at the
// record count of the zone once the user has put it in.
void write_count_line(std::ostream& os, int count, std::string& b)
{
    add(b, "number of print times: ");
    b += fmt_i(count, 8);
    add_line(b, " (replace 9999 above)");
    write_block(os, b);
}
