// gelmor-vtk [RUN_DIR]: companion files for viewers from the result files of a run.
// Everything goes into RUN_DIR/vtk; the run's own files are only read.  A file the run
// did not write (absent or empty) is passed by; a malformed one is named with its line,
// the others are still converted, and the exit status is 1.
#include "convert.hpp"
#include "tecplot_text.hpp"

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace gvtk;

const char* const usage =
    "usage: gelmor-vtk [RUN_DIR]\n"
    "Converts the result files of a gelmor run in RUN_DIR (default: the current directory)\n"
    "into RUN_DIR/vtk: the field files tc3dN_gelmor.out and the movie as VTK structured\n"
    "grids (.vts) with time collections (.pvd), veloc3d.out as points with a velocity\n"
    "vector (.vtp), and the series files as CSV tables.\n";

// The series files: name, field width of their records, zone column and title column.
struct SeriesFile {
    const char* name;
    int width;
    bool zoned;
    const char* title_column;
};
const SeriesFile series_files[] = {
    {"break.plt", 15, true, ""},  // a zone a monitor well
    {"htot_flux.plt", 16, false, ""},
    {"peaktrace.plt", 16, false, ""},
    {"heatflux_bndy.plt", 15, false, ""},
    {"gelmor_1dxfront.plt", 15, false, ""},
    {"gelmor_1dzfront.plt", 15, false, ""},
    {"heatercolumnavg_vs_t.plt", 15, true, "z"},      // a zone a heater level at height z
    {"heatercolumnavg_1Dz.plt", 15, true, "tdays"},   // a zone a step at its time
    {"t1dz_time.plt", 15, false, ""},
    {"t1dx_time.plt", 15, false, ""},
};

// A result file the run wrote: present and not empty.
bool written(const fs::path& p)
{
    std::error_code ec;
    return fs::is_regular_file(p, ec) && fs::file_size(p, ec) > 0;
}

struct Converter {
    fs::path run, vtk;
    int failures = 0;

    // Runs one conversion; a fault of its input is reported and counted.
    template <typename F>
    void guarded(F&& f)
    {
        try {
            f();
        } catch (const InputError& e) {
            std::cerr << "gelmor-vtk: " << e.what() << "\n";
            ++failures;
        }
    }
    void say(const std::string& from, const std::string& to, const std::string& what = "")
    {
        std::cout << from << " -> vtk/" << to << what << "\n";
    }

    void fields()
    {
        std::optional<FlowGrid> flow;
        guarded([&] { flow = read_flow_grid(run / "gelmor.lst"); });
        std::vector<TimeStep> steps;
        for (int slot = 1; slot <= 5; ++slot) {
            const std::string name = "tc3d" + std::to_string(slot) + "_gelmor";
            if (!written(run / (name + ".out"))) continue;
            if (!flow)
                std::cerr << "gelmor-vtk: gelmor.lst gives no flow grid size; the heads of " << name
                          << ".out are left out\n";
            guarded([&] {
                const double t = convert_field_file(run / (name + ".out"), vtk / (name + ".vts"), flow);
                steps.push_back({t, name + ".vts"});
                say(name + ".out", name + ".vts");
            });
        }
        if (!steps.empty()) write_pvd(vtk / "tc3d_gelmor.pvd", steps);
    }

    void movie()
    {
        if (!written(run / "tc3d_gelmormovie.out")) return;
        guarded([&] {
            const int n = convert_movie(run / "tc3d_gelmormovie.out", vtk / "tc3d_gelmormovie",
                                        vtk / "tc3d_gelmormovie.pvd");
            if (n > 0) say("tc3d_gelmormovie.out", "tc3d_gelmormovie.pvd", " (" + std::to_string(n) + " frames)");
        });
    }

    void vectors()
    {
        if (!written(run / "veloc3d.out")) return;
        guarded([&] {
            const int n = convert_vectors(run / "veloc3d.out", vtk / "veloc3d", vtk / "veloc3d.pvd");
            if (n > 0) say("veloc3d.out", "veloc3d.pvd", " (" + std::to_string(n) + " times)");
        });
    }

    void series()
    {
        for (const SeriesFile& s : series_files) {
            if (!written(run / s.name)) continue;
            const std::string csv = fs::path(s.name).stem().string() + ".csv";
            guarded([&] {
                const long long rows = convert_series(run / s.name, vtk / csv, s.width, s.zoned, s.title_column);
                if (rows >= 0) say(s.name, csv, " (" + std::to_string(rows) + " rows)");
            });
        }
    }
};

}  // namespace

int main(int argc, char** argv)
{
    if (argc > 2 || (argc == 2 && (std::string(argv[1]) == "-h" || std::string(argv[1]) == "--help"))) {
        std::cerr << usage;
        return argc > 2 ? 2 : 0;
    }
    Converter c;
    c.run = argc == 2 ? fs::path(argv[1]) : fs::path(".");
    std::error_code ec;
    if (!fs::is_directory(c.run, ec)) {
        std::cerr << "gelmor-vtk: " << c.run.string() << ": not a directory\n" << usage;
        return 2;
    }
    c.vtk = c.run / "vtk";
    if (fs::exists(c.vtk, ec) && !fs::is_directory(c.vtk, ec)) {
        std::cerr << "gelmor-vtk: " << c.vtk.string() << " exists and is not a directory\n";
        return 2;
    }
    try {
        c.fields();
        c.movie();
        c.vectors();
        c.series();
    } catch (const std::exception& e) {
        // an output that cannot be written ends the conversion
        std::cerr << "gelmor-vtk: " << e.what() << "\n";
        return 1;
    }
    return c.failures > 0 ? 1 : 0;
}
