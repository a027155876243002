#include "output/profile_files.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>

namespace {

constexpr double front_step = 0.00999999977648258;  // smallest T step across a pair (C)

// A value handed over by another step, or 0 while that step has not sized its array.
double at(const std::vector<double>& v, int i) { return i < (int)v.size() ? v[i] : 0.0; }

// The x row of the horizontal profiles.
int profile_row(const PlotContext& c) { return c.d.knoy[1] == 0 ? 1 : c.d.knoy[1]; }

// Element holding node (ix, iy, k) at its lower corner, the last one along each axis
// for nodes on the far faces.
int element_below(const Grid& g, int ix, int iy, int k)
{
    return grid_element(std::min(ix, g.nex), std::min(iy, g.ney), std::min(k, g.nezt), g.nex, g.ney);
}

// Zone line of a row along x: "zone i=" nx ", T=" time and a tail.
void row_zone(std::string& b, const PlotContext& c, std::string_view tail)
{
    add(b, "zone i=");
    add_count(b, c.g.nx);
    add(b, ", T=\"");
    add_days(b, c.tdays);
    add(b, tail);
}

}  // namespace

void t1dz_header(std::string& b)
{
    add_line(b, "title=\"1d vertical head, T and C profile\"");
    add_line(b, "variables=\"z\",\"h(m)\",\"T(degC)\",\"C\",\"Wu\",\"Wu*Sw\",\"dzl(m)\"");
}
void t1dx_header(std::string& b) { add_line(b, "variables=\"x\",\"Temp\",\"Wu\""); }
void bzq_header(std::string& b)
{
    add_line(b, "variables=\"x\",\"dztot(m)\",\"depth_Ts(m)\",\"bz(m)\",\"bzf(W/m2)\",\"bzq(m/s)\"");
}
void hflux_xl_header(std::string& b) { add_line(b, "variables=\"x\",\"hflux_xl(W/m2)\""); }
void debug_1dx_header(std::string& b) { add_line(b, "variables=\"x\",\"Co\",\"tkl\""); }
void tbck_header(std::string& b)
{
    add_line(b, "title=\"1d vertical temp. profile: background\"");
    add_line(b, "variables=\"z\",\"T(degC)\",\"Wu\"");
}
// The zone line promises 9999 profiles: the true count is known only at the end of the
// run, when the file is copied with it.
void t1dz_time_header(std::string& b, int nzt)
{
    add_line(b, "title=\"1D vertical temperature profile - time plot\"");
    add_line(b, "variables=\"t(d)\",\"z(m)\",\"T(degC)\",\"Wu\"");
    add(b, "zone i=");
    add_count(b, nzt);
    add_line(b, ",j= 9999,T=\"at knox1,knoy1\"");
}
void t1dx_time_header(std::string& b, int nx)
{
    add_line(b, "title=\"1D horizontal temperature profile - time plot\"");
    add_line(b, "variables=\"t(d)\",\"x(m)\",\"T(degC)\",\"Wu\"");
    add(b, "zone i=");
    add_count(b, nx);
    add_line(b, ",j= 9999,T=\"at knoy1,knoz1\"");
}

// One zone per knox slot, all in the y plane knoy(1), one node a record from the bottom
// up.  Wu*Sw is the unfrozen water per pore volume, with the saturation of the element
// above the node (the top node takes the last element).
void write_t1dz(std::ostream& os, const PlotContext& c, const std::vector<double>& dzel, std::string& b)
{
    const Grid& g = c.g;
    const int iy = c.d.knoy[1];
    for (int s = 1; s <= 5; ++s) {
        const int ix = c.d.knox[s];
        if (ix == 0) continue;
        add(b, "zone i=");
        add_count(b, g.nzt);
        add(b, ", t=\"k1dx=");
        add_count(b, ix);
        add(b, ",");
        add_days(b, c.tdays);
        add_line(b, " days\"");
        Rows r = begin_rows(os, b, 7, 15, 5);
        for (int k = 1; k <= g.nzt; ++k) {
            const int n = grid_node(ix, iy, k, g.ny, g.nzt);
            const double wu = node_wu(c, n);
            put(r, g.z[n]);
            // nodes above the flow grid show the head of the column's top flow node
            put(r, c.f.u[grid_node(ix, iy, std::min(k, g.nz), g.ny, g.nz)]);
            put(r, c.f.t1[n]);
            put(r, c.f.t2[n]);
            put(r, wu);
            const int e = element_below(g, ix, iy, k);
            put(r, wu * at(c.m.sw, e));
            put(r, at(dzel, e));
        }
        end_rows(r);
    }
}

// One zone per knoz slot along the row knoy(1); a level outside the transport grid is
// passed over.
void write_t1dx(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    const int iy = profile_row(c);
    for (int s = 1; s <= 5; ++s) {
        const int kz = c.d.knoz[s];
        if (kz < 1 || kz > g.nzt) continue;
        row_zone(b, c, ", days, kz=");
        add_count(b, kz);
        add_line(b, "\"");
        Rows r = begin_rows(os, b, 3, 15, 6);
        for (int ix = 1; ix <= g.nx; ++ix) {
            const int n = grid_node(ix, iy, kz, g.ny, g.nzt);
            put(r, g.x[n]);
            put(r, c.f.t1[n]);
            put(r, node_wu(c, n));
        }
        end_rows(r);
    }
}

// The pair (n, n+1) brackets the front: n the first node not below 0 C, n+1 the frozen
// node above it.  Linear in T between them at Ts; a pair within 0.01 C of each other
// would put the front anywhere, so it takes the mid point.  A column frozen to its base
// gives its whole height.
double thaw_depth(const PlotContext& c, int ix, int iy)
{
    const Grid& g = c.g;
    const std::vector<double>& T = c.f.t1;
    const int top = grid_node(ix, iy, g.nzt, g.ny, g.nzt);
    for (int k = g.nzt; k >= 1; --k) {
        const int n = top - (g.nzt - k);
        if (T[n] < 0.0) continue;
        if (k == g.nzt) return 0.0;  // the top itself is unfrozen
        const int a = n + 1;         // the frozen node above
        const double dT = T[n] - T[a];
        const double zf = std::fabs(dT) > front_step ? g.z[a] + (c.d.medium.Ts - T[a]) * (g.z[n] - g.z[a]) / dT
                                                     : 0.5 * (g.z[n] + g.z[a]);
        return g.z[top] - zf;
    }
    return g.z[top] - g.z[top - g.nzt + 1];  // frozen to the base
}

// One record per x row, at the column (ix, knoy(1)).
void write_bzq(std::ostream& os, const PlotContext& c, const std::vector<double>& dztot, std::string& b)
{
    const Grid& g = c.g;
    const int iy = profile_row(c);
    row_zone(b, c, " days\"\n");
    Rows r = begin_rows(os, b, 6, 15, 6);
    for (int ix = 1; ix <= g.nx; ++ix) {
        const int col = (ix - 1) * g.ny + iy;
        put(r, g.x[grid_node(ix, iy, g.nzt, g.ny, g.nzt)]);
        put(r, at(dztot, col));
        put(r, thaw_depth(c, ix, iy));
        put(r, c.fo.bz[col]);
        put(r, c.fo.bzflx[col]);
        put(r, c.fo.bzq[col]);
    }
    end_rows(r);
}

// Conduction across the transfer layer, tcon/bz times the drop from the top node to the
// air side, positive upward.  The transfer layer sits on the top level, so the zone names
// kz = nzt.
void write_hflux_xl(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    const int iy = profile_row(c);
    row_zone(b, c, ", days, heatflux across transfer layer kz=");
    add_count(b, g.nzt);
    add_line(b, "\"");
    Rows r = begin_rows(os, b, 2, 15, 6);
    for (int ix = 1; ix <= g.nx; ++ix) {
        const int n = grid_node(ix, iy, g.nzt, g.ny, g.nzt);
        const double bz = c.fo.bz[(ix - 1) * g.ny + iy];
        put(r, g.x[n]);
        // before the first step the layer has no thickness yet, and nothing flows
        put(r, bz > 0 ? c.d.tcon / bz * (c.f.t1[n] - c.heat_fc[n]) : 0.0);
    }
    end_rows(r);
}

// The apparent heat capacity of the last pass and the bulk conductivity of the element
// above each node of a row: the two coefficients of the heat step.
void write_debug_1dx(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    const Deck& d = c.d;
    const int iy = d.knoy[1], kz = d.knoz[1];
    row_zone(b, c, " days\"\n");
    Rows r = begin_rows(os, b, 3, 15, 6);
    for (int ix = 1; ix <= g.nx; ++ix) {
        const int n = grid_node(ix, iy, kz, g.ny, g.nzt);
        const int e = element_below(g, ix, iy, kz);
        put(r, g.x[n]);
        put(r, at(c.m.co1, e));
        put(r, at(c.m.tkel, e));
    }
    end_rows(r);
}

// The first column is the far field of the section: tdif.out shows the others against
// it.
void write_tbck(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    add(b, "zone i=");
    add_count(b, g.nzt);
    add(b, ", T= \" vertical strip ");
    add_days(b, c.tdays);
    add_line(b, " days\"");
    Rows r = begin_rows(os, b, 3, 15, 6);
    for (int k = 1; k <= g.nzt; ++k) {  // the first column: nodes 1..nzt
        put(r, g.z[k]);
        put(r, c.f.t1[k]);
        put(r, node_wu(c, k));
    }
    end_rows(r);
}

// Each record carries its time, so that the stacked profiles plot as a t-z surface.
void write_t1dz_time(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    Rows r = begin_rows(os, b, 4, 15, 5);
    for (int k = 1; k <= g.nzt; ++k) {
        const int n = grid_node(c.d.knox[1], c.d.knoy[1], k, g.ny, g.nzt);
        put(r, c.tdays);
        put(r, g.z[n]);
        put(r, c.f.t1[n]);
        put(r, node_wu(c, n));
    }
    end_rows(r);
}

// The same along the row (knoy1, knoz1): a t-x surface.
void write_t1dx_time(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    Rows r = begin_rows(os, b, 4, 15, 5);
    for (int ix = 1; ix <= g.nx; ++ix) {
        const int n = grid_node(ix, c.d.knoy[1], c.d.knoz[1], g.ny, g.nzt);
        put(r, c.tdays);
        put(r, g.x[n]);
        put(r, c.f.t1[n]);
        put(r, node_wu(c, n));
    }
    end_rows(r);
}

// A small reader of our own E fields, for copying a time plot: the three-digit exponent
// form has no E, which a plain strtod would stop at.
bool parse_e_field(std::string_view s, double& v)
{
    // the digits of a field: blanks, sign, "0.", digits, then "E+xx" or "+xxx"
    std::size_t i = 0;
    while (i < s.size() && s[i] == ' ') ++i;
    if (i == s.size()) return false;
    char buf[40];
    std::size_t n = 0;
    bool mantissa = true;
    for (; i < s.size() && n + 2 < sizeof buf; ++i) {
        const char ch = s[i];
        if (mantissa && (ch == '+' || ch == '-') && n > 0 && buf[n - 1] != 'E') {
            buf[n++] = 'E';  // a three-digit exponent stands without its E
            mantissa = false;
        }
        if (ch == 'E') mantissa = false;
        const bool ok = (ch >= '0' && ch <= '9') || ch == '.' || ch == '+' || ch == '-' || ch == 'E';
        if (!ok) return false;
        buf[n++] = ch;
    }
    if (i < s.size()) return false;
    buf[n] = '\0';
    char* end = nullptr;
    v = std::strtod(buf, &end);
    return end == buf + n && n > 0;
}

// Runs once at the end of a run; it reads the scratch file written during the run, so the
// scratch file must be closed (flushed) first.  The copy writes the values again rather
// than the lines, so what it holds is exactly the records that read back as numbers.
void rewrite_time_plot(const std::filesystem::path& from, const std::filesystem::path& to, int npts, int count,
                       const char* at_label)
{
    constexpr int max_records = 1000000;
    constexpr int w = 15;
    std::ifstream in(from, std::ios::binary);
    std::ofstream out(to, std::ios::binary | std::ios::trunc);
    std::string line, b;
    for (int l = 1; l <= 2 && std::getline(in, line); ++l) add_line(b, line);
    if (!std::getline(in, line)) {
        write_block(out, b);
        return;
    }
    add(b, "zone i=");
    add_count(b, npts);
    add(b, ",j= ");
    b += fmt_i(count, 8);
    add(b, ",T=\"");
    add(b, at_label);
    add_line(b, "\"");
    Rows r = begin_rows(out, b, 4, w, 5);
    double v[4];
    for (int rec = 0; rec < max_records && std::getline(in, line); ++rec) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if ((int)line.size() != 4 * w) break;  // the closing count line ends the records
        bool ok = true;
        for (int k = 0; k < 4 && ok; ++k) ok = parse_e_field(std::string_view(line).substr(k * w, w), v[k]);
        if (!ok) break;
        for (double x : v) put(r, x);
    }
    end_rows(r);
}
