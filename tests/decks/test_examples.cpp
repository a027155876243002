#include "support/deck_run.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

// Every example folder (examples/*/gelmor.data, found when the test runs) runs in a
// scratch directory with all its files and ends normally.  Under the sanitizers each
// interval is cut to a few steps; the checks of the physics below hold for any length.

namespace fs = std::filesystem;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int kStepsUnderSanitizers = 20;
#else
constexpr int kStepsUnderSanitizers = 0;  // 0: the full run
#endif

struct Example {
    std::string name;
    std::string deck;
    std::vector<std::pair<std::string, std::string>> files;  // everything else in the folder
};

std::string read_file(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    std::ostringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

std::vector<Example> examples()
{
    std::vector<Example> all;
    for (const auto& dir : fs::directory_iterator(fs::path(GELMOR_SOURCE_DIR) / "examples")) {
        if (!fs::is_regular_file(dir.path() / "gelmor.data")) continue;
        Example e{dir.path().filename().string(), read_file(dir.path() / "gelmor.data"), {}};
        for (const auto& f : fs::directory_iterator(dir.path()))
            if (f.is_regular_file() && f.path().filename() != "gelmor.data")
                e.files.emplace_back(f.path().filename().string(), read_file(f.path()));
        all.push_back(std::move(e));
    }
    std::sort(all.begin(), all.end(), [](const Example& a, const Example& b) { return a.name < b.name; });
    return all;
}

// The interval records (T1) are the lines whose remark starts with "interval".
bool is_interval(const std::string& line)
{
    const std::size_t r = line.find("   ");
    return r != std::string::npos && line.find_first_not_of(' ', r) == line.find("interval", r);
}

// The deck with every interval cut to at most `steps` steps (t2 = t1 + steps dt).
std::string shortened(const std::string& deck, int steps)
{
    std::vector<std::string> lines = split_lines(deck);
    for (std::string& l : lines) {
        if (!is_interval(l)) continue;
        std::istringstream in(l);
        double t1, t2, dt;
        in >> t1 >> t2 >> dt;
        std::string rest;
        std::getline(in, rest);
        std::ostringstream out;
        out.precision(17);
        out << t1 << " " << std::min(t2, t1 + steps * dt) << " " << dt << rest;
        l = out.str();
    }
    return join_lines(lines);
}

// The rows of numbers of a zone-less table (field files, series): header lines skipped.
std::vector<std::vector<double>> rows_of(const std::string& text)
{
    std::vector<std::vector<double>> rows;
    for (const std::string& l : split_lines(text)) {
        std::istringstream ls(l);
        std::vector<double> r;
        for (double v; ls >> v;) r.push_back(v);
        if (!r.empty() && ls.eof()) rows.push_back(r);
    }
    return rows;
}

// The last field file the run wrote (tc3d5 ... tc3d1), empty if none.
std::string last_field(const DeckRun& r)
{
    for (int k = 5; k >= 1; --k) {
        const std::string f = "tc3d" + std::to_string(k) + "_gelmor.out";
        if (r.dir->exists(f) && !rows_of(r.dir->read(f)).empty()) return r.dir->read(f);
    }
    return "";
}

double field_days(const std::string& field)
{
    const std::size_t p = field.find("t=");
    return p == std::string::npos ? -1.0 : std::stod(field.substr(p + 2));
}

// Whether a text holds a number that is not finite: a word nan, inf or infinity, signed
// or not, in any case.
bool has_non_finite(const std::string& text)
{
    std::istringstream in(text);
    for (std::string w; in >> w;) {
        std::string l;
        for (const char c : w) l += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (l[0] == '+' || l[0] == '-') l.erase(0, 1);
        if (l == "nan" || l.starts_with("nan(") || l == "inf" || l == "infinity") return true;
    }
    return false;
}

// Independent checks of what an example shows, by name; each holds for a shortened run too.
void check_hillslope(const DeckRun& r)
{
    // every step is steady (no drainable storage), so the table of the last field file is
    // the Dupuit mound h^2 = h2^2 + R/K (L^2 - x^2) for the recharge in force, with K of
    // water at 10 C: the deck's K is for 0 C, and water is 1.787/1.306 times as mobile at
    // 10 C (tabled viscosities, mPa s).  The first print time, 50 days, has the full recharge.
    const std::string f = r.dir->read("tc3d1_gelmor.out");
    ASSERT_EQ(field_days(f), 50.0);
    const double K = 5.0e-6 * 1.787 / 1.306, R = 6.3e-9, L = 200.0, h2 = 5.0;
    std::map<double, double> top;  // x -> highest z of y row 0
    for (const auto& row : rows_of(f))
        if (row[1] == 0.0 && (!top.count(row[0]) || row[2] > top[row[0]])) top[row[0]] = row[2];
    ASSERT_EQ(top.size(), 41u);
    for (const auto& [x, z] : top) EXPECT_NEAR(z, std::sqrt(h2 * h2 + R / K * (L * L - x * x)), 0.01 * z) << x;
}

void check_heater_wells(const DeckRun& r)
{
    // the heat content against the reference temperature grows by the heater's 400 W
    // (10 W/m2 on 40 m2) while it runs; a little leaves with the water
    const auto rows = rows_of(r.dir->read("htot_flux.plt"));
    ASSERT_GE(rows.size(), 3u);
    int checked = 0;
    for (const auto& row : rows)
        if (row[0] > 0.0 && row[0] <= 60.0) {
            const double in = 400.0 * row[0] * 86400.0;
            EXPECT_NEAR(row[2], in, 0.02 * in) << "day " << row[0];
            ++checked;
        }
    EXPECT_GT(checked, 0);
}

void check_age_section(const DeckRun& r)
{
    // all water starts at age 0, so no age passes the time run; the young-water sources
    // hold their top nodes near 0
    const std::string f = last_field(r);
    if (f.empty() && kStepsUnderSanitizers > 0) return;  // a shortened run ends before the first print time
    ASSERT_FALSE(f.empty());
    const double years = field_days(f) / 365.25;
    double lo = 1e300, hi = -1e300;
    for (const auto& row : rows_of(f)) {
        lo = std::min(lo, row[4]);
        hi = std::max(hi, row[4]);
    }
    EXPECT_LE(hi, years * (1 + 1e-5));
    EXPECT_GT(hi, 0.3 * years);
    EXPECT_GT(lo, -0.01 * years);  // a small undershoot next to the sources
}

TEST(Examples, EveryExampleRunsToItsNormalEnd)
{
    const std::vector<Example> all = examples();
    ASSERT_GE(all.size(), 7u);
    const std::map<std::string, void (*)(const DeckRun&)> checks = {
        {"hillslope", check_hillslope}, {"heater_wells", check_heater_wells}, {"age_section", check_age_section}};
    for (const Example& e : all) {
        SCOPED_TRACE(e.name);
        // what every folder has besides its deck: a README and a plot script
        std::set<std::string> names;
        for (const auto& f : e.files) names.insert(f.first);
        EXPECT_TRUE(names.count("README.md"));
        EXPECT_TRUE(names.count("plot.gp"));
        const std::vector<std::string> lines = split_lines(e.deck);
        EXPECT_GE(std::count_if(lines.begin(), lines.end(), is_interval), 1) << "the time records carry the remark \"interval\"";
        const std::string deck = kStepsUnderSanitizers > 0 ? shortened(e.deck, kStepsUnderSanitizers) : e.deck;
        const DeckRun r = run_deck(deck, e.files);
        EXPECT_EQ(r.status, 0);
        const std::string tail = "\n\n\n          **** normal exit ****\n\n\n";
        ASSERT_TRUE(r.listing.ends_with(tail)) << r.listing.substr(r.listing.size() - std::min<std::size_t>(r.listing.size(), 2000));
        EXPECT_TRUE(r.console.ends_with(tail));
        for (const auto& f : fs::directory_iterator(r.dir->path))
            EXPECT_FALSE(has_non_finite(read_file(f.path()))) << f.path().filename();
        if (checks.count(e.name)) checks.at(e.name)(r);
    }
}

TEST(Examples, ShortenedDeckCutsEveryInterval)
{
    const std::string deck = "title\n0.0 365.0 1.0 10 1 30 1 1   interval one\n0.0 1.0 0.0 1.0   hinc\n"
                             "365.0 730.0 5.0 1 1 1 1 0    interval 2: the last\n";
    EXPECT_EQ(shortened(deck, 6), "title\n0 6 1 10 1 30 1 1   interval one\n0.0 1.0 0.0 1.0   hinc\n"
                                  "365 395 5 1 1 1 1 0    interval 2: the last\n");
    EXPECT_EQ(shortened(deck, 1000), "title\n0 365 1 10 1 30 1 1   interval one\n0.0 1.0 0.0 1.0   hinc\n"
                                     "365 730 5 1 1 1 1 0    interval 2: the last\n");
}

}  // namespace
