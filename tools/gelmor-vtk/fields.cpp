// The 3-D files: the field files of the print times, the movie and the element
// velocities.  The simulator numbers nodes z fastest, then y, then x; a grid read in that
// order has the axes z, y, x, a left-handed frame, so the points are written x fastest.
#include "convert.hpp"
#include "tecplot_text.hpp"

#include <charconv>
#include <cmath>
#include <functional>
#include <limits>

namespace gvtk {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr int field_width = 15;   // E15.6 of the field and movie files
constexpr int vector_width = 14;  // E14.6 of the vector file

// A point data array: its name and its value at transport node n (0-based, z fastest).
struct PointArray {
    std::string name;
    std::function<double(long long)> at;
};

// Writes a structured grid of nzt x ny x nx nodes given in the simulator's order.
// coord(n, c) is coordinate c of node n.
void write_vts(const fs::path& out, const Zone& z, double time, const std::function<double(long long, int)>& coord,
               const std::vector<PointArray>& arrays)
{
    const long long nzt = z.i, ny = z.j, nx = z.k;
    const Extent e{nx, ny, nzt};
    OutFile o(out);
    open_vtk(o, "StructuredGrid", " WholeExtent=\"" + e.text() + "\"", time);
    o.put("<Piece Extent=\"" + e.text() + "\">\n<PointData");
    if (!arrays.empty()) o.put(" Scalars=\"" + xml_escape(arrays.front().name) + "\"");
    o.put(">\n");
    // every array in the point order x fastest: node (i, j, k) of the simulator's order
    const auto each_point = [&](const std::function<void(long long)>& f) {
        for (long long k = 0; k < nzt; ++k)
            for (long long j = 0; j < ny; ++j)
                for (long long i = 0; i < nx; ++i) f(i * ny * nzt + j * nzt + k);
    };
    for (const PointArray& a : arrays) {
        open_array(o, a.name, 1);
        each_point([&](long long n) { o.value(a.at(n)); });
        close_array(o);
    }
    o.put("</PointData>\n<Points>\n");
    open_array(o, "Points", 3);
    each_point([&](long long n) {
        for (int c = 0; c < 3; ++c) o.value(coord(n, c));
    });
    close_array(o);
    o.put("</Points>\n</Piece>\n");
    close_vtk(o, "StructuredGrid");
    o.commit();
}

// The time of a title or zone title; the text after "t=" if it has one.
double title_time(const LineReader& r, const std::string& title)
{
    std::string_view t = title;
    const std::size_t at = t.find("t=");
    if (at != std::string_view::npos) t.remove_prefix(at + 2);
    double v;
    if (!first_number(t, v)) r.fail("no time in the title \"" + title + "\"");
    return v;
}

// The next zone line; false at the end of the file.  Blank and text lines are passed by.
bool next_zone(LineReader& r, Zone& z)
{
    while (r.next()) {
        const LineKind k = kind_of(r.line());
        if (k == LineKind::blank || k == LineKind::text) continue;
        if (k != LineKind::zone) r.fail("a record outside a zone");
        z = parse_zone(r);
        return true;
    }
    return false;
}

void expect_names(const LineReader& r, const Header& h, std::size_t n)
{
    if (h.names.size() != n)
        r.fail("the variables line names " + std::to_string(h.names.size()) + " variables where " + std::to_string(n) +
               " belong");
}

std::string frame_name(const std::string& stem, int n)
{
    char b[16];
    std::snprintf(b, sizeof b, "_%04d", n);
    return stem + b;
}

}  // namespace

std::optional<FlowGrid> read_flow_grid(const fs::path& listing)
{
    if (!fs::exists(listing)) return std::nullopt;
    LineReader r(listing);
    const std::string key = "flow grid size, nx,ny,nz:";
    while (r.next()) {
        const std::size_t p = r.line().find(key);
        if (p == std::string::npos) continue;
        FlowGrid g;
        const char* c = r.line().data() + p + key.size();
        const char* e = r.line().data() + r.line().size();
        for (long long* v : {&g.nx, &g.ny, &g.nz}) {
            while (c < e && *c == ' ') ++c;
            const auto res = std::from_chars(c, e, *v);
            if (res.ec != std::errc() || *v < 1) r.fail("the flow grid size is not three counts");
            c = res.ptr;
        }
        return g;
    }
    return std::nullopt;
}

double convert_field_file(const fs::path& in, const fs::path& out, const std::optional<FlowGrid>& flow)
{
    LineReader r(in);
    Header h;
    read_header(r, h);
    expect_names(r, h, 6);
    const double time = title_time(r, h.title);
    Zone z;
    if (!next_zone(r, z)) r.fail("no zone line");
    const long long nnt = z.points();
    if (flow && (flow->nx != z.k || flow->ny != z.j || flow->nz > z.i))
        r.fail("the zone (i= " + std::to_string(z.i) + ", j= " + std::to_string(z.j) + ", k= " + std::to_string(z.k) +
               ") does not hold the flow grid of gelmor.lst (nx,ny,nz = " + std::to_string(flow->nx) + " " +
               std::to_string(flow->ny) + " " + std::to_string(flow->nz) + ")");
    // x, y, z, T, C, H of a node, as read
    std::vector<double> v((std::size_t)nnt * 6);
    read_values(r, nnt * 6, field_width, "the zone", [&](long long i, double x) { v[(std::size_t)i] = x; });
    while (r.next())
        if (kind_of(r.line()) != LineKind::blank) r.fail("a line after the last node of the zone");

    std::vector<PointArray> arrays = {{"T", [&](long long n) { return v[n * 6 + 3]; }},
                                      {"C", [&](long long n) { return v[n * 6 + 4]; }}};
    if (flow) {
        // The head of a line belongs to flow node n, numbered with nz levels a column:
        // transport node (i, j, k) takes the head of flow node (i, j, k), and the levels
        // above the flow grid have none.
        const long long nzt = z.i, ny = z.j, nz = flow->nz;
        arrays.push_back({"H", [&, nzt, ny, nz](long long n) {
                              const long long i = n / (ny * nzt), j = n / nzt % ny, k = n % nzt;
                              return k < nz ? v[(i * ny * nz + j * nz + k) * 6 + 5] : nan;
                          }});
    }
    write_vts(out, z, time, [&](long long n, int c) { return v[n * 6 + c]; }, arrays);
    return time;
}

int convert_movie(const fs::path& in, const fs::path& frames, const fs::path& pvd)
{
    LineReader r(in);
    Header h;
    if (!read_header(r, h)) return 0;
    expect_names(r, h, 5);
    Zone first, z;
    std::vector<double> xyz, tc;
    std::vector<TimeStep> steps;
    const std::string stem = frames.filename().string();
    while (next_zone(r, z)) {
        if (steps.empty()) {
            if (z.shared) r.fail("the first frame shares coordinates with no frame before it");
            first = z;
        } else if (z.i != first.i || z.j != first.j || z.k != first.k) {
            r.fail("a frame of another size than the first");
        }
        const double time = title_time(r, z.title);
        const long long nnt = z.points();
        // a frame of its own coordinates (the first, or one after the grid moved) has five
        // values a node, a frame sharing them two
        const int per = z.shared ? 2 : 5;
        xyz.resize((std::size_t)nnt * 3);
        tc.resize((std::size_t)nnt * 2);
        read_values(r, nnt * per, field_width, "the frame", [&](long long i, double x) {
            const long long n = i / per, c = i % per;
            if (per == 5 && c < 3) xyz[(std::size_t)(n * 3 + c)] = x;
            else tc[(std::size_t)(n * 2 + c - (per - 2))] = x;
        });
        const std::string name = frame_name(stem, (int)steps.size() + 1) + ".vts";
        write_vts(frames / name, z, time, [&](long long n, int c) { return xyz[(std::size_t)(n * 3 + c)]; },
                  {{"T", [&](long long n) { return tc[(std::size_t)(n * 2)]; }},
                   {"C", [&](long long n) { return tc[(std::size_t)(n * 2 + 1)]; }}});
        steps.push_back({time, stem + "/" + name});
    }
    if (!steps.empty()) write_pvd(pvd, steps);
    return (int)steps.size();
}

int convert_vectors(const fs::path& in, const fs::path& sets, const fs::path& pvd)
{
    LineReader r(in);
    Header h;
    if (!read_header(r, h)) return 0;
    expect_names(r, h, 6);
    std::vector<TimeStep> steps;
    std::vector<double> v;
    const std::string stem = sets.filename().string();
    Zone z;
    while (next_zone(r, z)) {
        const double time = title_time(r, z.title);
        const long long ne = z.points();
        v.resize((std::size_t)ne * 6);
        read_values(r, ne * 6, vector_width, "the zone", [&](long long i, double x) { v[(std::size_t)i] = x; });
        const std::string name = frame_name(stem, (int)steps.size() + 1) + ".vtp";
        OutFile o(sets / name);
        const std::string n = std::to_string(ne);
        open_vtk(o, "PolyData", "", time);
        o.put("<Piece NumberOfPoints=\"" + n + "\" NumberOfVerts=\"" + n +
              "\" NumberOfLines=\"0\" NumberOfStrips=\"0\" NumberOfPolys=\"0\">\n<PointData Vectors=\"velocity\">\n");
        open_array(o, "velocity", 3);
        for (long long e = 0; e < ne; ++e)
            for (int c = 3; c < 6; ++c) o.value(v[(std::size_t)(e * 6 + c)]);
        close_array(o);
        o.put("</PointData>\n<Points>\n");
        open_array(o, "Points", 3);
        for (long long e = 0; e < ne; ++e)
            for (int c = 0; c < 3; ++c) o.value(v[(std::size_t)(e * 6 + c)]);
        close_array(o);
        // one vertex a point: connectivity 0..n-1, offsets 1..n
        o.put("</Points>\n<Verts>\n<DataArray type=\"Int64\" Name=\"connectivity\" format=\"ascii\">\n");
        for (long long e = 0; e < ne; ++e) o.index(e);
        o.end_line();
        o.put("</DataArray>\n<DataArray type=\"Int64\" Name=\"offsets\" format=\"ascii\">\n");
        for (long long e = 1; e <= ne; ++e) o.index(e);
        o.end_line();
        o.put("</DataArray>\n</Verts>\n</Piece>\n");
        close_vtk(o, "PolyData");
        o.commit();
        steps.push_back({time, stem + "/" + name});
    }
    if (!steps.empty()) write_pvd(pvd, steps);
    return (int)steps.size();
}

}  // namespace gvtk
