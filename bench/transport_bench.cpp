// One mass transport pass on a box of n x n x n nodes: C = 1 held on the x = 0 face, a
// three-dimensional velocity field that varies from element to element.  Assembly is
// timed alone (both element paths) and with the ICC solve; a DRAM triad of 256 MiB
// arrays, run in the same process, is the reference for the machine's state.
#include "flow/type_change.hpp"
#include "timeloop/balances.hpp"
#include "timeloop/histories.hpp"
#include "transport/heat_case.hpp"
#include "transport/transport_case.hpp"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <chrono>
#include <cmath>
#include <memory>

namespace {

// A velocity field of scale v along x that varies from element to element.
void vary_velocities(Velocities& vel, int net, double v)
{
    for (int e = 1; e <= net; ++e) {
        vel.vx[e] = v * (1.0 + 0.3 * std::sin(0.1 * e));
        vel.vy[e] = 0.2 * v * std::cos(0.07 * e);
        vel.vz[e] = -0.1 * v * std::sin(0.05 * e);
    }
}

std::unique_ptr<TransportCase> make_case(int n, int kint)
{
    const std::string N = std::to_string(n);
    auto c = std::make_unique<TransportCase>(n - 1, n - 1, n - 1, 1.0, 1.0, 1.0,
                                             "1 0 0 0 0 0 0\n1 " + N + " 1 " + N + " 1.0 0\n");
    vary_velocities(c->v, c->g.net, 1e-5);
    c->mp.kint = kint;
    c->mp.disp = Dispersivity{1.0, 0.5, 0.1, 0.01, 0};
    c->mp.dd = 1e-9;
    c->mp.scheme.dtinv = 1.0 / 86400.0;
    c->mp.scheme.dthalf = 43200.0;
    c->fill(0.0);
    return c;
}

void report_memory(benchmark::State& state)
{
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    state.counters["maxrss_MB"] = ru.ru_maxrss / 1024.0;
}

void BM_mass_assembly(benchmark::State& state)
{
    auto c = make_case((int)state.range(0), (int)state.range(1));
    double ns = 0;
    for (auto _ : state) {
        const auto t0 = std::chrono::steady_clock::now();
        assemble_mass(c->g, c->m, c->fr, c->v, c->et, c->mp, MassSources{c->qsrc, c->csrc}, c->mass, c->f, c->w,
                      c->cmat);
        benchmark::DoNotOptimize(c->w.a.data());
        ns += std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - t0).count();
    }
    state.counters["ns_per_element"] = ns / ((double)c->g.net * (double)state.iterations());
    report_memory(state);
}
BENCHMARK(BM_mass_assembly)
    ->Args({50, 0})
    ->Args({100, 0})
    ->Args({100, 1})
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(3)
    ->ReportAggregatesOnly(false);

void BM_mtran(benchmark::State& state)
{
    auto c = make_case((int)state.range(0), 0);
    int steps = 0;
    for (auto _ : state) {
        state.PauseTiming();
        c->fill(0.0);  // the same solve every time
        c->out.str("");
        state.ResumeTiming();
        mtran(c->g, c->m, c->fr, c->v, c->et, c->mp, MassSources{c->qsrc, c->csrc}, c->mass, c->f, c->w, c->cmat,
              c->lst, &steps);
        benchmark::DoNotOptimize(c->f.t2.data());
    }
    state.counters["pcg_steps"] = steps;
    state.counters["neq"] = c->mass.neq;
    state.counters["nnz"] = c->mass.pat.nvec;
    report_memory(state);
}
BENCHMARK(BM_mtran)->Arg(50)->Arg(100)->Unit(benchmark::kMillisecond)->Iterations(3);

std::unique_ptr<HeatCase> make_heat_case(int n, int kint)
{
    const std::string N = std::to_string(n);
    auto c = std::make_unique<HeatCase>(n - 1, n - 1, n - 1, 1.0, 1.0, 1.0,
                                        "0 0 0 0 0 1 0\n1 " + N + " 1 " + N + " -2.0 0\n");
    vary_velocities(c->v, c->g.net, 1e-6);
    c->hp.kint = kint;
    c->hp.lheat = true;
    c->hp.medium = FreezeParams{0.05, 1.0, -1.0, 1.0, 1, 1};
    c->hp.disp = Dispersivity{1.0, 0.5, 0.1, 0.01, 0};
    c->hp.scheme.dtinv = 1.0 / 86400.0;
    c->hp.scheme.dthalf = 43200.0;
    c->fill(4.0);
    return c;
}

// Assembly of a heat step, formulation range(1), kint range(2), freezing at the top.
void BM_heat_assembly(benchmark::State& state)
{
    auto c = make_heat_case((int)state.range(0), (int)state.range(2));
    const int version = (int)state.range(1);
    const HeatSources src{c->qsrc, c->tsrc, 0, {}, {}, {}, {}};
    const HeatTop top{false, 0, 0, c->tsurf, c->bz, c->bzflx, c->rech, c->fs.areacol, c->flow_idir};
    double ns = 0;
    for (auto _ : state) {
        const auto t0 = std::chrono::steady_clock::now();
        assemble_heat(version, c->g, c->m, c->fr, c->v, c->et, c->hp, top, src, c->heat, c->f, c->w, c->cmat, c->lst);
        benchmark::DoNotOptimize(c->w.a.data());
        ns += std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - t0).count();
    }
    state.counters["ns_per_element"] = ns / ((double)c->g.net * (double)state.iterations());
    report_memory(state);
}
BENCHMARK(BM_heat_assembly)
    ->Args({100, 1, 0})
    ->Args({100, 2, 0})
    ->Args({100, 1, 1})
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(3);

void BM_heat_step(benchmark::State& state)
{
    auto c = make_heat_case((int)state.range(0), 0);
    const int version = (int)state.range(1);
    const HeatSources src{c->qsrc, c->tsrc, 0, {}, {}, {}, {}};
    const HeatTop top{false, 0, 0, c->tsurf, c->bz, c->bzflx, c->rech, c->fs.areacol, c->flow_idir};
    int steps = 0;
    for (auto _ : state) {
        state.PauseTiming();
        c->fill(4.0);  // the same solve every time
        c->out.str("");
        state.ResumeTiming();
        if (version == 1)
            htran1(c->g, c->m, c->fr, c->v, c->et, c->hp, top, src, c->heat, c->f, c->w, c->cmat, c->lst, &steps);
        else
            htran2(c->g, c->m, c->fr, c->v, c->et, c->hp, top, src, c->heat, c->f, c->w, c->cmat, c->lst, &steps);
        benchmark::DoNotOptimize(c->f.t1.data());
    }
    state.counters["pcg_steps"] = steps;
    report_memory(state);
}
BENCHMARK(BM_heat_step)->Args({100, 1})->Args({100, 2})->Unit(benchmark::kMillisecond)->Iterations(3);

// Renumbering the mass field after every top node of the x = 0 half switched.
void BM_recondense(benchmark::State& state)
{
    auto c = make_case((int)state.range(0), 0);
    int flip = 0;
    for (auto _ : state) {
        state.PauseTiming();
        for (int col = 1; col <= c->g.nxy / 2; ++col) c->mass.idir[col * c->g.nzt] = flip;
        flip = 1 - flip;
        state.ResumeTiming();
        recondense(c->g, c->mass, Listing{});
        benchmark::DoNotOptimize(c->mass.pat.ja.data());
    }
    state.counters["neq"] = c->mass.neq;
    report_memory(state);
}
BENCHMARK(BM_recondense)->Arg(100)->Unit(benchmark::kMillisecond)->Iterations(4);

// The balances and histories of one step on the heat bench's box: the heat content, the
// surface and boundary fluxes of a moment step, and three wells.  Compare with
// BM_heat_step: their share of a step.
void BM_balances(benchmark::State& state)
{
    auto c = make_heat_case((int)state.range(0), 0);
    Balances b;
    size_balances(b, c->g);
    BalanceConstants k{c->hp.tc.cf, c->hp.tc.cice, 2.0, c->hp.medium, true};
    ForcingTables aux;
    Histories h;
    const int n = (int)state.range(0);
    const std::vector<Well> wells{{n / 2, n / 2, 1, n}, {2, 2, 1, n / 2}, {n - 1, n - 1, n / 2, n}};
    size_histories(h, (int)wells.size(), c->g);
    long long numit = 0;
    for (auto _ : state) {
        ++numit;
        heat_content(c->g, c->m, c->f, k, b);
        surface_fluxes(c->g, c->m, c->f, c->v, aux, k, b);
        boundary_fluxes(c->g, c->m, c->f, c->v, k, 86400.0, b);
        record_time(h, numit, numit * 1.0);
        record_wells(c->g, c->f, wells, 1, numit, h, c->lst);
        benchmark::DoNotOptimize(b.heat.htota);
    }
    report_memory(state);
}
BENCHMARK(BM_balances)->Arg(100)->Unit(benchmark::kMillisecond)->Iterations(5);

// a(i) = b(i) + s c(i) over three arrays of 256 MiB each: bytes moved per second
void BM_Triad(benchmark::State& state)
{
    const std::size_t n = (256u << 20) / sizeof(double);
    std::vector<double> a(n, 0.0), b(n, 1.0), cc(n, 2.0);
    for (auto _ : state) {
        for (std::size_t i = 0; i < n; ++i) a[i] = b[i] + 3.0 * cc[i];
        benchmark::DoNotOptimize(a.data());
    }
    state.SetBytesProcessed((int64_t)state.iterations() * (int64_t)(3 * n * sizeof(double)));
}
BENCHMARK(BM_Triad)->Unit(benchmark::kMillisecond)->Repetitions(3);

}  // namespace

BENCHMARK_MAIN();
