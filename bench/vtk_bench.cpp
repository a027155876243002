// Cost of gelmor-vtk on a field file of 100 x 100 x 100 nodes (about 90 MB of text):
// wall time of the conversion and the peak resident memory of the converter process.
// The file is written record by record with the simulator's own E15.6 fields and header
// lines, so that this process stays small and the peak of its child is the converter's.
#include "output/fortran_format.hpp"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr int n = 100;  // nodes along each axis; the flow grid has 80 of the levels

// A field file of an unsaturated run: nodes z fastest, heads in flow numbering.
void write_field_file(const fs::path& dir)
{
    std::FILE* f = std::fopen((dir / "tc3d1_gelmor.out").c_str(), "wb");
    std::fputs("          Title=\"T,C,H at t=  0.365000E+03 days\"\n"
               "          variables=\"x\",\"y\",\"z\",\"T\",\"C\",\"H\"\n",
               f);
    std::fprintf(f, "          zone i= %6d, j= %6d, k= %6d, T=\"T,C,H\"\n", n, n, n);
    std::string b;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j)
            for (int k = 0; k < n; ++k) {
                for (double v : {2.0 * i, 1.5 * j, 0.25 * k, 8.0 - 0.03 * k + 0.1 * std::sin(0.1 * i),
                                 std::exp(-0.01 * i), 20.0 - 0.01 * i})
                    append_e(b, v, 15, 6);
                b.push_back('\n');
            }
        std::fwrite(b.data(), 1, b.size(), f);
        b.clear();
    }
    std::fclose(f);
    std::ofstream(dir / "gelmor.lst") << " flow grid size, nx,ny,nz:" << fmt_i(n, 12) << fmt_i(n, 12) << fmt_i(80, 12)
                                      << "\n";
}

void BM_FieldFile(benchmark::State& state)
{
    const fs::path dir = fs::temp_directory_path() / ("gelmor_vtk_bench_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    write_field_file(dir);
    const double mb = (double)fs::file_size(dir / "tc3d1_gelmor.out") / 1e6;
    const std::string cmd = "'" GELMOR_VTK_EXE "' '" + dir.string() + "' > /dev/null";
    for (auto _ : state) {
        const auto t0 = std::chrono::steady_clock::now();
        if (std::system(cmd.c_str()) != 0) state.SkipWithError("gelmor-vtk failed");
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count());
    }
    rusage child{}, self{};
    getrusage(RUSAGE_CHILDREN, &child);
    getrusage(RUSAGE_SELF, &self);
    state.counters["input_MB"] = mb;
    state.counters["output_MB"] = (double)fs::file_size(dir / "vtk" / "tc3d1_gelmor.vts") / 1e6;
    state.counters["converter_peak_MB"] = child.ru_maxrss / 1024.0;
    state.counters["bench_peak_MB"] = self.ru_maxrss / 1024.0;
    fs::remove_all(dir);
}
BENCHMARK(BM_FieldFile)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
