#include "timeloop/sources.hpp"

#include "base/stop.hpp"
#include "output/fortran_format.hpp"
#include "timeloop/intervals.hpp"

#include <algorithm>

void read_patches(RecordReader& rd, const Listing& lst, const Grid& g, FieldIndex& heat, Patches& p)
{
    p.kbct.assign(g.nnt + 1, 0);
    PatchRecord r;
    bool active = false;
    bool more = true;
    while (more) {
        more = read_patch(rd, lst, r, active);
        lst.line(free_line("patch surface temp: ", r.i1, r.i2, r.j1, r.j2, r.tpatch));
        p.tpatch = r.tpatch;
        if (!active) break;
        for (int ix = r.i1; ix <= r.i2; ++ix)
            for (int iy = r.j1; iy <= r.j2; ++iy) {
                const long long n = ((long long)ix - 1) * g.nyzt + (long long)iy * g.nzt;
                if (n <= 0 || n > g.nnt)
                    stop_run(lst, {free_items("warning - surface temp patch i,j,node ", ix, iy, n), "is not valid",
                                   "program stopping ..."});
                lst.line(free_line("boundary patch node at i,j: ", ix, iy) +
                         (heat.idir[n] == 1 ? " is Dirichlet" : " is leaky"));
                p.kbct[n] = 1;
                heat.fc[n] = r.tpatch;
            }
    }
}

namespace {

// Face nodes of heater entry l in element e: the whole element, or for the outer faces
// of a four-column heater the slots of the faces toward y (1..4) and toward x (5..8).
void set_heater_faces(const HeaterRecord& h, int ix, int iy, int e, const Grid& g, Sources& s, int l)
{
    int* hn = &s.hnode[(l - 1) * 8];  // hn[1..8]
    const auto node = [&](int a) { return node_at(transport_incidence(g), e, a); };
    const bool one_column = h.fluxin1 > 0 && h.i2 == h.i1 && h.j2 == h.j1;
    const bool four_column = h.fluxin1 > 0 && h.i2 > h.i1 && h.j2 > h.j1;
    if (one_column || h.fluxin2 > 0) {
        for (int a = 1; a <= 8; ++a) hn[a] = node(a);
        return;
    }
    if (!four_column) return;
    if (iy == h.j1) { hn[1] = node(1); hn[2] = node(2); hn[3] = node(5); hn[4] = node(6); }
    if (iy == h.j2) { hn[1] = node(3); hn[2] = node(4); hn[3] = node(7); hn[4] = node(8); }
    if (ix == h.i1) { hn[5] = node(4); hn[6] = node(1); hn[7] = node(5); hn[8] = node(8); }
    if (ix == h.i2) { hn[5] = node(2); hn[6] = node(3); hn[7] = node(6); hn[8] = node(7); }
}

}  // namespace

void read_heaters(RecordReader& rd, const Listing& lst, int kmass, const Grid& g, Sources& s)
{
    s.nheat = 0;
    s.nhcol = 0;
    s.decay2 = 0;
    int ncols = 0;
    double area_all = 0, vol_all = 0, flux_all = 0, fpl_all = 0;
    int more = 0;
    do {
        HeaterRecord h;
        read_heater(rd, lst, h, more);
        s.decay2 = h.decay2;
        if (h.i2 > g.nex || h.j2 > g.ney || h.k2 > g.nezt ||
            (kmass == 0 && h.fluxin1 > 0 && (h.j2 - h.j1 > 1 || h.i2 - h.i1 > 1)))
            stop_run(lst, {"error defining internal heat source element range",
                           "check for 1- or 4-column heater, i2.le.nex etc. ...", "program stopping ..."});
        if (h.fluxin1 > 0 && h.fluxin2 > 0)
            stop_run(lst, {"error... should not have both fluxin1 & fluxin2 > 0", "check fluxin1, fluxin2...",
                           "program stopping ..."});
        if (h.i1 <= 0 || h.i2 <= 0 || h.j1 <= 0 || h.j2 <= 0 || h.k1 <= 0 || h.k2 <= 0) {
            lst.line(free_line("0 entry for internal source elements, continuing..."));
            rd.note("an index 0 or below: no heater, the list ends here whatever its more");
            break;
        }
        lst.line(free_line("internal heat source this time interval ... "));
        lst.line(free_line("element range:            ", h.i1, h.i2, h.j1, h.j2, h.k1, h.k2));
        lst.line(free_line("heat flux (W/m^2):        ", h.fluxin1));
        lst.line(free_line("heat flux (W/m^3):        ", h.fluxin2));
        lst.line(free_line("exponential source decay: ", h.decay2));
        const int count = std::max(h.i2 - h.i1 + 1, 0) * std::max(h.j2 - h.j1 + 1, 0) * std::max(h.k2 - h.k1 + 1, 0);
        const int need = s.nheat + count;
        if ((int)s.helem.size() < need + 1) {
            // the lists grow with the heaters, and face slots keep what earlier intervals set
            s.helem.resize(need + 1, 0);
            s.fluxin1.resize(need + 1, 0.0);
            s.fluxin2.resize(need + 1, 0.0);
            s.hnode.resize((std::size_t)need * 8 + 1, 0);
        }
        double height = 0, area = 0, vol = 0;
        for (int ix = h.i1; ix <= h.i2; ++ix)
            for (int iy = h.j1; iy <= h.j2; ++iy)
                for (int iz = h.k1; iz <= h.k2; ++iz) {
                    const int e = grid_element(ix, iy, iz, g.nex, g.ney);
                    const int l = ++s.nheat;
                    s.helem[l] = e;
                    s.fluxin1[l] = h.fluxin1;
                    s.fluxin2[l] = h.fluxin2;
                    height += g.dze[e];
                    set_heater_faces(h, ix, iy, e, g, s, l);
                    double a = (g.dxe[e] + g.dye[e]) * g.dze[e];
                    if (s.hnode[(l - 1) * 8 + 3] == node_at(transport_incidence(g), e, 3)) a *= 2;  // all four sides heated
                    area += a;
                    vol += g.dxe[e] * g.dye[e] * g.dze[e];
                }
        const int columns = std::max(h.i2 - h.i1 + 1, 0) * std::max(h.j2 - h.j1 + 1, 0);
        s.nhcol += columns;
        const double mean_height = columns > 0 ? height / columns : 0.0;
        const double flux = h.fluxin1 * area + h.fluxin2 * vol;
        const double per_length = mean_height != 0 ? flux / mean_height : 0.0;
        lst.line(free_line("number of element layers in this heater ... ", h.k2 - h.k1 + 1));
        lst.line(free_line("vertical height of heater column .......... ", mean_height));
        lst.line(free_line("total surface area of this heater column .. ", area));
        lst.line(free_line("total volume of this heater column ........ ", vol));
        lst.line(free_line("average heat flux per m length (W/m) ...... ", per_length));
        ++ncols;
        area_all += area;
        vol_all += vol;
        flux_all += flux;
        fpl_all += per_length;
    } while (more > 0);
    lst.line(free_line("heater column input data:"));
    lst.line(free_line("total number of heater columns .... ", ncols));
    lst.line(free_line("cumulative # of elements in all heater columns: ", s.nheat));
    lst.line(free_line("total surface area of all heater columns ... ", area_all));
    lst.line(free_line("total volume of all heater columns ......... ", vol_all));
    lst.line(free_line("total heat flux over all columns (W) ....... ", flux_all));
    lst.line(free_line("total flux/m length for all columns (W/m) .. ", fpl_all));
}

void read_sources(RecordReader& rd, const Listing& lst, const Grid& g, Sources& s)
{
    // the nodal arrays exist only while an interval has a source: most runs have none,
    // and on a large grid they are three arrays of the size of the grid
    for (std::vector<double>* v : {&s.qsrc, &s.tsrc, &s.csrc}) std::vector<double>().swap(*v);
    s.isrc.assign(1, 0);
    s.nsrc = 0;
    int more = 0;
    do {
        SourceRecord r;
        read_source(rd, lst, r, more);
        const long long first = ((long long)r.j - 1) * g.nzt + r.k1 + (long long)g.nyzt * ((long long)r.i - 1);
        const long long last = first + (r.k2 - r.k1);
        const bool valid = first > 0 && last <= g.nn && r.k1 <= g.nz && r.k2 <= g.nz && r.j <= g.ny && r.i <= g.nx;
        if (valid) {
            lst.line(free_line("revised source/sink nodes ", (int)first, " to ", (int)last));
            lst.line(free_line("source/sink strength:       ", r.qs));
            lst.line(free_line("            temperature:    ", r.ts));
            lst.line(free_line("            concentration:  ", r.cs));
            if (s.qsrc.empty())
                for (std::vector<double>* v : {&s.qsrc, &s.tsrc, &s.csrc}) v->assign(g.nnt + 1, 0.0);
            for (long long n = first; n <= last; ++n) {
                ++s.nsrc;
                s.isrc.push_back((int)n);
                s.qsrc[n] = r.qs;
                s.tsrc[n] = r.ts;
                s.csrc[n] = r.cs;
            }
        } else if (first > g.nn || last > g.nn) {
            stop_run(lst, {"error in source/sink nodal range ... ", free_items(r.i, r.j, r.k1, r.k2),
                           "nodal range must be within the flow grid ... ", "program stopping ... "});
        }
    } while (more > 0);
    s.lsrc = s.nsrc > 0;
}
