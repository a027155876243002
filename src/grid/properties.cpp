#include "grid/properties.hpp"

#include <algorithm>
#include <climits>
#include <cmath>
#include <string>

#include "base/limits.hpp"
#include "base/stop.hpp"
#include "input/record_reader.hpp"
#include "output/fortran_format.hpp"

namespace {
// All seven fields of one element; K only for flow elements, since the unsaturated
// layers above them solve no head.
void store(Media& m, int e, const PropertyValues& v)
{
    m.por[e] = v.theta;
    m.sw[e] = v.satw;
    m.tcx[e] = v.tcx;
    m.csol[e] = v.cps * v.ps;  // only the volumetric product is ever used
    if (e <= m.ne) {
        m.ckx[e] = v.ckx;
        m.cky[e] = v.cky;
        m.ckz[e] = v.ckz;
    }
}

std::string values_line(const PropertyValues& v)
{
    return free_line(v.tcx, v.cps, v.ps, v.theta, v.satw);
}

// Element count of an fgen section, for its size message.
std::string count_text(long long n)
{
    if (n >= INT_MIN && n <= INT_MAX) return free_items("fgen elements (", (int)n, ") <> ne in gelmor ...");
    return free_items("fgen elements (", n, ") <> ne in gelmor ...");
}

// Title and sizes of one fgen section.  Returns the read status of the title, so that
// the caller can treat a missing second section apart; any later failure stops with
// `read_error`, a size other than ne with `size_error`.
ReadStatus fgen_head(RecordReader& rd, int ne, const char* read_error, const char* size_error, const Listing& lst)
{
    std::string title;
    const ReadStatus st = rd.title(title);
    if (st != ReadStatus::ok) return st;
    int n1 = 0, n2 = 0, n3 = 0;
    if (rd.read(n1, n2, n3) != ReadStatus::ok) stop_run(lst, {read_error, "program stopping ..."});
    const long long n = (long long)n1 * n2 * n3;
    if (n != ne) stop_run(lst, {size_error, count_text(n), "program stopping ... "});
    return ReadStatus::ok;
}

// ne values, one list read each (so one value a line), as exp(value) into v[1..ne].
void fgen_values(RecordReader& rd, std::vector<double>& v, int ne, const char* read_error, double& vmax,
                 double& vmin, const Listing& lst)
{
    for (int e = 1; e <= ne; ++e) {
        double ln = 0.0;
        if (rd.read(ln) != ReadStatus::ok) stop_run(lst, {read_error, "program stopping ..."});
        v[e] = std::exp(ln);
        vmax = (e == 1) ? v[e] : std::max(vmax, v[e]);
        vmin = (e == 1) ? v[e] : std::min(vmin, v[e]);
    }
}
}  // namespace

void size_media(Media& m, const Grid& g, bool unsat, const Listing& lst)
{
    // the transport sizes of the grid are only set by its second pass, later in the run
    const long long net = (long long)g.ne + (unsat ? (long long)g.nexy * g.nlz[g.ngz] : 0LL);
    if (net > maxne)
        stop_run(lst, {"error, net>maxne: transport grid too large, check dimensions", "program stopping ..."});
    m = Media{};
    m.ne = g.ne;
    m.net = (int)net;
    for (std::vector<double>* a : {&m.ckx, &m.cky, &m.ckz}) a->assign(m.ne + 1, 0.0);
    for (std::vector<double>* a : {&m.por, &m.sw, &m.tcx, &m.csol, &m.vol, &m.co0, &m.co1}) a->assign(m.net + 1, 0.0);
}

void echo_range_head(const Listing& lst)
{
    lst.line(free_line("specified hydraulic conductivity @ 0 celsius:"));
    lst.line(free_line(std::string(60, '-')));
    lst.line(free_line("element range        ckx          cky          ckz"));
    lst.line(free_line("   tcx(sol)     cps(sol)    ps(sol)   porosity   saturation"));
}

void echo_block_head(const Listing& lst) { lst.line(free_line("indexed hydraulic k:")); }

void property_range(const PropertyRange& r, bool unsat, Media& m, const Listing& lst)
{
    const PropertyValues& v = r.v;
    lst.line(free_line(r.j1, r.j2, v.ckx, v.cky, v.ckz));
    lst.line(values_line(v));
    // numbers past ne exist only as unsaturated layers; in a saturated run they are errors
    if (r.j1 <= 0 || r.j2 <= 0 || (r.j2 > m.ne && !unsat))
        stop_run(lst, {"!! warning !! element range for hyd. conductivity",
                       "is out of bounds; check data file and grid dimensions", "program stopping"});
    if (r.j1 > m.ne || r.j2 > m.ne)
        message(lst, {"!! warning !! K above wt. will not be used",
                      "por,sw,tclm,cps*ps will be used if unsat zone exists"});
    // above the unsaturated layers there is no element left to take the values
    const int last = std::min(r.j2, m.net);
    for (int e = r.j1; e <= last; ++e) store(m, e, v);
}

bool property_block(const PropertyBlock& b, bool unsat, const Grid& g, Media& m, const Listing& lst)
{
    const PropertyValues& v = b.v;
    lst.line(free_line(b.i1, b.i2, b.j1, b.j2, b.k1, b.k2));
    lst.line(free_line(v.ckx, v.cky, v.ckz, v.tcx, v.cps, v.ps, v.theta, v.satw));
    // the sign of the product, formed in double so that no index overflows it
    const double prod = (double)b.i1 * b.i2 * b.j1 * b.j2 * b.k1 * b.k2;
    if (prod <= 0.0) {
        lst.line(free_line("Indexed elements for K contain 0, data ignored ... "));
        return false;
    }
    if (b.i2 > g.nex || b.j2 > g.ney || (b.k2 > g.nez && !unsat))
        stop_run(lst, {"Indexed elements for K: bad entries, stopping ... "});
    // An even number of negative indices passes the product test, but such a block names
    // elements of other rows (or none) and may span billions of numbers: refused.
    if (b.i1 < 0 || b.i2 < 0 || b.j1 < 0 || b.j2 < 0 || b.k1 < 0 || b.k2 < 0)
        stop_run(lst, {"Indexed elements for K: negative index, stopping ... "});
    // the unsaturated layers end at net: layers above them have no element to take values
    const int k2 = std::min(b.k2, m.net / g.nexy);
    for (int k = b.k1; k <= k2; ++k)
        for (int j = b.j1; j <= b.j2; ++j)
            for (int i = b.i1; i <= b.i2; ++i) {
                const int e = grid_element(i, j, k, g.nex, g.ney);
                if (e <= 0 || (e > m.ne && !unsat)) continue;
                store(m, e, v);
            }
    return true;
}

void read_random_fields(std::istream* in, int krk, Media& m, const Listing& lst)
{
    if (in == nullptr)
        stop_run(lst, {"error opening fgen92.asc ...", "this file does not exist ...", "program stopping. "});
    // both sections come from one forward reader: the porosities follow the K values
    RecordReader rd(*in, "fgen92.asc");
    lst.line(free_line("reading K field from fgen92.asc ... "));
    const char* k_error = "error reading fgen92.asc K field";
    if (fgen_head(rd, m.ne, k_error, "error reading fgen92.asc (K) ...", lst) != ReadStatus::ok)
        stop_run(lst, {k_error, "program stopping ..."});
    double cmax = 0.0, cmin = 0.0;
    fgen_values(rd, m.ckx, m.ne, k_error, cmax, cmin, lst);
    // one isotropic K per element: the anisotropy of the zones is given up
    for (int e = 1; e <= m.ne; ++e) m.cky[e] = m.ckz[e] = m.ckx[e];
    lst.line(free_line("max, min conductivities from fgen input file ... "));
    lst.line(free_line("cmax m/s... ", cmax));
    lst.line(free_line("  cmin m/s... ", cmin));
    if (krk != 2) return;

    lst.line(free_line("reading porosity field from fgen92.asc ... "));
    const char* p_error = "error reading fgen92.asc porosity field";
    if (fgen_head(rd, m.ne, p_error, "error reading fgen92.asc (porosities) ...", lst) == ReadStatus::eof) {
        // a file with the K section only: the zones keep their porosities
        message(lst, {"end of file reading porosities: fgen92.asc file ...",
                      "porosities do not exist (check dogfld: fgen92.gen ?) ...",
                      "continuing with porosities from gelmor.data ..."});
        return;
    }
    double pmax = 0.0, pmin = 0.0;
    fgen_values(rd, m.por, m.ne, p_error, pmax, pmin, lst);
    lst.line(free_line("max, min porosities from fgen input file ... "));
    lst.line(free_line("pormax... ", pmax));
    lst.line(free_line("  pormin... ", pmin));
}

void check_properties(const Media& m, const Listing& lst)
{
    // both flags are gathered over all elements before either is reported, K first
    bool bad_k = false, bad_por = false;
    for (int e = 1; e <= m.ne; ++e) {
        if (m.ckx[e] <= 0.0 || m.cky[e] <= 0.0 || m.ckz[e] <= 0.0) bad_k = true;
        if (m.por[e] <= 0.0 || m.por[e] > 1.0) bad_por = true;
    }
    if (bad_k)
        stop_run(lst, {"error, hydraulic conductivity for all elements",
                       "must be > 0 ; check grid size, and element ranges", "for hydraulic conductivity distribution",
                       "program stopping ... "});
    lst.line(free_line("hydraulic conductivities are all positive ... "));
    lst.line(free_line("continuing ... "));
    if (bad_por) stop_run(lst, {"error, porosity out of range, stopping ... "});
    lst.line(free_line("porosities all positive, continuing ... "));
}
