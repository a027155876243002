// One flow step of a box of n x n x n nodes (n = 50 and 100): fixed heads on the two x
// faces, a vertical temperature gradient for density and viscosity, closed elsewhere.
// For one thread and for two it prints the assembly and the velocities in ns per
// element, the solver in ms per iteration and its kernels in ns per stored entry, the
// whole step; then, from whole runs of the program on the same box (flow only, three
// steps), the share of the run spent writing the plots of every step and the peak
// memory per node; and a DRAM triad of 256 MiB arrays, at the start and at the end, to
// hold the figures against.  Best of several runs each: the machine may be shared.
//
//   build-bench/flow_step_bench [n ...]
#include "flow/flow_case.hpp"
#include "flow/velocities.hpp"
#include "solver/lower_csr.hpp"
#include "base/limits.hpp"
#include "solver/pcg_ssor.hpp"

#include <benchmark/benchmark.h>
#include <omp.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <unistd.h>

extern char** environ;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point t0) { return std::chrono::duration<double>(Clock::now() - t0).count(); }

// Best time of `runs` calls of f, in seconds.
double best_of(int runs, const std::function<void()>& f)
{
    double best = 1e300;
    for (int r = 0; r < runs; ++r) {
        const auto t0 = Clock::now();
        f();
        best = std::min(best, seconds_since(t0));
    }
    return best;
}

// a = b + s c over three arrays of 256 MiB: GB/s of the 3 x 256 MiB moved (the write
// allocate not counted), best of five.
double triad_gbs()
{
    const std::size_t n = (256u << 20) / sizeof(double);
    std::vector<double> a(n, 0.0), b(n, 1.0), c(n, 2.0);
    const double t = best_of(5, [&] {
        double* pa = a.data();
        const double* pb = b.data();
        const double* pc = c.data();
        for (std::size_t i = 0; i < n; ++i) pa[i] = pb[i] + 3.0 * pc[i];
        benchmark::DoNotOptimize(pa);
    });
    return 3.0 * (double)(n * sizeof(double)) / t / 1e9;
}

struct StepFigures {
    double assembly_ns = 0, velocity_ns = 0, iteration_ms = 0, step_s = 0;
    int steps = 0;
};

FlowCase& box(int n)
{
    static std::unique_ptr<FlowCase> c;
    static int made = 0;
    if (made == n) return *c;
    c.reset();
    const std::string N = std::to_string(n);
    c = std::make_unique<FlowCase>(n - 1, n - 1, n - 1, 1.0, 1.0, 1.0,
                                   "1 1 0 0 0 0 0\n1 " + N + " 1 " + N + " 10.0 0\n1 " + N + " 1 " + N + " 9.0 0\n",
                                   1.0e-5, 1.0e-4, 0.3);
    for (int e = 1; e <= c->g.ne; ++e) c->m.ckz[e] = 1.0e-6;
    for (int k = 1; k <= c->g.nn; ++k) c->f.t1[k] = 4.0 + 10.0 * (1.0 - c->g.z[k] / c->g.zg[1]);
    c->fp.lheat = true;
    c->fp.dtinv = 1.0 / 86400.0;
    element_positions(c->flow.pat, c->g.in, c->g.ne, c->flow.idir, c->flow.ncum, c->g.nb, c->flow.epos);
    made = n;
    return *c;
}

StepFigures step_figures(FlowCase& c, int threads)
{
    omp_set_num_threads(threads);
    StepFigures s;
    for (int k = 1; k <= c.g.nn; ++k) c.f.u[k] = 9.5;  // the same system for every thread count
    c.f.u0 = c.f.u;
    const double ne = c.g.ne;
    s.assembly_ns = 1e9 / ne * best_of(5, [&] {
        assemble_flow(c.g, c.m, c.fr, c.et, c.fp, c.qsrc, c.flow, c.f, c.w, c.bs);
    });
    const double solve = best_of(3, [&] {
        for (int k = 1; k <= c.g.nn; ++k) c.f.u[k] = 9.5;  // the same start every time
        c.out.str("");
        ssor::pcg(c.w.a, c.flow.pat, c.w.b, c.f.u, c.w.work, max_work, c.w.iblk, maxblk, 1, c.con, c.lst, &s.steps);
    });
    s.iteration_ms = 1e3 * solve / std::max(1, s.steps);
    s.velocity_ns = 1e9 / ne * best_of(5, [&] { element_velocities(c.g, c.m, c.et, c.fp, 0, c.f, c.v); });
    s.step_s = best_of(2, [&] {
        for (int k = 1; k <= c.g.nn; ++k) c.f.u[k] = 9.5;
        c.out.str("");
        flow_step(c.g, c.m, c.fr, c.et, c.fp, c.qsrc, c.flow, c.f, c.w, c.bs, c.con, c.lst);
        element_velocities(c.g, c.m, c.et, c.fp, 0, c.f, c.v);
    });
    return s;
}

// The solver's kernels on the assembled matrix, ns per stored entry (serial: their
// summation order is part of their result).
void kernel_figures(FlowCase& c)
{
    const LowerPattern& p = c.flow.pat;
    const int neq = p.neq;
    std::vector<double> x(neq + 1, 1.0), y(neq + 1), d(neq + 1), e(neq + 1), w(neq + 1);
    const double nnz = p.nvec;
    const double mv = best_of(10, [&] {
        matvec_lower(p, c.w.a, x, y);
        benchmark::DoNotOptimize(y.data());
    });
    int nblk = 0;
    const double setup = best_of(5, [&] { ssor::precg(c.w.a, p, d, e, c.w.iblk, maxblk, nblk, c.con, c.lst); });
    const double sweep = best_of(10, [&] {
        ssor::cgtriadapt(c.w.a, p, x, y, w, d, e, c.w.iblk, nblk);
        benchmark::DoNotOptimize(y.data());
    });
    std::printf("  kernels (one thread): product %.3f ns/entry, block sweep %.3f ns/entry, block setup %.3f "
                "ns/entry = %.2f products; %d equations, %.0f stored entries\n",
                1e9 * mv / nnz, 1e9 * sweep / nnz, 1e9 * setup / nnz, setup / mv, neq, nnz);
}

// The flow-only box as a deck: n^3 nodes of 1 m, heads 10 and 9 m on the x faces, three
// steps of a day; plots every step when `plots`, else none.
std::string box_deck(int n, bool plots)
{
    const int e = n - 1;
    const std::string N = std::to_string(n), E = std::to_string(e), mid = std::to_string(n / 2);
    const std::string sect = plots ? mid + " 0 0 0 0\n" : "0 0 0 0 0\n";
    return "Flow box\nbench\nbox\n0 1 0 0 0 0 1 0 0 0 0 2 0 0\n1 1 1\n" + E + ".0\n" + E + ".0\n" + E + ".0\n" + E +
           "\n" + E + "\n" + E + "\n0 0.0 0.0\n0 0 0 0 0\n0 0 0 0 0 0 0 0 0.0 0\n1 1 0 0 0 0 0\n1 " + N + " 1 " + N +
           " 10.0 0\n1 " + N + " 1 " + N + " 9.0 0\n1 " + std::to_string(e * e * e) +
           " 1.0e-5 1.0e-5 1.0e-6 2.0 800.0 2650.0 0.3 1.0 0\n0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n1.0e-4\n0 9.5\n"
           "0 0 0 0 0 0 0\n2.0 0.3 1.0\n1 " + std::to_string(n * n) +
           " 5.0 0.0 365.0 0.0 -50.0 0.0 0.0 -1\n0.1 0.0 365.0 0.0 0.0 0.0 0.0\n1.0 0.0 365.0 0.0 0.0 0.0 0.0\n"
           "0.0 0.0 1.0 0.0 0.0 0.0 0.0\n0 0.0 0.0 0.0 1\n0.5 0.0 0.1 0.01 0.0 1.0 0.0 0.0 0\n"
           "4186.0 1000.0 2100.0 917.0 0.58 2.24 334000.0\n0.05 1.0 -1.0 1.0 0 0\n0.05 1.0 -1.0 1.0 0 0\n1 " + N +
           " 1 " + N + " 1 " + N + " 5.0 5.0 0\n1.0e-6 1.0e-3 1.0e-2 1.0e-3 3 3\n0.0 0.0 5.0\n" + sect + sect + sect +
           "1000.0 0.0 0.0 0.0 0.0\n0.0 3.0 1.0 " + (plots ? "1" : "1000") +
           " 1 1000 20 0\n0.0 1.0 0.0 1.0\n0 0 0 0 0.0 0\n0 0 0 0 0 0 0.0 0.0 0.0 0\n0 0 0 0 0.0 0.0 0.0 0\n";
}

struct RunFigures {
    double seconds = 0;
    long max_rss_kb = 0;
};

// The program on a deck in a fresh directory, as a child process: wall time and peak
// resident memory.
RunFigures run_program(const std::string& deck, int threads)
{
    const fs::path dir = fs::temp_directory_path() / ("gelmor_step_bench_" + std::to_string(::getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir);
    std::ofstream(dir / "gelmor.data") << deck;
    const std::string env_threads = "GELMOR_THREADS=" + std::to_string(threads);
    std::vector<char*> env;
    for (char** e = environ; *e; ++e)
        if (std::string(*e).rfind("GELMOR_THREADS=", 0) != 0) env.push_back(*e);
    env.push_back(const_cast<char*>(env_threads.c_str()));
    env.push_back(nullptr);
    const std::string exe = GELMOR_EXE;
    char* argv[] = {const_cast<char*>(exe.c_str()), nullptr};
    posix_spawn_file_actions_t fa;
    posix_spawn_file_actions_init(&fa);
    posix_spawn_file_actions_addopen(&fa, 1, "/dev/null", O_WRONLY, 0);
#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 29)
    posix_spawn_file_actions_addchdir_np(&fa, dir.c_str());
#endif
    const auto t0 = Clock::now();
    pid_t pid = 0;
    RunFigures r;
    if (posix_spawn(&pid, exe.c_str(), &fa, nullptr, argv, env.data()) == 0) {
        int status = 0;
        rusage ru{};
        wait4(pid, &status, 0, &ru);
        r.seconds = seconds_since(t0);
        r.max_rss_kb = ru.ru_maxrss;
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) std::printf("  (the run of the box failed)\n");
    }
    posix_spawn_file_actions_destroy(&fa);
    fs::remove_all(dir);
    return r;
}

void run_figures(int n, int threads)
{
    RunFigures with{1e300, 0}, without{1e300, 0};
    for (int r = 0; r < 2; ++r) {
        const RunFigures a = run_program(box_deck(n, true), threads), b = run_program(box_deck(n, false), threads);
        with.seconds = std::min(with.seconds, a.seconds);
        with.max_rss_kb = std::max(with.max_rss_kb, a.max_rss_kb);
        without.seconds = std::min(without.seconds, b.seconds);
        without.max_rss_kb = std::max(without.max_rss_kb, b.max_rss_kb);
    }
    const double nodes = (double)n * n * n;
    std::printf("  whole run, %d thread%s: %.2f s with the plots of every step, %.2f s without: output %.1f%% of "
                "the run; peak %.0f bytes a node (%.0f MB)\n",
                threads, threads > 1 ? "s" : "", with.seconds, without.seconds,
                100.0 * (with.seconds - without.seconds) / with.seconds, 1024.0 * with.max_rss_kb / nodes,
                with.max_rss_kb / 1024.0);
}

}  // namespace

int main(int argc, char** argv)
{
    std::vector<int> sizes;
    for (int i = 1; i < argc; ++i) sizes.push_back(std::atoi(argv[i]));
    if (sizes.empty()) sizes = {50, 100};
    std::printf("%d cores\n", omp_get_num_procs());
    // The whole runs first, while this process is still small: a child's peak memory, as
    // the system counts it, starts from the peak of the process that started it.
    for (int n : sizes) {
        std::printf("\n%d^3 nodes, whole runs of the program\n", n);
        for (int threads : {1, 2}) run_figures(n, threads);
    }
    std::printf("\nDRAM triad (3 x 256 MiB): %.2f GB/s\n", triad_gbs());
    for (int n : sizes) {
        FlowCase& c = box(n);
        std::printf("\n%d^3 nodes, %d elements\n", n, c.g.ne);
        StepFigures one;
        for (int threads : {1, 2}) {
            const StepFigures s = step_figures(c, threads);
            if (threads == 1) one = s;
            std::printf("  %d thread%s: assembly %.1f ns/element, velocities %.1f ns/element, solver %.2f ms/iteration "
                        "(%d iterations), flow step with velocities %.3f s",
                        threads, threads > 1 ? "s" : "", s.assembly_ns, s.velocity_ns, s.iteration_ms, s.steps,
                        s.step_s);
            if (threads > 1) std::printf(" (%.2fx of one thread)", one.step_s / s.step_s);
            std::printf("\n");
        }
        omp_set_num_threads(1);
        kernel_figures(c);
    }
    std::printf("\nDRAM triad at the end: %.2f GB/s\n", triad_gbs());
    return 0;
}
