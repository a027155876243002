// Cost of the result files.  BM_StepOutput times the output of one step on a prepared
// run state (sections, profiles, maps and series of a plot and peak step; optionally a
// movie frame, or a print time with its field file and 3-D vectors).  BM_Run times whole
// runs with every plot each step and with the plots switched off; the difference is the
// share of a run spent writing files.
#include "control/run.hpp"
#include "timeloop/run_state.hpp"
#include "output/fortran_format.hpp"
#include "timeloop/plot_output.hpp"
#include "support/box_grid.hpp"

#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// A fresh working directory, removed at the end.
struct WorkDir {
    fs::path path;
    explicit WorkDir(const std::string& tag)
    {
        static int count = 0;
        path = fs::temp_directory_path() / ("gelmor_bench_" + tag + "_" + std::to_string(::getpid()) + "_" +
                                            std::to_string(count++));
        fs::create_directories(path);
    }
    ~WorkDir() { fs::remove_all(path); }
};

// The grids measured: the example section and a 100 x 100 x 20 node box.
struct Shape { int nex, ney, nez; double dx, dy, dz; };
const Shape shapes[] = {{20, 1, 10, 5.0, 1.0, 2.0}, {99, 99, 19, 1.0, 1.0, 1.0}};

// A run state as the setup leaves it: grid, properties, a vertical temperature
// profile, a uniform flow, the plot sections of the example deck.
void prepare(RunState& rs, const Shape& s, const fs::path& dir)
{
    std::ofstream(dir / "gelmor.data") << "\n";
    open_files(rs.files, dir);
    Grid& g = rs.grid;
    g = box_grid(s.nex, s.ney, s.nez, s.dx, s.dy, s.dz);
    std::ostringstream sink;
    const Listing lst{&sink};
    rs.opt.kmass = 3;
    rs.opt.lheat = rs.opt.lmass = true;
    rs.opt.ksat = 1;
    Deck& d = rs.deck;
    d.medium = FreezeParams{0.05, 1.0, -1.0, 1.0, 1, 1};
    d.cf = 4186, d.pf = 1000, d.ci = 2100, d.rhoi = 917, d.tclw = 0.58, d.tcli = 2.24, d.wlh = 334000;
    d.knox[1] = (g.nx + 1) / 2;
    d.knoy[1] = 1;
    d.knoz[1] = g.nzt;
    d.knoz[2] = (g.nzt + 1) / 2;
    Media& m = rs.media;
    size_media(m, g, false, lst);
    m.tkel.assign(g.net + 1, 1.5);
    for (int e = 1; e <= g.net; ++e) {
        m.ckx[e] = m.cky[e] = 1.0e-5;
        m.ckz[e] = 1.0e-6;
        m.por[e] = 0.3, m.sw[e] = 1.0, m.csol[e] = 2.12e6;
    }
    size_fractures(rs.frac, g.ne, 3, true);
    size_fields(rs.f, g.nn, g.nnt);
    for (int n = 1; n <= g.nnt; ++n) rs.f.t1[n] = 8.0 - 3.0 * g.z[n] / g.z[g.nzt];
    for (int n = 1; n <= g.nn; ++n) rs.f.u[n] = 10.0 - g.x[n] / g.x[g.nnt];
    Velocities& v = rs.vel;
    v.vx.assign(g.net + 1, 3.6e-6), v.vy.assign(g.net + 1, 0.0), v.vz.assign(g.net + 1, 2.0e-9);
    rs.loop.iv.dt = 86400.0;
    initial_plot_output(rs);
}

// range(0): grid; range(1): 0 plot and peak step, 1 with a movie frame, 2 at a print time
void BM_StepOutput(benchmark::State& state)
{
    WorkDir dir("step");
    RunState rs;
    prepare(rs, shapes[state.range(0)], dir.path);
    LoopState& L = rs.loop;
    L.lplot2d = L.lmom = true;
    L.lmovie = state.range(1) == 1;
    L.lprint3d = state.range(1) == 2;
    for (auto _ : state) {
        ++L.istep;
        L.tdays = L.istep;
        if (L.lprint3d) rs.deck.tprint3d[1] = L.tdays;
        if (L.lprint3d) velocity_output(rs);
        step_plot_output(rs);
        // a file that only ever grows would measure the disk, not the writers
        if (L.istep % 50 == 0) {
            state.PauseTiming();
            open_files(rs.files, dir.path);
            state.ResumeTiming();
        }
    }
    state.counters["nodes"] = rs.grid.nnt;
}
BENCHMARK(BM_StepOutput)->ArgsProduct({{0, 1}, {0, 1, 2}})->Unit(benchmark::kMillisecond);

// The decks of the run timings, with every plot each step (plots = 1) or none.
std::string example_text(bool plots)
{
    std::ifstream in(fs::path(__FILE__).parent_path().parent_path() / "examples/valley_section/gelmor.data");
    std::stringstream ss;
    ss << in.rdbuf();
    std::string t = ss.str();
    if (!plots) {
        // no sections, peaks or movie frames, no print times
        t.replace(t.find("30.0 365.0 0.0 0.0 0.0"), 22, "0.0 0.0 0.0 0.0 0.0   ");
        t.replace(t.find("0.0 365.0 1.0 10 1 30 1 0"), 25, "0.0 365.0 1.0 0 1 0 0 0  ");
    }
    return t;
}

std::string box_text(int steps, bool plots)
{
    const Shape& s = shapes[1];
    const int nx = s.nex + 1, ny = s.ney + 1, nz = s.nez + 1, ne = s.nex * s.ney * s.nez;
    std::ostringstream d;
    d << "box of 100 x 100 x 20 nodes\noutput timing\nplots every step\n"
      << "0 0 0 0 0 0 1 3 0 0 0 2 0 0\n1 1 1\n" << s.nex << ".0\n" << s.ney << ".0\n" << s.nez << ".0\n"
      << s.nex << "\n" << s.ney << "\n" << s.nez << "\n0 0.0 0.0\n0 0 0 0 0\n0 0 0 0 0 0 0 0 0.0 0\n"
      << "1 1 0 0 0 0 0\n1 " << ny << " 1 " << nz << " 10.0 0\n1 " << ny << " 1 " << nz << " 9.0 0\n"
      << "1 " << ne << " 1.0e-5 1.0e-5 1.0e-6 2.0 800.0 2650.0 0.3 1.0 0\n0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
      << "1.0e-4\n0 10.0\n0 0 0 0 0 1 0\n1 " << nx << " 1 " << ny << " 5.0 0\n0 0 0 0 0 0 0\n2.0 0.3 1.0\n"
      << "1 " << nx << " 5.0 0.0 365.0 0.0 -50.0 0.0 0.0 -1\n0.1 0.0 365.0 0.0 0.0 0.0 0.0\n"
      << "1.0 0.0 365.0 0.0 0.0 0.0 0.0\n0.0 0.0 1.0 0.0 0.0 0.0 0.0\n0 0.0 0.0 0.0 1\n"
      << "1.0 0.1 0.1 0.01 1.0e-9 1.0 0.0 0.0 0\n4186.0 1000.0 2100.0 917.0 0.58 2.24 334000.0\n"
      << "0.05 1.0 -1.0 1.0 1 1\n0.05 1.0 -1.0 1.0 1 1\n"
      << "1 " << nx << " 1 " << ny << " 1 " << nz << " 8.0 5.0 0\n1 " << nx << " 1 " << ny << " 1 " << nz
      << " 0.0 0.0 0\n1.0e-4 1.0e-3 1.0e-2 1.0e-3 3 3\n0.0 0.0 5.0\n"
      << "50 0 0 0 0\n50 0 0 0 0\n20 10 0 0 0\n0.0 0.0 0.0 0.0 0.0\n"
      << "0.0 " << steps << ".0 1.0 " << (plots ? "1 1 0 1" : "0 1 0 0") << " 0\n"
      << "0.0 1.0 0.0 1.0\n0 0 0 0 0.0 0\n0 0 0 0 0 0 0.0 0.0 0.0 0\n0 0 0 0 0.0 0.0 0.0 0\n";
    return d.str();
}

// range(0): 0 example deck, 1 the box; range(1): plots on
void BM_Run(benchmark::State& state)
{
    const bool plots = state.range(1) == 1;
    const std::string deck = state.range(0) == 0 ? example_text(plots) : box_text(5, plots);
    for (auto _ : state) {
        WorkDir dir("run");
        std::ofstream(dir.path / "gelmor.data") << deck;
        std::ostringstream console;
        const auto t0 = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(run_gelmor(dir.path, console));
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count());
    }
}
BENCHMARK(BM_Run)->ArgsProduct({{0}, {0, 1}})->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Run)->ArgsProduct({{1}, {0, 1}})->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

// The field formatter alone: what one E 15/6 field costs.
void BM_FmtE(benchmark::State& state)
{
    double v = 1.2345678e-3;
    std::size_t n = 0;
    for (auto _ : state) {
        const std::string f = fmt_e(v, 15, 6);
        n += f.size();
        v *= -1.0000001;
    }
    benchmark::DoNotOptimize(n);
}
BENCHMARK(BM_FmtE);

}  // namespace

BENCHMARK_MAIN();
