// One flow step, assembly and solve, on a box of n x n x n nodes: fixed heads on the two
// x faces, a vertical temperature gradient for density and viscosity, closed elsewhere.
#include "flow/flow_case.hpp"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

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

}  // namespace

BENCHMARK_MAIN();
