#include "output/section_files.hpp"

#include <algorithm>

namespace {

// Zone time label of the xz temperature family; the setup state says so in words.
void add_xz_label(std::string& b, const PlotContext& c)
{
    if (c.setup) {
        add(b, "t = 0 days");
        return;
    }
    add(b, "t=");
    add_days(b, c.tdays);
    add(b, " days");
}

// The head of column (ix, iy) at transport level k: above the flow grid (unsaturated
// top zone) the head of the column's top flow node stands in.
double head_at(const PlotContext& c, int ix, int iy, int k)
{
    const Grid& g = c.g;
    return c.f.u[grid_node(ix, iy, std::min(k, g.nz), g.ny, g.nz)];
}

// A value handed over by another step, or 0 while that step has not sized its array.
double at(const std::vector<double>& v, int i) { return i < (int)v.size() ? v[i] : 0.0; }

}  // namespace

// Slots are 1..5; index 0 of the list is unused.
bool any_slot(const std::array<int, 6>& kno)
{
    for (int s = 1; s <= 5; ++s)
        if (kno[s] != 0) return true;
    return false;
}

// The xz family has no title line: its variables line comes first, so a head section
// cut from the file needs only one line dropped to become an initial head file.
void xz_header(std::string& b, XzKind kind)
{
    switch (kind) {
    case XzKind::temperature: add_line(b, "variables=\"x\",\"z\",\"Temp.\",\"Wu\""); break;
    case XzKind::concentration: add_line(b, "variables=\"x\",\"z\",\"conc\""); break;
    case XzKind::difference: add_line(b, "variables=\"x\",\"z\",\"T-Tbck\""); break;
    }
}
void hxz_header(std::string& b) { add_line(b, "variables=\"x\",\"z\",\"head\""); }
void tyz_header(std::string& b)
{
    add_line(b, "title=\"yz temp\"");
    add_line(b, "variables=\"y\",\"z\",\"Temp\",\"Wu\"");
}
void hyz_header(std::string& b)
{
    add_line(b, "title=\"yz head\"");
    add_line(b, "variables=\"y\",\"z\",\"head\"");
}
void txy_header(std::string& b)
{
    add_line(b, "title=\"xy temp\"");
    add_line(b, "variables=\"x\",\"y\",\"Temp\",\"Wu\",\"Conc\"");
}
void hxy_header(std::string& b)
{
    add_line(b, "title=\"xy head\"");
    add_line(b, "variables=\"x\",\"y\",\"head\"");
}
void tpeak_header(std::string& b)
{
    add_line(b, "title=\"xy Tpeak and Tmin, and dz\"");
    add_line(b, "variables=\"x\",\"y\",\"Tpk\",\"Tmin\",\"dz\",\"dztot\"");
}

// One zone per knoy slot: i runs over the nzt levels of a column, j over the nx columns,
// so the rows go column by column from the bottom up.  The temperature file puts a text
// label with the time before each zone, numbered by the zone it belongs to.
void write_xz_sections(std::ostream& os, const PlotContext& c, XzKind kind, int& zones, std::string& b)
{
    const Grid& g = c.g;
    const Fields& f = c.f;
    for (int s = 1; s <= 5; ++s) {
        const int iy = c.d.knoy[s];
        if (iy == 0) continue;
        ++zones;
        // x and z are the same for every later zone on a fixed top; they are shared even
        // when the top moves, and a moving-top plot shows the first zone's geometry
        const bool first = zones == 1;
        if (kind == XzKind::temperature) {
            add(b, "text x=75., y=70.,f=helv,cs=frame,hu=point,h=20,zn=");
            add_count(b, zones);
            add(b, ",c=black,bx=filled,bxf=white,bxo=white,t=\"");
            add_days(b, c.tdays);
            add_line(b, " days \"");
        }
        add(b, "zone i=");
        add_count(b, g.nzt);
        add(b, ", j=");
        add_count(b, g.nx);
        if (!first) add(b, ", D=(1,2)");
        add(b, ", T=\"");
        add_xz_label(b, c);
        add(b, ", knoy=");
        add_count(b, iy);
        add_line(b, "\"");
        Rows r = begin_rows(os, b, 5, 15, 6);
        for (int ix = 1; ix <= g.nx; ++ix) {
            for (int k = 1; k <= g.nzt; ++k) {
                const int n = grid_node(ix, iy, k, g.ny, g.nzt);
                if (first) {
                    put(r, g.x[n]);
                    put(r, g.z[n]);
                }
                switch (kind) {
                case XzKind::temperature:
                    put(r, f.t1[n]);
                    put(r, node_wu(c, n));
                    break;
                case XzKind::concentration: put(r, f.t2[n]); break;
                case XzKind::difference: put(r, f.t1[n] - f.t1[grid_node(1, 1, k, g.ny, g.nzt)]); break;
                }
            }
        }
        end_rows(r);
    }
}

// Flow levels only (nz): heads do not exist in an unsaturated top zone.  The point of a
// flow node is the transport node of the same column and level.
void write_hxz(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    for (int s = 1; s <= 2; ++s) {
        const int iy = c.d.knoy[s];
        if (iy == 0) continue;
        add(b, "zone i=");
        add_count(b, g.nz);
        add(b, ", j=");
        add_count(b, g.nx);
        add(b, ",t=\"");
        add_days(b, c.tdays);
        add(b, " days; knoy=");
        add_count(b, iy);
        add_line(b, "\"");
        Rows r = begin_rows(os, b, 3, 15, 6);
        for (int ix = 1; ix <= g.nx; ++ix)
            for (int k = 1; k <= g.nz; ++k) {
                const int n = grid_node(ix, iy, k, g.ny, g.nzt);  // the flow node's point
                put(r, g.x[n]);
                put(r, g.z[n]);
                put(r, c.f.u[grid_node(ix, iy, k, g.ny, g.nz)]);
            }
        end_rows(r);
    }
}

namespace {
// The zone line of a yz section: i over the levels, j over the rows, the time and slot.
void yz_zone_line(std::string& b, int levels, int ny, double tdays, int ix)
{
    add(b, "zone i=");
    add_count(b, levels);
    add(b, ", j=");
    add_count(b, ny);
    add(b, ", T=\"");
    add_days(b, tdays);
    add(b, " days; yz section ");
    add_count(b, ix);
    add_line(b, "\"");
}
}  // namespace

// One zone per knox slot, i over the levels and j over the ny rows; every zone repeats
// its coordinates.
void write_tyz(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    for (int s = 1; s <= 5; ++s) {
        const int ix = c.d.knox[s];
        if (ix == 0) continue;
        yz_zone_line(b, g.nzt, g.ny, c.tdays, ix);
        Rows r = begin_rows(os, b, 5, 15, 6);
        for (int iy = 1; iy <= g.ny; ++iy)
            for (int k = 1; k <= g.nzt; ++k) {
                const int n = grid_node(ix, iy, k, g.ny, g.nzt);
                put(r, g.y[n]);
                put(r, g.z[n]);
                put(r, c.f.t1[n]);
                put(r, node_wu(c, n));
            }
        end_rows(r);
    }
}

// The heads of the same yz planes on the flow levels, one node a record.
void write_hyz(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    for (int s = 1; s <= 5; ++s) {
        const int ix = c.d.knox[s];
        if (ix == 0) continue;
        yz_zone_line(b, g.nz, g.ny, c.tdays, ix);
        Rows r = begin_rows(os, b, 3, 15, 6);
        for (int iy = 1; iy <= g.ny; ++iy)
            for (int k = 1; k <= g.nz; ++k) {
                const int n = grid_node(ix, iy, k, g.ny, g.nzt);
                put(r, g.y[n]);
                put(r, g.z[n]);
                put(r, c.f.u[grid_node(ix, iy, k, g.ny, g.nz)]);
            }
        end_rows(r);
    }
}

namespace {
// Zone line of the xy maps: i = ny, j = nx, the coordinates shared after the first zone.
void xy_zone(std::string& b, const PlotContext& c, bool first, int kz)
{
    add(b, "zone i=");
    add_count(b, c.g.ny);
    add(b, ", j=");
    add_count(b, c.g.nx);
    if (!first) add(b, ", D=(1,2)");
    add(b, ", T=\"");
    add_days(b, c.tdays);
    if (kz > 0) {
        add(b, " days; xy section ");
        add_count(b, kz);
        add_line(b, "\"");
    } else {
        add_line(b, " days\"");
    }
}
}  // namespace

// One zone per knoz slot (a transport level); i over the ny rows, j over the nx columns.
void write_txy(std::ostream& os, const PlotContext& c, int& zones, std::string& b)
{
    const Grid& g = c.g;
    for (int s = 1; s <= 5; ++s) {
        const int kz = c.d.knoz[s];
        if (kz == 0) continue;
        const bool first = ++zones == 1;
        xy_zone(b, c, first, kz);
        // T, Wu and C of every node of the level; Wu follows the medium's curve
        Rows r = begin_rows(os, b, 5, 15, 6);
        for (int ix = 1; ix <= g.nx; ++ix)
            for (int iy = 1; iy <= g.ny; ++iy) {
                const int n = grid_node(ix, iy, kz, g.ny, g.nzt);
                if (first) {
                    put(r, g.x[n]);
                    put(r, g.y[n]);
                }
                put(r, c.f.t1[n]);
                put(r, node_wu(c, n));
                put(r, c.f.t2[n]);
            }
        end_rows(r);
    }
}

// The heads of the same planes; a level above the flow grid shows the top flow heads.
void write_hxy(std::ostream& os, const PlotContext& c, int& zones, std::string& b)
{
    const Grid& g = c.g;
    for (int s = 1; s <= 5; ++s) {
        const int kz = c.d.knoz[s];
        if (kz == 0) continue;
        const bool first = ++zones == 1;
        xy_zone(b, c, first, kz);
        Rows r = begin_rows(os, b, 5, 15, 6);
        for (int ix = 1; ix <= g.nx; ++ix)
            for (int iy = 1; iy <= g.ny; ++iy) {
                if (first) {
                    const int n = grid_node(ix, iy, kz, g.ny, g.nzt);
                    put(r, g.x[n]);
                    put(r, g.y[n]);
                }
                put(r, head_at(c, ix, iy, kz));
            }
        end_rows(r);
    }
}

// One zone per plot step over the columns; the coordinates are those of the column top.
void write_tpeak(std::ostream& os, const PlotContext& c, PlotOutputs& p, const std::vector<double>& dzcol,
                 const std::vector<double>& dztot)
{
    const Grid& g = c.g;
    std::string& b = p.rec;
    const bool first = ++p.zones_tpeak == 1;
    xy_zone(b, c, first, 0);
    Rows r = begin_rows(os, b, 5, 15, 6);
    for (int ix = 1; ix <= g.nx; ++ix)
        for (int iy = 1; iy <= g.ny; ++iy) {
            const int col = (ix - 1) * g.ny + iy;
            if (first) {
                const int n = grid_node(ix, iy, g.nzt, g.ny, g.nzt);
                put(r, g.x[n]);
                put(r, g.y[n]);
            }
            put(r, p.tpk[col]);
            put(r, p.tmin[col]);
            put(r, at(dzcol, col));
            put(r, at(dztot, col));
        }
    end_rows(r);
}

// The maps start at -1e33 and 1e33, so a plot before the first peak step shows the
// limits, not a temperature.
void update_peak_maps(const Grid& g, const Fields& f, PlotOutputs& p)
{
    for (int col = 1; col <= g.nxy; ++col) {
        const int n0 = (col - 1) * g.nzt;  // columns follow each other in node order
        double hi = p.tpk[col], lo = p.tmin[col];
        for (int k = 1; k <= g.nzt; ++k) {
            hi = std::max(hi, f.t1[n0 + k]);
            lo = std::min(lo, f.t1[n0 + k]);
        }
        p.tpk[col] = hi;
        p.tmin[col] = lo;
    }
}
