#pragma once
// Reading the simulator's Tecplot-style result files: numbered lines, the kinds of
// header line, zone lines and the fixed-width E fields of the data records.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace gvtk {

// A fault of an input file, placed by file name and line number (0: the file as a whole).
struct InputError : std::runtime_error {
    InputError(const std::string& file, long line, const std::string& what);
};

// The lines of a file, one at a time, with their numbers; one line can be put back.
class LineReader {
public:
    explicit LineReader(const std::filesystem::path& path);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;
    bool next();                 // false at the end of the file
    void put_back() { held_ = true; }
    const std::string& line() const { return line_; }
    long number() const { return number_; }
    const std::string& name() const { return name_; }
    [[noreturn]] void fail(const std::string& what) const { throw InputError(name_, number_, what); }

private:
    std::FILE* f_ = nullptr;
    std::string name_, line_;
    long number_ = 0;
    bool held_ = false;
};

enum class LineKind { blank, title, variables, zone, text, count, data };
// What a line is, by its first word: everything that is not a known header word is data.
LineKind kind_of(std::string_view line);

// The quoted names of a variables line, blanks at their ends cut.  Names written back to
// back without a comma are two names.
std::vector<std::string> quoted_names(std::string_view line);

// The head of a file up to its first zone or data line, which is put back: the title
// (empty if none) and the names of the variables line.
struct Header {
    std::string title;
    std::vector<std::string> names;
};
// Fails if there is no variables line; false if the file holds no line at all.
bool read_header(LineReader& r, Header& h);

// A zone line: its counts and its title; `shared` when it takes variables from the zone
// before (D=(...)).
struct Zone {
    long long i = 1, j = 1, k = 1;
    std::string title;
    bool shared = false;
    long long points() const { return i * j * k; }
};
Zone parse_zone(const LineReader& r);

// The first number in a text, such as the time of "T=" 0.300000E+02 days"; false if none.
bool first_number(std::string_view text, double& v);

// The N of a closing line "number of print times: N (replace 9999 above)".
long long closing_count(const LineReader& r);

// One E field: "0.123456E+01", "-0.1234-119" (a three-digit exponent drops the E),
// NaN and Infinity.  A field of asterisks (a value too wide for its field) reads as NaN.
bool parse_field(std::string_view s, double& v);

// Calls put(v) for each value of the data line.  A run of asterisks counts as one
// overflowed field per `width` columns, since such fields stand back to back.
template <typename Put>
void line_values(const LineReader& r, int width, Put&& put)
{
    const std::string& s = r.line();
    std::size_t p = 0;
    const std::size_t n = s.size();
    while (p < n) {
        while (p < n && (s[p] == ' ' || s[p] == '\t' || s[p] == '\r')) ++p;
        if (p == n) break;
        std::size_t e = p;
        if (s[p] == '*') {
            while (e < n && s[e] == '*') ++e;
            const std::size_t fields = std::max<std::size_t>(1, (e - p) / width);
            for (std::size_t f = 0; f < fields; ++f) put(std::numeric_limits<double>::quiet_NaN());
        } else {
            while (e < n && s[e] != ' ' && s[e] != '\t' && s[e] != '\r' && s[e] != '*') ++e;
            double v;
            if (!parse_field(std::string_view(s).substr(p, e - p), v))
                r.fail("not a number: \"" + s.substr(p, e - p) + "\"");
            put(v);
        }
        p = e;
    }
}

// Reads `count` values from the data records that follow, the list running on across
// records, and hands each to put(v).  The last value must end its record.
template <typename Put>
void read_values(LineReader& r, long long count, int width, const std::string& what, Put&& put)
{
    long long got = 0;
    while (got < count) {
        if (!r.next()) r.fail("the file ends after " + std::to_string(got) + " of the " + std::to_string(count) +
                              " values of " + what);
        const LineKind k = kind_of(r.line());
        if (k == LineKind::blank) continue;
        if (k != LineKind::data)
            r.fail("a header line after " + std::to_string(got) + " of the " + std::to_string(count) +
                   " values of " + what);
        line_values(r, width, [&](double v) {
            if (got == count) r.fail("more values than the " + std::to_string(count) + " of " + what);
            put(got++, v);
        });
    }
}

}  // namespace gvtk
