#include "grid/fractures.hpp"

#include <algorithm>
#include <string>

#include "base/limits.hpp"
#include "base/stop.hpp"
#include "element/fluid.hpp"
#include "output/fortran_format.hpp"

bool is_dummy(const FractureRecord& r)
{
    return r.ilx1 == 0 || r.ilx2 == 0 || r.ily1 == 0 || r.ily2 == 0 || r.ilz1 == 0 || r.ilz2 == 0;
}

namespace {
// pi as the pipe area has always been formed
constexpr double pi_pipe = 3.14159265358979;

std::string indices(const char* label, const FractureRecord& r)
{
    return free_line(label, r.ilx1, r.ilx2, r.ily1, r.ily2, r.ilz1, r.ilz2);
}

// Conductivity and cross-section of a line (pipe law) or a plane (cubic law), with the
// echo; any other dimension keeps those of the last record and says nothing.
void record_law(const FractureRecord& r, Fractures& fr, const Listing& lst)
{
    if (r.idim == 1) {
        const double rad = 0.5 * r.aperture;
        fr.xarea_rec = pi_pipe * rad * rad;
        fr.ck_rec = fr.gk * 0.125 * rad * rad;  // Hagen-Poiseuille: k = rho g r^2 / (8 mu)
        lst.line(free_line("1D line fracture:"));
        lst.line(indices("element indeces:                ... ", r));
        lst.line(free_line("orientation (1,2,3 = z,x,y)     ... ", r.iloc));
        lst.line(free_line("hyd. conductivity (m/s@ 0C) ... ", fr.ck_rec));
        lst.line(free_line("aperture (=pipe diameter)   ... ", r.aperture));
        lst.line(free_line("x-sectional area            ... ", fr.xarea_rec));
    } else if (r.idim == 2) {
        fr.xarea_rec = r.aperture;
        fr.ck_rec = fr.gk * r.aperture * r.aperture / 12.0;  // parallel plates: k = rho g (2b)^2 / (12 mu)
        lst.line(free_line("2D plane fracture:"));
        lst.line(indices("element indeces:                ... ", r));
        lst.line(free_line("face (1 = left face)            ... ", r.iloc));
        lst.line(free_line("hyd. conductivity (m/s@ 0C) ... ", fr.ck_rec));
        lst.line(free_line("aperture (=2b)              ... ", r.aperture));
        lst.line(free_line("x-sectional area (=2b)      ... ", fr.xarea_rec));
    }
}

long long span_of(int a, int b) { return b >= a ? (long long)b - a + 1 : 0; }

// Elements of the record, z innermost; an (element, code) pair already in use only
// counts as a duplicate, whatever the dimension of either.
void generate(const FractureRecord& r, const Grid& g, Fractures& fr)
{
    const long long count = span_of(r.ilx1, r.ilx2) * span_of(r.ily1, r.ily2) * span_of(r.ilz1, r.ilz2);
    const std::size_t want = (std::size_t)fr.nfrac + 1 + (std::size_t)count;
    if (fr.ck.capacity() < want) {
        fr.ck.reserve(want);
        fr.xarea.reserve(want);
        fr.lvert.reserve(want);
        fr.ifracl.reserve(want);
        fr.ifdim.reserve(want);
    }
    for (int i = r.ilx1; i <= r.ilx2; ++i)
        for (int j = r.ily1; j <= r.ily2; ++j)
            for (int k = r.ilz1; k <= r.ilz2; ++k) {
                const int e = grid_element(i, j, k, g.nex, g.ney);
                char& used = lfrac_at(fr, e, r.iloc);
                if (used) {
                    ++fr.nskip;
                    continue;
                }
                used = 1;
                ++fr.nfrac;
                fr.ck.push_back(fr.ck_rec);
                fr.xarea.push_back(fr.xarea_rec);
                fr.lvert.push_back(r.iloc);
                fr.ifracl.push_back(e);
                fr.ifdim.push_back(r.idim);
            }
}

// Plane elements so far by orientation: normal to z (faces 5, 6), to x (1, 2), to y (3, 4).
void plane_counts(const Fractures& fr, const Listing& lst)
{
    int nxy = 0, nyz = 0, nxz = 0;
    for (int l = 1; l <= fr.nfrac; ++l) {
        if (fr.ifdim[l] != 2) continue;
        const int lv = fr.lvert[l];
        if (lv == 5 || lv == 6) ++nxy;
        if (lv == 1 || lv == 2) ++nyz;
        if (lv == 3 || lv == 4) ++nxz;
    }
    lst.line(free_line("number of 2D xy plane fractures: ", nxy));
    lst.line(free_line("number of 2D yz plane fractures: ", nyz));
    lst.line(free_line("number of 2D xz plane fractures: ", nxz));
}

// One Tecplot geometry block: a single polyline of two points (a, b) in grid units.
void segment(std::ostream& os, double a1, double b1, double a2, double b2)
{
    os << "geometry x=0,y=0,t=line,c=black,cs=grid,lt=0.2\n" << "1\n" << "2\n";
    os << fmt_f(a1, 10, 3) << fmt_f(b1, 10, 3) << '\n';
    os << fmt_f(a2, 10, 3) << fmt_f(b2, 10, 3) << '\n';
}

// A summary row: l, ck, xarea, lvert, ifracl, ifdim.
std::string row(const Fractures& fr, int l)
{
    return " " + fmt_i(l, 10) + fmt_e(fr.ck[l], 12, 4) + fmt_e(fr.xarea[l], 12, 4) + fmt_i(fr.lvert[l], 9) +
           fmt_i(fr.ifracl[l], 9) + fmt_i(fr.ifdim[l], 9);
}
}  // namespace

double fracture_gk(int kmass, bool lheat)
{
    const double T = (kmass >= 1 && kmass <= 3) ? 0.0 : 4.0;
    return 10.0 * pw(T, lheat) / (rvisc_w(0.0, lheat) * 160.0 / 86400.0);
}

void size_fractures(Fractures& fr, int ne, int kmass, bool lheat)
{
    fr = Fractures{};  // no record yet: ck_rec and xarea_rec start at 0
    fr.ne = ne;
    fr.lfrac.assign((std::size_t)ne * 6 + 1, 0);
    // index 0 unused in every element array
    fr.ck.assign(1, 0.0);
    fr.xarea.assign(1, 0.0);
    fr.lvert.assign(1, 0);
    fr.ifracl.assign(1, 0);
    fr.ifdim.assign(1, 0);
    fr.gk = fracture_gk(kmass, lheat);
}

void fracture_record(FractureRecord r, bool unsat, const Grid& g, Fractures& fr, const Listing& lst,
                     std::ostream& xz, std::ostream& xy)
{
    if (is_dummy(r)) return;
    // the law comes first, so a record that is then refused has still been echoed
    record_law(r, fr, lst);

    // no head is solved above the flow grid, so a fracture there would carry no flow
    if (unsat && (r.ilz1 > g.nez || r.ilz2 > g.nez))
        stop_run(lst, {"fracture elements found within unsaturated zone",
                       "Rerun with ksat = 1 or remove fracs from unsat zone", "program stopping ..."});

    // indices beyond the grid are cut back to its last layer, with a warning
    if (r.ilx1 > g.nex || r.ilx2 > g.nex || r.ily1 > g.ney || r.ily2 > g.ney || r.ilz1 > g.nez || r.ilz2 > g.nez)
        message(lst, {"!! warning, fracture grid index truncated",
                      free_items("input indeces: ", r.ilx1, r.ilx2, r.ily1, r.ily2, r.ilz1, r.ilz2)});
    r.ilx1 = std::min(r.ilx1, g.nex);
    r.ilx2 = std::min(r.ilx2, g.nex);
    r.ily1 = std::min(r.ily1, g.ney);
    r.ily2 = std::min(r.ily2, g.ney);
    r.ilz1 = std::min(r.ilz1, g.nez);
    r.ilz2 = std::min(r.ilz2, g.nez);

    // The cut has no lower bound; an index below 1 would name no brick of the grid (or
    // the wrong one), so such a record is refused.
    if (r.ilx1 < 1 || r.ilx2 < 1 || r.ily1 < 1 || r.ily2 < 1 || r.ilz1 < 1 || r.ilz2 < 1)
        stop_run(lst, {"error, fracture element index below 1",
                       free_items("input indeces: ", r.ilx1, r.ilx2, r.ily1, r.ily2, r.ilz1, r.ilz2),
                       "program stopping ..."});

    // a zero or negative cross-section (zero aperture, or no law yet) generates nothing
    if (fr.xarea_rec > 0.0) {
        const bool any = r.ilx1 <= r.ilx2 && r.ily1 <= r.ily2 && r.ilz1 <= r.ilz2;
        if (any && (r.iloc < 1 || r.iloc > 6))
            stop_run(lst, {"error, fracture location code iloc must be 1 to 6", free_items("iloc = ", r.iloc),
                           "program stopping ..."});
        generate(r, g, fr);
    }

    // the whole record is generated before the limit is looked at
    if (fr.nfrac > maxfrac)
        stop_run(lst, {free_items("Error: nfrac > maxfrac, nfrac =", fr.nfrac), free_items("nskip = ", fr.nskip),
                       "program stopping ..."});
    plane_counts(fr, lst);
    write_fracture_geometry(r, g, xz, xy);
}

void write_fracture_geometry(const FractureRecord& r, const Grid& g, std::ostream& xz, std::ostream& xy)
{
    // A: the first element of the record; B: last along x; C: last along z; D: last along y
    const int a = grid_element(r.ilx1, r.ily1, r.ilz1, g.nex, g.ney);
    const int b = grid_element(r.ilx2, r.ily1, r.ilz1, g.nex, g.ney);
    const int c = grid_element(r.ilx1, r.ily1, r.ilz2, g.nex, g.ney);
    const int d = grid_element(r.ilx1, r.ily2, r.ilz1, g.nex, g.ney);
    const auto xz_seg = [&](int e1, int n1, int e2, int n2) {
        const int p = node_at(g.in, e1, n1), q = node_at(g.in, e2, n2);
        segment(xz, g.x[p], g.z[p], g.x[q], g.z[q]);
    };
    const auto xy_seg = [&](int e1, int n1, int e2, int n2) {
        const int p = node_at(g.in, e1, n1), q = node_at(g.in, e2, n2);
        segment(xy, g.x[p], g.y[p], g.x[q], g.y[q]);
    };

    if (r.idim == 2) {
        switch (r.iloc) {
        case 5: xz_seg(a, 1, b, 2); break;  // lower faces along x
        case 6: xz_seg(a, 5, b, 6); break;  // upper faces along x
        case 1: xz_seg(a, 1, c, 5); break;  // x-min faces up the column
        case 2: xz_seg(a, 2, c, 6); break;  // x-max faces up the column
        default: break;
        }
        if (r.iloc == 1) xy_seg(a, 5, d, 8);
        if (r.iloc == 3) xy_seg(a, 1, b, 2);
    } else if (r.idim == 1) {
        if (r.iloc == 1) xz_seg(a, 1, c, 5);
        if (r.iloc == 2) {
            // an x line is drawn up the column of its first brick, and the case leaves
            // its marker line in the file
            xz_seg(a, 2, c, 6);
            xz << free_line("ok5") << '\n';
        }
        if (r.iloc == 1) xy_seg(a, 1, a, 1);
    }
}

void fracture_summary(const Fractures& fr, const Listing& lst)
{
    lst.line(free_line("found ", fr.nskip, " duplicate fracture elements"));
    lst.line(free_line("number of fracture elements ... ", fr.nfrac));
    lst.line(free_line("summary: listing of first 100 fracture elements:"));
    lst.line(free_line("l       ck      xarea       lvert    ifracl    ifdim"));
    lst.line(free_line("       (m/s)    (m^2)       (face)   (3D #)       "));
    for (int l = 1; l <= std::min(100, fr.nfrac); ++l) lst.line(row(fr, l));
    if (fr.nfrac <= 0) return;
    lst.line(free_line("summary: listing of last 100 fracture elements:"));
    // from nfrac-100, so a long table shows 101 rows here: kept, the overlap is harmless
    for (int l = std::max(fr.nfrac - 100, 1); l <= fr.nfrac; ++l) lst.line(row(fr, l));
}
