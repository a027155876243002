#include "flow/mindex.hpp"

#include "base/limits.hpp"
#include "base/stop.hpp"
#include "input/deck_io.hpp"
#include "output/fortran_format.hpp"
#include "solver/pcg_icc.hpp"

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

// How a face is walked: lines of nodes, `len` nodes a line `di` apart, `nlines` lines
// `dl` apart from `first`.  P and Q are the two tangential coordinates.  Face position
// p = (line-1)*len + m, which is also the order of the Neumann positions.
struct FaceWalk {
    int first, dl, di, nlines, len;
    const std::vector<double>* P;
    const std::vector<double>* Q;
    int node(int p) const { return first + ((p - 1) / len) * dl + ((p - 1) % len) * di; }
};

FaceWalk face_walk(int face, int nx, int ny, int nz, const std::vector<double>& x, const std::vector<double>& y,
                   const std::vector<double>& z)
{
    switch (face) {
    case 2: return {(nx - 1) * ny * nz + 1, nz, 1, ny, nz, &y, &z};
    case 3: return {1, ny * nz, 1, nx, nz, &x, &z};
    case 4: return {(ny - 1) * nz + 1, ny * nz, 1, nx, nz, &x, &z};
    case 5: return {1, ny * nz, nz, nx, ny, &x, &y};
    case 6: return {nz, ny * nz, nz, nx, ny, &x, &y};
    default: return {1, nz, 1, ny, nz, &y, &z};  // face 1, and the internal position 7
    }
}

// Tributary area of every node of a face: half the quadrilateral spanned by its four
// neighbours on the face, a neighbour that does not exist being the node itself.
void face_areas(const FaceWalk& w, std::vector<double>& areacol)
{
    const std::vector<double>& P = *w.P;
    const std::vector<double>& Q = *w.Q;
    int p = 0;
    for (int l = 1; l <= w.nlines; ++l)
        for (int m = 1; m <= w.len; ++m) {
            const int n = w.first + (l - 1) * w.dl + (m - 1) * w.di;
            const int nm = (m > 1) ? n - w.di : n;
            const int np = (m < w.len) ? n + w.di : n;
            const int na = (l > 1) ? n - w.dl : n;
            const int nb = (l < w.nlines) ? n + w.dl : n;
            areacol[++p] = 0.25 * ((P[np] - P[nm]) * (Q[na] - Q[nb]) + (Q[np] - Q[nm]) * (P[nb] - P[na]));
        }
}

const char* field_word(int ktype, const char* flow, const char* heat, const char* mass)
{
    return ktype == 0 ? flow : (ktype == 1 ? heat : mass);
}

struct Ctx {
    RecordReader& rd;
    const Listing& lst;
    int ktype, nn, nx, ny, nz;
    FieldIndex& fi;
    FaceScratch& fs;
};

void dirichlet_patches(Ctx& c, int face)
{
    int i1 = 0, i2 = 0, j1 = 0, j2 = 0, more = 0;
    double value = 0;
    do {
        read_plain(c.rd, c.lst, "a Dirichlet patch (i1 i2 j1 j2 value more)", i1, i2, j1, j2, value, more);
        c.fi.last_value = value;
        c.lst.line(free_line(field_word(c.ktype, "Flow: Dirichlet patch source on surface:",
                                        "Heat: Dirichlet patch source on surface:",
                                        "Mass: Dirichlet patch source on surface:"),
                             face));
        c.lst.line(free_line("indeces: x1,x2, y/z 1, y/z 2 ... ", i1, i2, j1, j2) +
                   field_word(c.ktype, "  head: ", "  temp: ", "  conc: ") + fmt_f(value, 9, 4));
        const bool bad = ((face == 1 || face == 2 || face == 7) && (i2 > c.ny || j2 > c.nz)) ||
                         ((face == 3 || face == 4) && (i2 > c.nx || j2 > c.nz));
        if (bad)
            stop_run(c.lst, {"Error in Dirichlet boundary indices; ktype = " + fmt_i(c.ktype, 5), "face " + fmt_i(face, 5),
                             "Program stopping ..."});
        const long long nyz = (long long)c.ny * c.nz;
        for (int i = i1; i <= i2; ++i)
            for (int j = j1; j <= j2; ++j) {
                long long node;
                switch (face) {
                case 2: node = (c.nx - 1) * nyz + ((long long)i - 1) * c.nz + j; break;
                case 3: node = ((long long)i - 1) * nyz + j; break;
                case 4: node = ((long long)i - 1) * nyz + (long long)(c.ny - 1) * c.nz + j; break;
                case 5: node = ((long long)i - 1) * nyz + ((long long)j - 1) * c.nz + 1; break;
                case 6: node = ((long long)i - 1) * nyz + (long long)j * c.nz; break;
                default: node = ((long long)i - 1) * c.nz + j; break;
                }
                if (node <= 0 || node > c.nn)
                    stop_run(c.lst, {"Error in Dirichlet b.c.: iglobal_node <0 or >nn)",
                                     node >= INT_MIN && node <= INT_MAX
                                         ? free_items("iglobal_node,nn = ", (int)node, c.nn)
                                         : free_items("iglobal_node,nn = ", node, (long long)c.nn),
                                     "Program stopping ..."});
                c.fi.fc[node] = value;
                c.fi.idir[node] = 1;
            }
    } while (more > 0);
}

void neumann_patches(Ctx& c, int face)
{
    int i1 = 0, i2 = 0, j1 = 0, j2 = 0, more = 0;
    double value = 0;
    const int len = (face == 5 || face == 6) ? c.ny : c.nz;
    do {
        read_plain(c.rd, c.lst, "a Neumann patch (i1 i2 j1 j2 value more)", i1, i2, j1, j2, value, more);
        c.lst.line(free_line(field_word(c.ktype, "Neumann recharge on surface:", "Neumann non-zero heat flux on surface:",
                                        "Neumann non-zero conc. gradient on surface:"),
                             face));
        c.lst.line(free_line("indeces: x1,x2,y1,y2 ... ", i1, i2, j1, j2));
        c.lst.line(free_line(field_word(c.ktype, "  Darcy flux (m/s):", " heat flux (W/m2): ", " conc gradient:    "),
                             value));
        for (int i = i1; i <= i2; ++i)
            for (int j = j1; j <= j2; ++j) {
                const long long p = ((long long)i - 1) * len + j;
                // Positions have no bound test: one past every face is never walked and so
                // has no effect, but one outside the face buffer names no face at all.
                if (p < 1 || p > nf)
                    stop_run(c.lst, {"Error in Neumann boundary indices; ktype = " + fmt_i(c.ktype, 5),
                                     "face " + fmt_i(face, 5), "Program stopping ..."});
                if (p < (long long)c.fs.rechcol.size()) c.fs.rechcol[p] = value;
            }
    } while (more > 0);
}

void internal_blocks(Ctx& c)
{
    int ix1 = 0, ix2 = 0, iy1 = 0, iy2 = 0, iz1 = 0, iz2 = 0, more = 0;
    double value = 0;
    do {
        read_plain(c.rd, c.lst, "an internal fixed block (icx1 icx2 icy icy2 icz1 icz2 value more)", ix1, ix2, iy1, iy2,
                   iz1, iz2, value, more);
        c.lst.line(free_line(field_word(c.ktype, "internal fixed flow nodes: ", "internal fixed heat transport nodes: ",
                                        "internal fixed mass transport nodes: ")));
        c.lst.line(free_line(field_word(c.ktype, "icx1,icx2,icy,icy2,icz1,icz2,head: ",
                                        "icx1,icx2,icy,icy2,icz1,icz2,temp: ", "icx1,icx2,icy,icy2,icz1,icz2,conc: "),
                             ix1, ix2, iy1, iy2, iz1, iz2, value));
        // indices below 1 would name nodes outside the grid as surely as those above it
        if (ix1 > c.nx || ix2 > c.nx || iy1 > c.ny || iy2 > c.ny || iz1 > c.nz || iz2 > c.nz || ix1 < 1 || ix2 < 1 ||
            iy1 < 1 || iy2 < 1 || iz1 < 1 || iz2 < 1)
            stop_run(c.lst, {"Error in internal fixed node indices", "Program stopping ..."});
        for (int i = ix1; i <= ix2; ++i)
            for (int j = iy1; j <= iy2; ++j)
                for (int k = iz1; k <= iz2; ++k) {
                    const int node = (i - 1) * c.ny * c.nz + (j - 1) * c.nz + k;
                    c.fi.fc[node] = value;
                    c.fi.idir[node] = 1;
                }
    } while (more > 0);
}

void cosine_heads(Ctx& c, const std::vector<double>& x, CosineHead& wt)
{
    c.lst.line(free_line("top kb(6)=6, Dirichlet cosine head condition"));
    wt.several = 0;
    int more = 0;
    const int nyz = c.ny * c.nz;
    do {
        CosineHead r = wt;
        const Slot s[] = {r.ix1, r.ix2, r.rise, r.amp_cos, r.amp_sin, r.wave_cos, r.wave_sin, r.slope, r.phase, more};
        read_record(c.rd, c.lst, "a cosine watertable record",
                    {"error reading cosine watertable parameters", "program stopping ..."}, s);
        if (more > 0) r.several = -1;
        wt = r;
        c.lst.line(free_line("watertable function data:"));
        c.lst.line(free_line("x-node indices ix1-ix2:     ", wt.ix1, wt.ix2));
        c.lst.line(free_line("watertable rise             ", wt.rise));
        c.lst.line(free_line("cosine curve amplitude      ", wt.amp_cos));
        c.lst.line(free_line("sine curve amplitude        ", wt.amp_sin));
        c.lst.line(free_line("wave fraction, cosine curve ", wt.wave_cos));
        c.lst.line(free_line("wave fraction, sine curve   ", wt.wave_sin));
        c.lst.line(free_line("linear slope                ", wt.slope));
        c.lst.line(free_line("phase shift                 ", wt.phase));
        if (wt.ix1 < 1 || wt.ix2 < 1 || wt.ix1 > c.nx || wt.ix2 > c.nx)
            stop_run(c.lst, {"Error in cosine watertable indices ix1,ix2", "Program stopping ..."});
        const double x0 = x[wt.ix1 * nyz];
        const double len = x[wt.ix2 * nyz] - x0;
        const double twopi = 2.0 * 3.14159265358979;
        const double kc = twopi * wt.wave_cos / len;
        const double ks = twopi * wt.wave_sin / len;
        for (int ix = wt.ix1; ix <= wt.ix2; ++ix)
            for (int iy = 1; iy <= c.ny; ++iy) {
                const int node = (ix - 1) * nyz + iy * c.nz;
                const double d = x[node] - x0;
                c.fi.fc[node] = wt.rise + wt.amp_cos * std::cos(kc * d + wt.phase) +
                                wt.amp_sin * std::sin(ks * d + wt.phase) + wt.slope * d;
                c.fi.idir[node] = 1;
            }
    } while (more > 0);
    c.lst.line(free_line("default watertable heads x,h"));
    for (int col = 1; col <= c.nx * c.ny; ++col) {
        const int node = col * c.nz;
        c.lst.line(fmt_i(node, 7) + fmt_f(x[node], 15, 5) + fmt_f(c.fi.fc[node], 15, 5));
    }
}

}  // namespace

void count_fixed(FieldIndex& fi)
{
    fi.ncum.assign(fi.nn + 1, 0);
    int run = 0;
    for (int i = 1; i <= fi.nn; ++i) {
        run += fi.idir[i];
        fi.ncum[i] = run;
    }
    fi.ndirn = run;
    fi.neq = fi.nn - run;
}

int build_pattern(const Listing& lst, const std::vector<int>& inc, int ne, int nb, FieldIndex& fi)
{
    LowerPattern& pat = fi.pat;
    const int neq = fi.neq;
    pat.neq = neq;
    pat.nb = nb;
    // the wide form: the nb positions of each row side by side while the rows fill; it
    // lives only here, the solves and the searches of assembly read ia and ja
    std::vector<int> icol((std::size_t)neq * nb + 1, 0);
    for (int i = 1; i <= neq; ++i) icol[(std::size_t)(i - 1) * nb + 1] = i;
    const int* idir = fi.idir.data();
    const int* ncum = fi.ncum.data();
    int bw = 0;
    for (int e = 1; e <= ne; ++e) {
        const int* nd = &inc[(e - 1) * 8];
        for (int a = 1; a <= 8; ++a) {
            const int p = nd[a];
            if (idir[p] == 1) continue;
            const int m1 = p - ncum[p];
            for (int b = 1; b <= 8; ++b) {
                const int q = nd[b];
                if (idir[q] == 1) continue;
                const int m2 = q - ncum[q];
                if (m1 >= m2) continue;
                int* row = &icol[(std::size_t)(m2 - 1) * nb];  // row[1..nb]
                int k = 1;
                for (; k <= nb; ++k) {
                    if (row[k] == m1) break;
                    if (row[k] == 0) {
                        row[k] = m1;
                        bw = std::max(bw, k);
                        break;
                    }
                }
                if (k > nb) {
                    lst.line("bandwidth insufficient: row" + fmt_i(m2, 5) + ", bw = " + fmt_i(nb, 4) + ",nb= " +
                             fmt_i(nb, 3));
                    bw = nb + 1;
                }
            }
        }
    }
    pat.bandwidth = bw;
    if (bw > nb) return bw;

    // each row: diagonal first, then the other columns in strictly descending order
    for (int m = 1; m <= neq; ++m) {
        int* row = &icol[(std::size_t)(m - 1) * nb];
        int len = 1;
        while (len < nb && row[len + 1] != 0) ++len;
        std::sort(row + 2, row + len + 1, [](int u, int v) { return u > v; });
    }
    pat.ia.assign(neq + 2, 0);
    pat.ia[1] = 1;
    int total = 0;
    for (int m = 1; m <= neq; ++m) {
        const int* row = &icol[(std::size_t)(m - 1) * nb];
        int len = 0;
        while (len < nb && row[len + 1] != 0) ++len;
        total += len;
        pat.ia[m + 1] = pat.ia[m] + len;
    }
    pat.nvec = total;
    pat.ja.assign(total + 1, 0);
    for (int m = 1; m <= neq; ++m) {
        const int* row = &icol[(std::size_t)(m - 1) * nb];
        for (int k = pat.ia[m]; k < pat.ia[m + 1]; ++k) pat.ja[k] = row[k - pat.ia[m] + 1];
    }
    if (fi.ktype != 0) icc::plan_factorisation(pat);  // transport solves factorise every step
    return bw;
}

void mindex(RecordReader& rd, const Listing& lst, int ktype, int nn, int ne, int nx, int ny, int nz,
            const std::vector<int>& inc, const std::vector<double>& x, const std::vector<double>& y,
            const std::vector<double>& z, int nb, FieldIndex& fi, FaceScratch& fs, CosineHead& wt)
{
    lst.line(free_line(field_word(ktype, "mindex routine ... flow boundary arrays ...",
                                  "mindex  ... heat transport boundary arrays ...",
                                  "mindex  ... mass transport boundary arrays ...")));
    fi.ktype = ktype;
    fi.nn = nn;
    {
        const Slot s[] = {fi.kb[1], fi.kb[2], fi.kb[3], fi.kb[4], fi.kb[5], fi.kb[6], fi.kb[7]};
        read_record(rd, lst, "the boundary codes kb(1..7)", s);
    }
    std::string codes = "boundary codes";
    for (int k = 1; k <= 7; ++k) codes += fmt_i(fi.kb[k], 5);
    lst.line(codes);

    // the face buffers hold the positions of the largest face
    const std::size_t npos = (std::size_t)std::max({ny * nz, nx * nz, nx * ny}) + 1;
    fs.rechcol.assign(npos, 0.0);
    if (fs.areacol.size() < npos) fs.areacol.resize(npos, 0.0);
    fi.idir.assign(nn + 1, 0);
    fi.fc.assign(nn + 1, 0.0);
    fi.qnode.assign(nn + 1, 0.0);

    Ctx c{rd, lst, ktype, nn, nx, ny, nz, fi, fs};
    for (int k = 1; k <= 7; ++k) {
        const int code = fi.kb[k];
        if ((code == 3 || code == 4) && k != 6)
            stop_run(lst, {"incompatible boundary conditions", "only top surface boundary can be type 3 or 4",
                           "program stopping"});
        if (code == 6 && (k != 6 || ktype != 0))
            stop_run(lst, {"incompatible boundary conditions", "can only have type 6 on top bdy for flow",
                           "program stopping"});
        trace_face(rd, k, code);
        if (code == 0 || code == 3) continue;
        switch (code) {
        case 2: neumann_patches(c, k); break;
        case 4: break;
        case 5: internal_blocks(c); break;
        case 6: cosine_heads(c, x, wt); break;
        default: dirichlet_patches(c, k); break;
        }
        const FaceWalk w = face_walk(k, nx, ny, nz, x, y, z);
        if (code != 1) face_areas(w, fs.areacol);
        if (code == 2) {
            double total = 0;
            for (int p = 1; p <= w.nlines * w.len; ++p) {
                const int node = w.node(p);
                fi.qnode[node] += fs.rechcol[p] * fs.areacol[p];
                total += fs.rechcol[p] * fs.areacol[p];
                lst.line(free_line(ktype, node, fs.areacol[p], total));
            }
        }
    }
    fi.kbtop = (fi.kb[6] == 4) ? -1 : 0;

    count_fixed(fi);
    lst.line("number of dirichlet nodes: " + fmt_i(fi.ndirn, 5));
    lst.line("number of degrees of freedom: " + fmt_i(fi.neq, 9));

    const int bw = build_pattern(lst, inc, ne, nb, fi);
    if (bw > nb) stop_run(lst, {"bandwidth required" + fmt_i(bw, 5)});
    lst.line("final bandwidth " + fmt_i(bw, 5));
    lst.line("vector length" + fmt_i(fi.pat.nvec, 10));
}
