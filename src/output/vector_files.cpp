#include "output/vector_files.hpp"

#include "transport/dispersion.hpp"

#include <algorithm>

namespace {

// A velocity of an array the run has not sized (no fractures, no flow yet) reads as 0.
double at(const std::vector<double>& v, int i) { return i < (int)v.size() ? v[i] : 0.0; }

// A section index given as a node index, as an element index: 0 stands for 1, and the
// far face of the grid for its last element.
int element_layer(int kno, int nel) { return std::clamp(kno, 1, nel); }

// The centre of a transport brick, the point its velocity belongs to.
double centre(const Grid& g, int e, const std::vector<double>& coord)
{
    double s = 0;
    for (int i = 1; i <= 8; ++i) s += coord[node_at(transport_incidence(g), e, i)];
    return 0.125 * s;
}

// The end of a zone line: `lead` up to the opening quote of the title, then the time.
void days_zone(std::string& b, const PlotContext& c, std::string_view lead)
{
    add(b, lead);
    add_days(b, c.tdays);
    add_line(b, " days\"");
}

// Local nodes of each fracture kind: a line by its direction code, a plane by its face.
constexpr int line_nodes[7][2] = {{0, 0}, {1, 5}, {1, 2}, {1, 4}, {4, 8}, {4, 3}, {2, 3}};
constexpr int plane_nodes[7][4] = {{0, 0, 0, 0}, {1, 4, 8, 5}, {2, 3, 7, 6}, {1, 2, 6, 5},
                                   {4, 3, 7, 8}, {1, 2, 3, 4}, {5, 6, 7, 8}};

// Centre of fracture element l: the mean of its nodes' coordinates (flow nodes mapped
// onto the transport grid that holds the coordinates).
void fracture_centre(const PlotContext& c, int l, double& x, double& y, double& z)
{
    const Grid& g = c.g;
    const Fractures& fr = c.fr;
    const int e = fr.ifracl[l], code = std::clamp(fr.lvert[l], 1, 6);
    const int* loc = fr.ifdim[l] == 1 ? line_nodes[code] : plane_nodes[code];
    const int nn = fr.ifdim[l] == 1 ? 2 : 4;
    x = y = z = 0;
    for (int i = 0; i < nn; ++i) {
        const int n = g.nmap[node_at(g.in, e, loc[i])];
        x += g.x[n];
        y += g.y[n];
        z += g.z[n];
    }
    x /= nn;
    y /= nn;
    z /= nn;
}

// The in-plane velocity pair of fracture l in a plot plane, or false when the fracture
// does not lie in it.  Planes: 1 xz, 2 xy, 3 the xy planes on node level kz.
bool fracture_pair(const PlotContext& c, int l, int plane, int kz, double& va, double& vb)
{
    const Fractures& fr = c.fr;
    const Velocities& v = c.v;
    const int code = fr.lvert[l];
    va = vb = 0;
    if (fr.ifdim[l] == 1) {
        const double vl = at(v.vlin, l);
        const bool along_z = code == 1 || code == 4, along_x = code == 2 || code == 5, along_y = code == 3 || code == 6;
        if (plane == 1 && along_x) va = vl;
        else if (plane == 1 && along_z) vb = vl;
        else if (plane == 2 && along_x) va = vl;
        else if (plane == 2 && along_y) vb = vl;
        else return false;
        return true;
    }
    va = at(v.vx2d, l);
    vb = at(v.vy2d, l);
    if (plane == 1) return code == 3 || code == 4;
    if (plane == 2) return code == 5 || code == 6;
    // the face's node level: the lower face of layer ke lies on level ke, the upper on ke+1
    const int ke = (fr.ifracl[l] - 1) / (c.g.nex * c.g.ney) + 1;
    return (code == 5 && ke == kz) || (code == 6 && ke + 1 == kz);
}

// Two passes over the fractures: the count for the zone line, then the records.  A file
// with no fracture in its plane keeps its title and variables and no zone.
void write_fracture_file(std::ostream& os, const PlotContext& c, int plane, const char* title, const char* vars,
                         std::string& b)
{
    const int kz = c.d.knoz[1];
    int count = 0;
    double va, vb;
    for (int l = 1; l <= c.fr.nfrac; ++l) count += fracture_pair(c, l, plane, kz, va, vb) ? 1 : 0;
    add(b, title);
    add_days(b, c.tdays);
    add_line(b, "\"");
    add_line(b, vars);
    if (count > 0) {
        add(b, "zone i=");
        b += fmt_i(count, 7);
        b.push_back('\n');
        Rows r = begin_rows(os, b, 4, 15, 6);
        for (int l = 1; l <= c.fr.nfrac; ++l) {
            if (!fracture_pair(c, l, plane, kz, va, vb)) continue;
            double x, y, z;
            fracture_centre(c, l, x, y, z);
            put(r, x);
            put(r, plane == 1 ? z : y);
            put(r, va);
            put(r, vb);
        }
        end_rows(r);
    }
    write_block(os, b);
}

}  // namespace

void vector_header(std::string& b, VectorPlane plane)
{
    switch (plane) {
    case VectorPlane::xz:
        add_line(b, "title=\"2d xz vectors\"");
        add_line(b, "variables=\"x\",\"z\",\"vx\",\"vz\"");
        break;
    case VectorPlane::xy:
        add_line(b, "title=\"2d xy vectors\"");
        add_line(b, "variables=\"x\",\"y\",\"vx\",\"vy\"");
        break;
    case VectorPlane::yz:
        add_line(b, "title=\"2d yz vectors\"");
        add_line(b, "variables=\"y\",\"z\",\"vy\",\"vz\"");
        break;
    }
}
void vector3d_header(std::string& b)
{
    add_line(b, "title=\"3d vectors\"");
    add_line(b, "variables=\"x\",\"y\",\"z\",\"vx\",\"vy\",\"vz\"");
}
void peclet_header(std::string& b) { add_line(b, "variables=\"x\",\"z\",\"Pe_x\",\"Pe_z\",\"Co_x\",\"Co_z\""); }

// Elements in their own order within the plane (x before y before z), so the zone is an
// ordered ni x nj block; four values an element run on six to a record.
void write_vectors(std::ostream& os, const PlotContext& c, VectorPlane plane, std::string& b)
{
    const Grid& g = c.g;
    const Velocities& v = c.v;
    // the plane's two element counts and the fixed index of its layer
    const int ni = plane == VectorPlane::yz ? g.ney : g.nex;
    const int nj = plane == VectorPlane::xy ? g.ney : g.nezt;
    add(b, "zone i= ");
    add_count(b, ni);
    add(b, ", j= ");
    add_count(b, nj);
    days_zone(b, c, ", T=\"");
    Rows r = begin_rows(os, b, 6, 14, 6);
    for (int j = 1; j <= nj; ++j)
        for (int i = 1; i <= ni; ++i) {
            int e = 0;
            switch (plane) {
            case VectorPlane::xz:
                e = grid_element(i, element_layer(c.d.knoy[1], g.ney), j, g.nex, g.ney);
                put(r, centre(g, e, g.x));
                put(r, centre(g, e, g.z));
                put(r, at(v.vx, e));
                put(r, at(v.vz, e));
                break;
            case VectorPlane::xy:
                e = grid_element(i, j, element_layer(c.d.knoz[1], g.nezt), g.nex, g.ney);
                put(r, centre(g, e, g.x));
                put(r, centre(g, e, g.y));
                put(r, at(v.vx, e));
                put(r, at(v.vy, e));
                break;
            case VectorPlane::yz:
                e = grid_element(element_layer(c.d.knox[1], g.nex), i, j, g.nex, g.ney);
                put(r, centre(g, e, g.y));
                put(r, centre(g, e, g.z));
                put(r, at(v.vy, e));
                put(r, at(v.vz, e));
                break;
            }
        }
    end_rows(r);
}

// All transport elements in element order: i = nex, j = ney, k = nezt.
void write_vectors3d(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    add(b, "zone i= ");
    add_count(b, g.nex);
    add(b, ", j= ");
    add_count(b, g.ney);
    add(b, ", k= ");
    add_count(b, g.nezt);
    days_zone(b, c, ", T=\"");
    Rows r = begin_rows(os, b, 6, 14, 6);
    put_values(r, 6LL * g.net, [&](long long k) {
        const int e = (int)(k / 6) + 1;
        switch (k % 6) {
        case 0: return centre(g, e, g.x);
        case 1: return centre(g, e, g.y);
        case 2: return centre(g, e, g.z);
        case 3: return at(c.v.vx, e);
        case 4: return at(c.v.vy, e);
        default: return at(c.v.vz, e);
        }
    });
    end_rows(r);
}

namespace {
constexpr double no_dispersion_peclet = 1.0e30;  // v dx / D with D = 0, signed like v

double peclet(double v, double dx, double D)
{
    if (D != 0.0) return v * dx / D;
    return v > 0 ? no_dispersion_peclet : (v < 0 ? -no_dispersion_peclet : 0.0);
}
}  // namespace

// Grid Peclet numbers v dx / D along x and z with the dispersion tensor of the mass step
// (diffusion included), Courant numbers v dt / dx.
void write_peclet(std::ostream& os, const PlotContext& c, int& zones, std::string& b)
{
    const Grid& g = c.g;
    const Deck& d = c.d;
    const Dispersivity disp{d.al, d.alt, d.ath, d.atv, d.idisp};
    const bool first = ++zones == 1;
    const int je = element_layer(d.knoy[1], g.ney);
    add(b, "zone i= ");
    add_count(b, g.nex);
    add(b, ", j= ");
    add_count(b, g.nezt);
    days_zone(b, c, first ? ",T=\"" : ", D=(1,2),T=\"");
    Rows r = begin_rows(os, b, 6, 15, 6);
    for (int ke = 1; ke <= g.nezt; ++ke)
        for (int ie = 1; ie <= g.nex; ++ie) {
            const int e = grid_element(ie, je, ke, g.nex, g.ney);
            const double vx = at(c.v.vx, e), vy = at(c.v.vy, e), vz = at(c.v.vz, e);
            const double dx = g.dxe[e], dz = g.dze[e];
            const Tensor D = dispersion_tensor(disp, vx, vy, vz, d.dd);
            if (first) {
                put(r, centre(g, e, g.x));
                put(r, centre(g, e, g.z));
            }
            put(r, peclet(vx, dx, D.xx));
            put(r, peclet(vz, dz, D.zz));
            put(r, dx > 0 ? c.dt * vx / dx : 0.0);
            put(r, dz > 0 ? c.dt * vz / dz : 0.0);
        }
    end_rows(r);
}

void write_fracture_vectors(std::ostream& xz, std::ostream& xy, std::ostream& set1, const PlotContext& c,
                            std::string& b)
{
    write_fracture_file(xz, c, 1, " title=\"xz fracture velocity field tdays= ", "variables=\"x\",\"z\",\"vx\",\"vz\"",
                        b);
    write_fracture_file(xy, c, 2, " title=\"xy fracture velocity field tdays= ", "variables=\"x\",\"y\",\"vx\",\"vy\"",
                        b);
    write_fracture_file(set1, c, 3, " title=\"xy fracture velocities on knoz1 element surfacetdays= ",
                        "variables=\"x\",\"y\",\"vx\",\"vy\"", b);
}
