// Fuzz driver for the input phase: runs mutants of the seed decks through the input
// phases and the interval records in memory (run_input_in_memory), without a time step,
// with a trace sink on the deck's reader, as the deck checker runs them.
//
// Mutant i is a pure function of the seed and i, so any failure is replayed with
// --write i DIR or --run i.  The first mutants are the exhaustive junk phase (each junk of
// value_junk() in place of every value of every seed deck, the same for every seed);
// the rest are random: cuts, deleted, doubled and swapped lines, hostile numbers and
// byte flips.
//
// Mutants run in batches in forked children, so that a crash, a sanitizer report or a
// hang (killed by alarm after --timeout seconds) takes down one child only; the parent
// reads from a pipe which mutant was running, counts the failure and goes on after it.
// A stop that leaves no message as the last words of the listing is a failure too, and so
// is a trace whose reads do not go forward through the deck.

#include "control/run.hpp"
#include "timeloop/run_state.hpp"
#include "support/deck_run.hpp"
#include "support/small_deck.hpp"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <map>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <iostream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct FuzzOptions {
    double seconds = 120;        // budget of the whole run
    std::uint64_t seed = 1;
    long count = -1;             // mutants to run at most; -1 for no cap
    unsigned timeout = 10;       // seconds one mutant may take
    long write = -1, run = -1;   // write out or run one mutant in this process
    std::string write_dir;
};

// splitmix64: a small generator whose sequence is the same on every platform.
struct Rng {
    std::uint64_t s;
    std::uint64_t next()
    {
        std::uint64_t z = (s += 0x9e3779b97f4a7c15ull);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ull;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebull;
        return z ^ (z >> 31);
    }
    std::size_t below(std::size_t n) { return n == 0 ? 0 : next() % n; }
};

// The seed decks: the examples and the small test deck.
std::vector<std::string> seed_corpus()
{
    std::vector<std::string> decks;
    for (const char* name : {"valley_section", "seasonal_frost", "solute_column"}) decks.push_back(example_deck(name));
    decks.push_back(small_deck());
    return decks;
}

// The optional input files, each sound for the small deck's grid of 4 x 2 x 3 nodes (the
// examples' grids differ, and their checks are probed too).  A random mutant takes them
// now and then, so that options that read them read something.
std::map<std::string, std::string> aux_corpus()
{
    std::string grid3d = "t\nt\nzone i=       3, j=       2, k=       4\n", hinput = "heads\n";
    std::string therm = "title\nvariables\nzone\n", veloc = "a\nb\nc\n";
    std::string fgen_k = "K field\n3 1 2\n", fgen_por = "porosity\n3 1 2\n";
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 2; ++j)
            for (int k = 1; k <= 3; ++k) {
                const std::string xyz = std::to_string(i - 1) + " " + std::to_string(j - 1) + " " + std::to_string(k - 1);
                grid3d += xyz + " 0\n";
                therm += xyz + " 5.0 0.0 10.0\n";
                if (j == 1) hinput += std::to_string(i) + " " + std::to_string(k) + " 10.0\n";
            }
    for (int e = 1; e <= 6; ++e) {
        veloc += "0 0 1.0e-6 -1.0e-7\n";
        fgen_k += "-11.5\n";
        fgen_por += "-1.3862943611198906\n";
    }
    return {{"tair.data", "air\n3\n0 -5.0  10 2.0\n20 4.5\n"},
            {"hbdy.data", "heads\n2\n0 10.0\n5 11.0\n"},
            {"bzin.data", "bz\n2\n0.0 1  1 3 0.5 0.0 0.0  0.0\n10.0 2 1 1 0.4 1.0 2.0\n 2 3 0.6 0 0 1.5\n"},
            {"slope_zt.data", "sea\n1 5.0 -1.5\n2 6.0 -1.0\n3 7.0 -0.5\n4 8.0 0.0\n"},
            {"grid3d.plt", grid3d},
            {"hinput.data", hinput},
            {"therm_in.data", therm},
            {"veloc2d_in.data", veloc},
            {"fgen92.asc", fgen_k + fgen_por}};
}

// One junk mutant of the deterministic phase: deck, line, value and junk.
struct JunkSite {
    std::size_t deck, line, start, end, junk;
};

std::vector<JunkSite> junk_sites(const std::vector<std::vector<std::string>>& decks)
{
    std::vector<JunkSite> sites;
    for (std::size_t d = 0; d < decks.size(); ++d)
        for (std::size_t n = 3; n < decks[d].size(); ++n)  // past the three title lines
            for (const auto& [s, e] : value_spans(decks[d][n]))
                for (std::size_t j = 0; j < value_junk().size(); ++j) sites.push_back({d, n, s, e, j});
    return sites;
}

// Numbers and tokens that probe the edges of the reader and of the sizes it accepts.
const char* const hostile[] = {
    "0", "-1", "1", "2", "-2147483648", "2147483647", "2147483648", "4294967297", "-9223372036854775809",
    "1e308", "-1e308", "1e309", "1e-320", "nan", "inf", "-inf", "1e", "1d300", ".", "-", "+", "0x10", "1000000",
    "999", "3*", "*", "0*1", "-1*1", "99999*1", "2*2147483647", "/", ",", ",,", "''", "'", "1/2", "\t", "",
};

// Replaces one value of a line by a hostile token; a line without values becomes one.
void hostile_number(std::string& line, Rng& rng)
{
    const char* h = hostile[rng.below(std::size(hostile))];
    const auto spans = value_spans(line);
    if (spans.empty()) {
        line = h;
        return;
    }
    const auto [s, e] = spans[rng.below(spans.size())];
    line = line.substr(0, s) + h + line.substr(e);
}

// One to four line mutations: deleted, doubled and swapped lines, hostile numbers.
void mutate_lines(std::vector<std::string>& lines, Rng& rng)
{
    const std::size_t ops = 1 + rng.below(4);
    for (std::size_t k = 0; k < ops && !lines.empty(); ++k) {
        const std::size_t n = rng.below(lines.size());
        switch (rng.below(6)) {
        case 0: lines.erase(lines.begin() + (long)n); break;
        case 1: lines.insert(lines.begin() + (long)n, lines[n]); break;
        case 2: std::swap(lines[n], lines[rng.below(lines.size())]); break;
        default: hostile_number(lines[n], rng); break;
        }
    }
}

// Now and then byte flips, and now and then a cut of the text.
void mutate_bytes(std::string& text, Rng& rng)
{
    if (text.empty()) return;
    if (rng.below(4) == 0) {
        const std::size_t flips = 1 + rng.below(3);
        for (std::size_t k = 0; k < flips; ++k) {
            char& c = text[rng.below(text.size())];
            c = rng.below(2) == 0 ? (char)(c ^ (1 << rng.below(8))) : (char)rng.below(256);
        }
    }
    if (rng.below(6) == 0) text.resize(rng.below(text.size() + 1));
}

using Texts = std::map<std::string, std::string>;

// Mutant i of the random phase: a mutated seed deck, and in one mutant of three the
// optional input files, one of them mutated in one of two.
Texts random_mutant(const std::vector<std::vector<std::string>>& decks, const Texts& aux, std::uint64_t seed, long i)
{
    Rng rng{seed * 0x2545f4914f6cdd1dull + (std::uint64_t)i};
    rng.next();
    std::vector<std::string> lines = decks[rng.below(decks.size())];
    mutate_lines(lines, rng);
    Texts texts = {{"gelmor.data", join_lines(lines)}};
    mutate_bytes(texts["gelmor.data"], rng);
    if (rng.below(3) == 0) {
        texts.insert(aux.begin(), aux.end());
        if (rng.below(2) == 0) {
            auto f = std::next(texts.begin(), (long)rng.below(texts.size()));
            std::vector<std::string> a = split_lines(f->second);
            mutate_lines(a, rng);
            f->second = join_lines(a);
            mutate_bytes(f->second, rng);
        }
    }
    return texts;
}

struct Mutants {
    std::vector<std::vector<std::string>> decks;
    Texts aux;
    std::vector<JunkSite> junk;
    std::uint64_t seed;

    // The files of mutant i by name, the deck gelmor.data among them.
    Texts operator()(long i) const
    {
        if (i < (long)junk.size()) {
            const JunkSite& s = junk[(std::size_t)i];
            std::vector<std::string> lines = decks[s.deck];
            std::string& l = lines[s.line];
            l = l.substr(0, s.start) + value_junk()[s.junk] + l.substr(s.end);
            return {{"gelmor.data", join_lines(lines)}};
        }
        return random_mutant(decks, aux, seed, i);
    }
};

// Checks that each read of the trace starts past the last line of the one before.
struct ForwardSink final : TraceSink {
    int last = 0;
    bool forward = true;
    void read(const ReadTrace& r) override
    {
        if (r.first_line != 0 && r.first_line <= last) forward = false;
        if (r.last_line < last || (r.first_line != 0 && r.last_line < r.first_line)) forward = false;
        last = r.last_line;
    }
    void note(std::string_view) override {}
};

// Runs one mutant; false for a stop that left no message at the end of the listing.
bool run_one(const Texts& texts)
{
    ForwardSink sink;
    const InputRun r = run_input_in_memory(texts, RunScope::deck, &sink);
    if (!sink.forward) std::fprintf(stderr, "a read of the trace does not go forward\n");
    return sink.forward && (!r.stopped || ends_with_message(r.listing));
}

// A child: runs the mutants from `first` to before `last`, none past the deadline, and
// writes the number of each to the pipe before it starts it.  Exit status
// 3 names a stop without a message; crashes and sanitizer reports end it their own way.
[[noreturn]] void child(const Mutants& mutants, long first, long last, Clock::time_point deadline, unsigned timeout,
                        int pipe_fd)
{
    for (long i = first; i < last && Clock::now() < deadline; ++i) {
        if (write(pipe_fd, &i, sizeof i) != sizeof i) _exit(4);
        alarm(timeout);  // the default action of SIGALRM ends a mutant that hangs
        const bool clean = run_one(mutants(i));
        alarm(0);
        if (!clean) {
            std::fprintf(stderr, "stop without a message at the end of the listing, or a trace out of order\n");
            _exit(3);
        }
    }
    std::exit(0);  // through exit, so that LeakSanitizer checks the batch
}

// Whatever the child wrote to stderr, from the start of its file.
std::string read_all(int fd)
{
    std::string text;
    char buf[4096];
    lseek(fd, 0, SEEK_SET);
    for (ssize_t n; (n = read(fd, buf, sizeof buf)) > 0;) text.append(buf, (std::size_t)n);
    return text;
}

struct Tally {
    long mutants = 0, crashes = 0, sanitizer = 0, over_time = 0, unclean = 0;
    long failures() const { return crashes + sanitizer + over_time + unclean; }
};

// Classifies a child that did not end with status 0 and prints its report.
void report(Tally& t, long mutant, int status, const std::string& err, std::uint64_t seed)
{
    std::string kind;
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) {
        kind = "over time";
        ++t.over_time;
    } else if (err.find("Sanitizer") != std::string::npos || err.find("runtime error") != std::string::npos) {
        kind = "sanitizer report";
        ++t.sanitizer;
    } else if (WIFEXITED(status) && WEXITSTATUS(status) == 3) {
        kind = "stop without a message";
        ++t.unclean;
    } else {
        kind = WIFSIGNALED(status) ? "crash (signal " + std::to_string(WTERMSIG(status)) + ")"
                                   : "crash (exit " + std::to_string(WEXITSTATUS(status)) + ")";
        ++t.crashes;
    }
    if (err.find("LeakSanitizer") != std::string::npos) kind += " (a leak, found at the exit of the batch ending here)";
    std::cout << "fuzz: " << kind << " at mutant " << mutant << "; replay: fuzz_input --seed " << seed
              << " --write " << mutant << " DIR (or --run " << mutant << ")\n";
    std::istringstream lines(err);
    int n = 0;
    for (std::string l; std::getline(lines, l) && n < 30; ++n) std::cout << "  | " << l << "\n";
    std::cout.flush();
}

Tally fuzz(const Mutants& mutants, const FuzzOptions& opt)
{
    const Clock::time_point deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                                          std::chrono::duration<double>(opt.seconds));
    const long end = opt.count < 0 ? std::numeric_limits<long>::max() : opt.count;
    constexpr long batch = 2000;  // mutants a child runs before a fresh one takes over
    Tally t;
    long next = 0;
    char err_name[] = "/tmp/gelmor_fuzz_XXXXXX";
    const int err_fd = mkstemp(err_name);
    if (err_fd < 0) throw std::runtime_error("fuzz: no scratch file for the children's stderr");
    unlink(err_name);
    while (next < end && Clock::now() < deadline) {
        int fds[2];
        if (pipe(fds) != 0) throw std::runtime_error("fuzz: no pipe");
        if (ftruncate(err_fd, 0) != 0 || lseek(err_fd, 0, SEEK_SET) != 0)
            throw std::runtime_error("fuzz: cannot clear the stderr file");
        std::cout.flush();
        const pid_t pid = fork();
        if (pid < 0) throw std::runtime_error("fuzz: fork failed");
        if (pid == 0) {
            close(fds[0]);
            dup2(err_fd, 2);
            child(mutants, next, std::min(end, next + batch), deadline, opt.timeout, fds[1]);
        }
        close(fds[1]);
        long started = -1;
        for (long i; read(fds[0], &i, sizeof i) == sizeof i;) {
            started = i;
            ++t.mutants;
        }
        close(fds[0]);
        int status = 0;
        waitpid(pid, &status, 0);
        if (!(WIFEXITED(status) && WEXITSTATUS(status) == 0)) report(t, started, status, read_all(err_fd), opt.seed);
        if (started < 0) break;  // the deadline came before the first mutant, or the child failed before it
        next = started + 1;
    }
    close(err_fd);
    return t;
}

FuzzOptions parse(int argc, char** argv)
{
    FuzzOptions o;
    for (int a = 1; a < argc; ++a) {
        const std::string arg = argv[a];
        if (a + 1 >= argc) throw std::invalid_argument("missing value after " + arg);
        const char* v = argv[++a];
        if (arg == "--seconds") o.seconds = std::stod(v);
        else if (arg == "--seed") o.seed = std::stoull(v);
        else if (arg == "--count") o.count = std::stol(v);
        else if (arg == "--timeout") o.timeout = (unsigned)std::stoul(v);
        else if (arg == "--write" && a + 1 < argc) {
            o.write = std::stol(v);
            o.write_dir = argv[++a];
        }
        else if (arg == "--run") o.run = std::stol(v);
        else throw std::invalid_argument("unknown option " + arg);
    }
    return o;
}

const char* const usage =
    "usage: fuzz_input [--seconds N] [--seed S] [--count N] [--timeout T] [--write I DIR | --run I]\n"
    "  --seconds N  stop starting mutants after N seconds (120)\n"
    "  --seed S     seed of the random mutants (1); the junk phase is the same for every seed\n"
    "  --count N    run at most N mutants\n"
    "  --timeout T  a mutant running longer than T seconds is a failure (10)\n"
    "  --write I D  write the files of mutant I (gelmor.data and any others) into directory D\n"
    "  --run I      run mutant I in this process (for a debugger)\n";

}  // namespace

int main(int argc, char** argv)
{
    FuzzOptions opt;
    try {
        opt = parse(argc, argv);
    } catch (const std::exception& e) {
        std::cerr << e.what() << "\n" << usage;
        return 2;
    }
    Mutants mutants;
    for (const std::string& d : seed_corpus()) mutants.decks.push_back(split_lines(d));
    mutants.aux = aux_corpus();
    mutants.junk = junk_sites(mutants.decks);
    mutants.seed = opt.seed;
    if (opt.write >= 0) {
        std::filesystem::create_directories(opt.write_dir);
        for (const auto& [name, text] : mutants(opt.write))
            std::ofstream(std::filesystem::path(opt.write_dir) / name, std::ios::binary) << text;
        return 0;
    }
    if (opt.run >= 0) return run_one(mutants(opt.run)) ? 0 : 1;

    const auto t0 = Clock::now();
    Tally t;
    try {
        t = fuzz(mutants, opt);
    } catch (const std::runtime_error& e) {
        std::cerr << e.what() << "\n";
        return 2;
    }
    const double secs = std::chrono::duration<double>(Clock::now() - t0).count();
    std::cout << "fuzz: seed " << opt.seed << ", " << mutants.junk.size() << " junk mutants first, "
              << std::fixed << std::setprecision(0) << secs << " s\n";
    std::cout << "fuzz: " << t.mutants << " mutants, " << t.crashes << " crashes, " << t.sanitizer
              << " sanitizer reports, " << t.over_time << " over time, " << t.unclean << " stops without a message\n";
    return t.failures() == 0 ? 0 : 1;
}
