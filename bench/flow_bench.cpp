// One flow step, assembly and solve, on a box of n x n x n nodes: fixed heads on the two
// x faces, a vertical temperature gradient for density and viscosity, closed elsewhere.
#include "flow/flow_case.hpp"
#include "flow/water_table.hpp"
#include "solver/lower_csr.hpp"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <chrono>

namespace {

void BM_flow_step(benchmark::State& state)
{
    const int n = (int)state.range(0);
    const std::string N = std::to_string(n);
    FlowCase c(n - 1, n - 1, n - 1, 10.0, 10.0, 1.0,
               "1 1 0 0 0 0 0\n1 " + N + " 1 " + N + " 10.0 0\n1 " + N + " 1 " + N + " 9.0 0\n", 1.0e-5, 1.0e-4, 0.3);
    for (int e = 1; e <= c.g.ne; ++e) c.m.ckz[e] = 1.0e-6;
    for (int k = 1; k <= c.g.nn; ++k) c.f.t1[k] = 4.0 + 10.0 * (1.0 - c.g.z[k] / c.g.zg[1]);
    c.fp.lheat = true;
    c.fp.dtinv = 1.0 / 86400.0;
    element_positions(c.flow.pat, c.g.in, c.g.ne, c.flow.idir, c.flow.ncum, c.g.nb, c.flow.epos);  // as a run
    int steps = 0;
    for (auto _ : state) {
        state.PauseTiming();
        for (int k = 1; k <= c.g.nn; ++k) c.f.u[k] = 9.5;  // the same solve every time
        c.f.u0 = c.f.u;
        c.out.str("");
        state.ResumeTiming();
        flow_step(c.g, c.m, c.fr, c.et, c.fp, c.qsrc, c.flow, c.f, c.w, c.bs, c.con, c.lst, &steps);
        benchmark::DoNotOptimize(c.f.u.data());
    }
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    state.counters["pcg_steps"] = steps;
    state.counters["neq"] = c.flow.neq;
    state.counters["maxrss_MB"] = ru.ru_maxrss / 1024.0;
}
BENCHMARK(BM_flow_step)->Arg(50)->Arg(100)->Unit(benchmark::kMillisecond)->Iterations(3);

// The flow assembly alone, ns per element: range(1) = 1 with the slots found in advance
// (as a run has them), 0 with the searches.
void BM_flow_assembly(benchmark::State& state)
{
    const int n = (int)state.range(0);
    const std::string N = std::to_string(n);
    FlowCase c(n - 1, n - 1, n - 1, 10.0, 10.0, 1.0,
               "1 1 0 0 0 0 0\n1 " + N + " 1 " + N + " 10.0 0\n1 " + N + " 1 " + N + " 9.0 0\n", 1.0e-5, 1.0e-4, 0.3);
    for (int k = 1; k <= c.g.nn; ++k) c.f.t1[k] = 4.0 + 10.0 * (1.0 - c.g.z[k] / c.g.zg[1]);
    c.fp.lheat = true;
    c.fp.dtinv = 1.0 / 86400.0;
    if (state.range(1) == 1)
        element_positions(c.flow.pat, c.g.in, c.g.ne, c.flow.idir, c.flow.ncum, c.g.nb, c.flow.epos);
    double ns = 0;
    for (auto _ : state) {
        const auto t0 = std::chrono::steady_clock::now();
        assemble_flow(c.g, c.m, c.fr, c.et, c.fp, c.qsrc, c.flow, c.f, c.w, c.bs);
        benchmark::DoNotOptimize(c.w.a.data());
        ns += std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - t0).count();
    }
    state.counters["ns_per_element"] = ns / ((double)c.g.ne * (double)state.iterations());
}
BENCHMARK(BM_flow_assembly)->Args({100, 0})->Args({100, 1})->Unit(benchmark::kMillisecond)->Repetitions(3);

// One flow sequence with a free top: solve, test, move, until the table settles.  Heads
// of 95 and 90 m on the x faces of a box 99 m tall; the top 10 layers deform.
void BM_water_table_sequence(benchmark::State& state)
{
    const int n = (int)state.range(0);
    const std::string N = std::to_string(n);
    FlowCase c(n - 1, n - 1, n - 1, 10.0, 10.0, 1.0,
               "1 1 0 0 0 0 0\n1 " + N + " 1 " + N + " 95.0 0\n1 " + N + " 1 " + N + " 90.0 0\n", 1.0e-5, 1.0e-4,
               0.3);
    c.fp.dtinv = 1.0 / (1000 * 86400.0);
    std::vector<int> kwtcol(c.g.nxy + 1, 0);
    const WaterTable wt{1, 10, 0.0, 1e-3, &kwtcol, 0};
    int solves = 0;
    for (auto _ : state) {
        for (int k = 1; k <= c.g.nn; ++k) c.f.u[k] = 92.5;
        bool converged = false;
        for (solves = 0; !converged && solves < 20;) {
            c.step(1000 * 86400.0);
            ++solves;
            converged = water_table_test(c.g, wt, c.f.u, c.lst);
            if (!converged) water_table_move(c.g, wt, c.f.u, c.lst);
        }
        c.out.str("");
    }
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    state.counters["solves"] = solves;
    state.counters["maxrss_MB"] = ru.ru_maxrss / 1024.0;
}
BENCHMARK(BM_water_table_sequence)->Arg(50)->Arg(100)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
