// gelmor-vtk on real runs of the small deck: the VTK files must be well-formed XML whose
// arrays hold a value for every point, hold the values of the text files in the right
// places (x fastest, heads on the nodes of the flow grid), and carry the times of the
// zone titles; the CSV tables must hold every record; bad input must be named.
#include "support/deck_run.hpp"
#include "support/small_deck.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;

struct Tool {
    int status = -1;
    std::string out, err;
};

// Runs the converter on a directory.
Tool convert(const fs::path& dir)
{
    ScratchDir logs("vtk_logs");
    const std::string cmd = "'" GELMOR_VTK_EXE "' '" + dir.string() + "' > '" + (logs.path / "out").string() +
                            "' 2> '" + (logs.path / "err").string() + "'";
    const int s = std::system(cmd.c_str());
    return Tool{WIFEXITED(s) ? WEXITSTATUS(s) : -1, logs.read("out"), logs.read("err")};
}

// --- a small XML reader: elements, attributes and text, tags checked to match ---
struct Element {
    std::string name, text;
    std::map<std::string, std::string> attr;
    std::vector<Element> kids;
    const Element* kid(const std::string& n) const
    {
        for (const Element& k : kids)
            if (k.name == n) return &k;
        return nullptr;
    }
};

void parse_element(const std::string& s, std::size_t& p, Element& e)
{
    // at '<' of an opening tag
    std::size_t end = s.find('>', p);
    ASSERT_NE(end, std::string::npos);
    std::string tag = s.substr(p + 1, end - p - 1);
    const bool empty = !tag.empty() && tag.back() == '/';
    if (empty) tag.pop_back();
    std::istringstream in(tag);
    in >> e.name;
    for (std::string rest; std::getline(in >> std::ws, rest, '"');) {
        std::string value;
        std::getline(in, value, '"');
        const std::string key = rest.substr(0, rest.find('='));
        e.attr[key] = value;
    }
    p = end + 1;
    if (empty) return;
    for (;;) {
        const std::size_t lt = s.find('<', p);
        ASSERT_NE(lt, std::string::npos) << "no end of <" << e.name << ">";
        e.text += s.substr(p, lt - p);
        if (s.compare(lt, 2, "</") == 0) {
            const std::size_t gt = s.find('>', lt);
            ASSERT_EQ(s.substr(lt + 2, gt - lt - 2), e.name) << "tags do not match";
            p = gt + 1;
            return;
        }
        e.kids.emplace_back();
        p = lt;
        parse_element(s, p, e.kids.back());
        if (::testing::Test::HasFatalFailure()) return;
    }
}

Element parse_xml(const std::string& text)
{
    Element root;
    std::size_t p = text.find("<VTKFile");
    EXPECT_EQ(text.compare(0, 5, "<?xml"), 0);
    if (p == std::string::npos) return root;
    parse_element(text, p, root);
    EXPECT_EQ(text.find_first_not_of(" \n", p), std::string::npos) << "text after the root element";
    return root;
}

std::vector<double> numbers(const std::string& text)
{
    std::vector<double> v;
    std::istringstream in(text);
    for (std::string t; in >> t;) v.push_back(t == "nan" ? NAN : std::stod(t));
    return v;
}

// A structured grid: its extent and its arrays by name ("Points" for the coordinates),
// each checked to hold a value for every point.
struct Grid3 {
    long long nx = 0, ny = 0, nz = 0;
    double time = NAN;
    std::map<std::string, std::vector<double>> a;
};

Grid3 read_vts(const fs::path& file)
{
    Grid3 g;
    std::ifstream in(file);
    std::stringstream ss;
    ss << in.rdbuf();
    const Element root = parse_xml(ss.str());
    EXPECT_EQ(root.attr.at("type"), "StructuredGrid");
    const Element* sg = root.kid("StructuredGrid");
    if (!sg) {
        ADD_FAILURE() << file << ": no StructuredGrid";
        return g;
    }
    std::istringstream ext(sg->attr.at("WholeExtent"));
    long long lo, hi;
    for (long long* n : {&g.nx, &g.ny, &g.nz}) {
        ext >> lo >> hi;
        EXPECT_EQ(lo, 0);
        *n = hi + 1;
    }
    g.time = numbers(sg->kid("FieldData")->kid("DataArray")->text).at(0);
    const Element* piece = sg->kid("Piece");
    EXPECT_EQ(piece->attr.at("Extent"), sg->attr.at("WholeExtent"));
    const long long points = g.nx * g.ny * g.nz;
    for (const Element* part : {piece->kid("PointData"), piece->kid("Points")})
        for (const Element& da : part->kids) {
            const int comps = std::stoi(da.attr.at("NumberOfComponents"));
            g.a[da.attr.at("Name")] = numbers(da.text);
            EXPECT_EQ((long long)g.a[da.attr.at("Name")].size(), points * comps) << file << " " << da.attr.at("Name");
        }
    return g;
}

// A field file's rows, z fastest, as an independent plain read: x, y, z, T, C, H.
std::vector<std::array<double, 6>> field_rows(const std::string& text)
{
    std::vector<std::array<double, 6>> rows;
    const std::vector<std::string> lines = split_lines(text);
    for (std::size_t l = 3; l < lines.size(); ++l) {
        std::istringstream in(lines[l]);
        std::array<double, 6> r;
        for (double& v : r) in >> v;
        rows.push_back(r);
    }
    return rows;
}

// The point of node n (z fastest, nzt levels, ny rows) in a grid written x fastest.
long long point_of(long long n, const Grid3& g)
{
    const long long i = n / (g.ny * g.nz), j = n / g.nz % g.ny, k = n % g.nz;
    return k * g.nx * g.ny + j * g.nx + i;
}

// The times of a collection, in its order.
std::vector<std::pair<double, std::string>> read_pvd(const fs::path& file)
{
    std::ifstream in(file);
    std::stringstream ss;
    ss << in.rdbuf();
    const Element root = parse_xml(ss.str());
    std::vector<std::pair<double, std::string>> steps;
    for (const Element& d : root.kid("Collection")->kids)
        steps.emplace_back(std::stod(d.attr.at("timestep")), d.attr.at("file"));
    return steps;
}

// Every value of the grid equals the text file's value of its node, to print precision.
void expect_same_field(const Grid3& g, const std::vector<std::array<double, 6>>& rows, const fs::path& what)
{
    ASSERT_EQ((long long)rows.size(), g.nx * g.ny * g.nz) << what;
    const std::vector<double>& pts = g.a.at("Points");
    for (long long n = 0; n < (long long)rows.size(); ++n) {
        const long long p = point_of(n, g);
        for (int c = 0; c < 3; ++c) ASSERT_NEAR(pts[p * 3 + c], rows[n][c], 1e-6 * (1 + std::fabs(rows[n][c]))) << what;
        ASSERT_NEAR(g.a.at("T")[p], rows[n][3], 1e-6 * (1 + std::fabs(rows[n][3]))) << what << " node " << n + 1;
        ASSERT_NEAR(g.a.at("C")[p], rows[n][4], 1e-6) << what << " node " << n + 1;
    }
}

// The csv table as rows of cells; the header row first.
std::vector<std::vector<std::string>> read_csv(const fs::path& file)
{
    std::ifstream in(file);
    std::vector<std::vector<std::string>> t;
    for (std::string l; std::getline(in, l);) {
        t.emplace_back();
        std::istringstream cells(l);
        for (std::string c; std::getline(cells, c, ',');) t.back().push_back(c);
    }
    return t;
}

// The small deck with two monitor wells, the 1-D time profile at knox 2, and kmass 3:
// T held near its linear conduction profile from 8 C at z = 0 to 5 C at z = 2 (the slow flow
// along x carries a little heat).
const DeckRun& saturated_run()
{
    static const DeckRun r = run_deck(small_deck({{"[wells]", "2 1 1 3 1\n3 2 1 3 0"}, {"[knox]", "2 0 0 0 0"}}));
    return r;
}

// One transport-only layer of 1 m above the flow grid of 3 levels (ksat 0).
const DeckRun& unsaturated_run()
{
    static const DeckRun r = run_deck(small_deck({{"[options]", "0 0 0 0 0 0 0 3 0 0 0 1 0 0"},
                                                  {"[ngx]", "1 1 2"},
                                                  {"[zg]", "2.0 3.0"},
                                                  {"[nlz]", "2 1"},
                                                  {"[ranges]", "1 9 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0"},
                                                  {"[heat bottom]", "1 4 1 2 8.0 0"},
                                                  {"[tinit]", "1 4 1 2 1 4 8.0 5.0 0"},
                                                  {"[cinit]", "1 4 1 2 1 4 0.0 0.0 0"}}));
    return r;
}

// Steady flow between the fixed heads 10 m at x = 0 and 9 m at x = 3 through uniform
// ground: the head falls linearly along x.
double linear_head(double x) { return 10.0 - x / 3.0; }

}  // namespace

TEST(GelmorVtk, FieldFilesOfASaturatedRun)
{
    const DeckRun& r = saturated_run();
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    const Tool t = convert(r.dir->path);
    ASSERT_EQ(t.status, 0) << t.err;
    EXPECT_EQ(t.err, "");
    const fs::path vtk = r.dir->path / "vtk";
    for (int slot : {1, 2}) {
        const std::string name = "tc3d" + std::to_string(slot) + "_gelmor";
        const Grid3 g = read_vts(vtk / (name + ".vts"));
        EXPECT_EQ(g.nx, 4);
        EXPECT_EQ(g.ny, 2);
        EXPECT_EQ(g.nz, 3);
        EXPECT_EQ(g.time, slot) << "the print time of the deck";
        const auto rows = field_rows(r.dir->read(name + ".out"));
        expect_same_field(g, rows, name);
        // x fastest, then y, then z: a right-handed grid
        const std::vector<double>& p = g.a.at("Points");
        EXPECT_GT(p[3 * 1 + 0], p[0]);
        EXPECT_GT(p[3 * g.nx + 1], p[1]);
        EXPECT_GT(p[3 * g.nx * g.ny + 2], p[2]);
        for (long long q = 0; q < g.nx * g.ny * g.nz; ++q) {
            EXPECT_NEAR(g.a.at("H")[q], linear_head(p[3 * q]), 2e-4) << "point " << q;
            EXPECT_NEAR(g.a.at("T")[q], 8.0 - 1.5 * p[3 * q + 2], 1e-3) << "point " << q;
        }
    }
    const auto fields = read_pvd(vtk / "tc3d_gelmor.pvd");
    ASSERT_EQ(fields.size(), 2u);
    EXPECT_EQ(fields[1], std::make_pair(2.0, std::string("tc3d2_gelmor.vts")));
    // vertices at the element centres, with the velocity as a vector of three components
    const auto vel = read_pvd(vtk / "veloc3d.pvd");
    ASSERT_EQ(vel.size(), 2u);
    std::ifstream vin(vtk / vel[0].second);
    std::stringstream vs;
    vs << vin.rdbuf();
    const Element root = parse_xml(vs.str());
    const Element* piece = root.kid("PolyData")->kid("Piece");
    EXPECT_EQ(piece->attr.at("NumberOfPoints"), "6");
    EXPECT_EQ(piece->attr.at("NumberOfVerts"), "6");
    EXPECT_EQ(numbers(piece->kid("PointData")->kid("DataArray")->text).size(), 18u);
    EXPECT_EQ(numbers(piece->kid("Points")->kid("DataArray")->text).at(3), 1.5) << "centre of the second element";
    EXPECT_EQ(numbers(piece->kid("Verts")->kids.at(1).text).back(), 6) << "one vertex a point";
}

TEST(GelmorVtk, MovieFramesCarryTheirTimes)
{
    const DeckRun& r = saturated_run();
    ASSERT_EQ(convert(r.dir->path).status, 0);
    const std::string movie = r.dir->read("tc3d_gelmormovie.out");
    std::vector<double> titles;
    for (const std::string& l : split_lines(movie))
        if (l.rfind("zone", 0) == 0) titles.push_back(std::stod(l.substr(l.find("T=\"") + 3)));
    const auto steps = read_pvd(r.dir->path / "vtk" / "tc3d_gelmormovie.pvd");
    ASSERT_EQ(steps.size(), titles.size());
    ASSERT_EQ(steps.size(), 2u) << "a frame each step of the day";
    for (std::size_t f = 0; f < steps.size(); ++f) {
        EXPECT_EQ(steps[f].first, titles[f]);
        EXPECT_EQ(steps[f].first, f + 1.0);
        // the frame of the second print time is the field of that time
        const Grid3 g = read_vts(r.dir->path / "vtk" / steps[f].second);
        expect_same_field(g, field_rows(r.dir->read("tc3d" + std::to_string(f + 1) + "_gelmor.out")), steps[f].second);
    }
}

TEST(GelmorVtk, SeriesTablesHoldEveryRecord)
{
    const DeckRun& r = saturated_run();
    ASSERT_EQ(convert(r.dir->path).status, 0);
    const fs::path vtk = r.dir->path / "vtk";
    const auto htot = read_csv(vtk / "htot_flux.csv");
    ASSERT_FALSE(htot.empty());
    EXPECT_EQ(htot[0],
              (std::vector<std::string>{"time", "htotr(J)", "htota(J)", "hinr(J)", "hts2-leak(J)", "hqtop(J)"}));
    EXPECT_EQ(htot.size(), 1u + 3u) << "t = 0 and the two steps";
    // the header with the missing comma still gives ten columns
    const auto bndy = read_csv(vtk / "heatflux_bndy.csv");
    ASSERT_EQ(bndy[0].size(), 10u);
    EXPECT_EQ(bndy[0][4], "Sum_fluxright (J)");
    EXPECT_EQ(bndy[0][5], "hflxtop (W)");
    EXPECT_EQ(bndy.size(), 3u);
    // a zone a well: well 1 at x = 1 and well 2 at x = 2, screens over the whole column
    const auto wells = read_csv(vtk / "break.csv");
    ASSERT_EQ(wells.size(), 1u + 2 * 2);
    EXPECT_EQ(wells[0][0], "zone");
    for (std::size_t row = 1; row < wells.size(); ++row) {
        const int w = std::stoi(wells[row][0]);
        EXPECT_EQ(w, row <= 2 ? 1 : 2);
        EXPECT_NEAR(std::stod(wells[row][2]), linear_head(w), 2e-4) << "Havg";
        EXPECT_NEAR(std::stod(wells[row][3]), 6.5, 1e-4) << "Tavg, the mean of 8, 6.5 and 5";
    }
    // the time profile: nzt records each second step
    const auto prof = read_csv(vtk / "t1dz_time.csv");
    EXPECT_EQ(prof[0], (std::vector<std::string>{"t(d)", "z(m)", "T(degC)", "Wu"}));
    EXPECT_EQ(prof.size(), 1u + 3 * 2);
    // header-only files give a header row alone
    EXPECT_EQ(read_csv(vtk / "heatercolumnavg_vs_t.csv").size(), 1u);
}

TEST(GelmorVtk, UnsaturatedHeadsOnTheirNodesAndNoneAbove)
{
    const DeckRun& r = unsaturated_run();
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    const Tool t = convert(r.dir->path);
    ASSERT_EQ(t.status, 0) << t.err;
    const Grid3 g = read_vts(r.dir->path / "vtk" / "tc3d1_gelmor.vts");
    ASSERT_EQ(g.nz, 4);
    expect_same_field(g, field_rows(r.dir->read("tc3d1_gelmor.out")), "tc3d1");
    const std::vector<double>& p = g.a.at("Points");
    for (long long q = 0; q < g.nx * g.ny * g.nz; ++q) {
        const bool above = q / (g.nx * g.ny) == 3;
        if (above) EXPECT_TRUE(std::isnan(g.a.at("H")[q])) << "point " << q;
        else EXPECT_NEAR(g.a.at("H")[q], linear_head(p[3 * q]), 2e-4) << "point " << q;
    }
}

TEST(GelmorVtk, MalformedFilesAreNamedWithTheirLine)
{
    ScratchDir d("vtk_bad");
    const std::string field_head = "          Title=\"T,C,H at t=  0.100000E+01 days\"\n"
                                   "          variables=\"x\",\"y\",\"z\",\"T\",\"C\",\"H\"\n"
                                   "          zone i=      2, j=      2, k=      2, T=\"T,C,H\"\n";
    std::string rows;
    for (int n = 0; n < 5; ++n)
        rows += "   0.000000E+00   0.000000E+00   0.000000E+00   0.100000E+01   0.000000E+00   0.100000E+02\n";
    d.write("gelmor.lst", " flow grid size, nx,ny,nz:           2           2           2\n");
    d.write("tc3d1_gelmor.out", field_head + rows);  // cut after 5 of 8 nodes
    const std::string htot_head = "Title=\"h\"\nvariables=\"time\",\"a\"\nzone i=9999, T=\"x\"\n";
    d.write("htot_flux.plt", htot_head + "  0.1E+01  0.2E+01\n  0.2E+01  0.2x+01\n");             // a bad number
    d.write("peaktrace.plt", htot_head + "  0.1E+01  0.2E+01\nnumber of print times:   3 (replace 9999 above)\n");
    d.write("heatflux_bndy.plt", htot_head + "  0.1E+01  0.2E+01\n  0.2E+01\n");                // a cut record
    // fields that overflowed into asterisks, and a three-digit exponent without its E
    d.write("gelmor_1dxfront.plt", htot_head + "    0.10000E+01***************\n    0.20000E+01    0.12345-119\n");
    // a zone a heater level, its height in the title
    d.write("heatercolumnavg_vs_t.plt", "Title=\"h\"\nvariables=\"tdays\",\"12cmTavg\"\n"
                                        "zone i=      1, T=\"z=  0.500000E+00\"\n    0.10000E+01    0.40000E+01\n"
                                        "zone i=      1, T=\"z=  0.700000E+00\"\n    0.10000E+01    0.30000E+01\n");
    const Tool t = convert(d.path);
    EXPECT_EQ(t.status, 1);
    EXPECT_NE(t.err.find("tc3d1_gelmor.out:8: the file ends after 30 of the 48 values"), std::string::npos) << t.err;
    EXPECT_NE(t.err.find("htot_flux.plt:5: not a number: \"0.2x+01\""), std::string::npos) << t.err;
    EXPECT_NE(t.err.find("peaktrace.plt:4: the zone of line 3 holds 1 records where its count gives 3"),
              std::string::npos) << t.err;
    EXPECT_NE(t.err.find("heatflux_bndy.plt:5: a record of 1 values where 2 belong"), std::string::npos) << t.err;
    EXPECT_EQ(count_of(t.err, "\n"), 4) << "one line a bad file, nothing for the absent ones: " << t.err;
    // no half files of the bad ones; the good one is converted
    EXPECT_FALSE(fs::exists(d.path / "vtk" / "tc3d1_gelmor.vts"));
    EXPECT_FALSE(fs::exists(d.path / "vtk" / "htot_flux.csv"));
    const auto front = read_csv(d.path / "vtk" / "gelmor_1dxfront.csv");
    ASSERT_EQ(front.size(), 3u);
    EXPECT_EQ(front[1][1], "nan");
    EXPECT_DOUBLE_EQ(std::stod(front[2][1]), 0.12345e-119);
    EXPECT_EQ(read_csv(d.path / "vtk" / "heatercolumnavg_vs_t.csv"),
              (std::vector<std::vector<std::string>>{
                  {"zone", "z", "tdays", "12cmTavg"}, {"1", "0.5", "1", "4"}, {"2", "0.7", "1", "3"}}));
}

TEST(GelmorVtk, LoadsInParaView)
{
    std::string py;
    for (const char* exe : {"pvpython", "pvbatch"})
        if (std::system(("command -v " + std::string(exe) + " > /dev/null 2>&1").c_str()) == 0) {
            py = exe;
            break;
        }
    if (py.empty()) GTEST_SKIP() << "no pvpython on PATH";
    const DeckRun& r = unsaturated_run();
    ASSERT_EQ(convert(r.dir->path).status, 0);
    r.dir->write("load.py",
                 "from paraview.simple import *\n"
                 "from paraview import servermanager as sm\n"
                 "import math\n"
                 "g = sm.Fetch(XMLStructuredGridReader(FileName=['vtk/tc3d1_gelmor.vts']))\n"
                 "h = g.GetPointData().GetArray('H')\n"
                 "nan = sum(1 for i in range(h.GetNumberOfTuples()) if math.isnan(h.GetValue(i)))\n"
                 "m = PVDReader(FileName='vtk/tc3d_gelmormovie.pvd')\n"
                 "v = sm.Fetch(PVDReader(FileName='vtk/veloc3d.pvd'))\n"
                 "print('points', g.GetNumberOfPoints(), 'nan', nan, 'times', list(m.TimestepValues),\n"
                 "      'vertices', v.GetNumberOfVerts())\n");
    const std::string cmd = "cd '" + r.dir->path.string() + "' && " + py + " load.py > load.out 2>&1";
    ASSERT_EQ(std::system(cmd.c_str()), 0) << r.dir->read("load.out");
    EXPECT_NE(r.dir->read("load.out").find("points 32 nan 8 times [1.0, 2.0] vertices 9"), std::string::npos)
        << r.dir->read("load.out");
}
