// One flow step, assembly and solve, on a box of n x n x n nodes: fixed heads on the two
// x faces, a vertical temperature gradient for density and viscosity, closed elsewhere.
#include "control/options.hpp"
#include "flow/flow_system.hpp"
#include "flow/mindex.hpp"
#include "grid/gengrid.hpp"
#include "support/box_grid.hpp"

#include <benchmark/benchmark.h>

#include <fstream>
#include <sstream>
#include <sys/resource.h>

namespace {

struct Box {
    Grid g;
    Media m;
    Fractures fr;
    ElementTables et;
    double cmat[9][9];
    FieldIndex flow;
    FaceScratch fs;
    CosineHead wt;
    Fields f;
    SolverWork w;
    std::vector<double> bs, qsrc;
    FlowParams fp;
    std::ofstream null{"/dev/null"};

    explicit Box(int n)
    {
        const Listing lst{&null};
        g = box_grid(n - 1, n - 1, n - 1, 10.0, 10.0, 1.0);
        fill_element_tables(et, cmat);
        const std::string N = std::to_string(n);
        std::istringstream in("1 1 0 0 0 0 0\n1 " + N + " 1 " + N + " 10.0 0\n1 " + N + " 1 " + N + " 9.0 0\n");
        RecordReader rd(in, "bench");
        mindex(rd, lst, 0, g.nn, g.ne, g.nx, g.ny, g.nz, g.in, g.x, g.y, g.z, 15, flow, fs, wt);
        size_media(m, g, false, lst);
        for (int e = 1; e <= g.ne; ++e) {
            m.ckx[e] = m.cky[e] = 1.0e-5;
            m.ckz[e] = 1.0e-6;
            m.por[e] = 0.3;
            m.sw[e] = 1.0;
        }
        m.ss = 1.0e-4;
        size_fractures(fr, g.ne, 0, true);
        size_fields(f, g.nn, g.nnt);
        for (int k = 1; k <= g.nn; ++k) {
            f.u[k] = 9.5;
            f.t1[k] = 4.0 + 10.0 * (1.0 - g.z[k] / g.zg[1]);
        }
        size_solver_work(w, g.nn, flow.pat.nvec, 6 * flow.neq, flow.neq + 1);
        bs.assign(flow.neq + 1, 0.0);
        qsrc.assign(g.nn + 1, 0.0);
        fp.lheat = true;
        fp.medium.modelwu = fp.medium.modelkr = 0;
        fp.fracture = fp.medium;
        fp.dtinv = 1.0 / 86400.0;
    }
};

void BM_flow_step(benchmark::State& state)
{
    Box b((int)state.range(0));
    const Listing lst{&b.null};
    const Console con{&b.null};
    int steps = 0;
    for (auto _ : state) {
        state.PauseTiming();
        for (int k = 1; k <= b.g.nn; ++k) b.f.u[k] = 9.5;  // the same solve every time
        state.ResumeTiming();
        b.f.u0 = b.f.u;
        flow_step(b.g, b.m, b.fr, b.et, b.fp, b.qsrc, b.flow, b.f, b.w, b.bs, con, lst, &steps);
        benchmark::DoNotOptimize(b.f.u.data());
    }
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    state.counters["pcg_steps"] = steps;
    state.counters["neq"] = b.flow.neq;
    state.counters["maxrss_MB"] = ru.ru_maxrss / 1024.0;
}
BENCHMARK(BM_flow_step)->Arg(50)->Arg(100)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
