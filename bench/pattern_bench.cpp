// Boundary index and matrix pattern of a large box: the cost of mindex for a
// 100 x 100 x 100 node grid with fixed heads on two faces.
#include "base/listing.hpp"
#include "base/options.hpp"
#include "flow/mindex.hpp"
#include "grid/gengrid.hpp"
#include "support/box_grid.hpp"

#include <benchmark/benchmark.h>

#include <fstream>
#include <sstream>
#include <sys/resource.h>

namespace {

Grid make_box(int n) { return box_grid(n - 1, n - 1, n - 1, 1.0, 1.0, 1.0); }

void BM_mindex(benchmark::State& state)
{
    const int n = (int)state.range(0);
    const Grid g = make_box(n);
    const std::string section = "1 1 0 0 0 0 0\n1 " + std::to_string(n) + " 1 " + std::to_string(n) + " 10.0 0\n1 " +
                                std::to_string(n) + " 1 " + std::to_string(n) + " 9.0 0\n";
    FieldIndex fi;
    FaceScratch fs;
    CosineHead wt;
    for (auto _ : state) {
        std::istringstream in(section);
        RecordReader rd(in, "bench");
        std::ofstream null("/dev/null");
        mindex(rd, Listing{&null}, 0, g.nn, g.ne, g.nx, g.ny, g.nz, g.in, g.x, g.y, g.z, 15, fi, fs, wt);
        benchmark::DoNotOptimize(fi.pat.ja.data());
    }
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    state.counters["neq"] = fi.neq;
    state.counters["entries"] = fi.pat.nvec;
    state.counters["maxrss_MB"] = ru.ru_maxrss / 1024.0;
}
BENCHMARK(BM_mindex)->Arg(50)->Arg(100)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
