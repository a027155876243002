// The series files as CSV tables.  Their zone lines are not trusted for the count: files
// written before the count is known carry 9999 (or 999) there and a closing line
// "number of print times: N" at the end, and a run that stopped early has no closing
// line at all.  So the records are counted as they come and checked against what the
// zone line, corrected by the closing line, promises.
#include "convert.hpp"
#include "tecplot_text.hpp"

#include <limits>

namespace gvtk {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::string csv_text(const std::string& s)
{
    if (s.find_first_of(",\"\n") == std::string::npos) return s;
    std::string q = "\"";
    for (char c : s) {
        if (c == '"') q += '"';
        q += c;
    }
    return q + "\"";
}

// The zone being read: what its line promises and what it has held so far.
struct OpenZone {
    bool active = false;
    bool has_line = false;  // records before any zone line form a zone of no promise
    Zone z;
    long line = 0;       // of the zone line
    long last_line = 0;  // of its last record
    long long rows = 0;
};

bool placeholder(long long n) { return n == 9999 || n == 999; }

// The records a zone line promises once the closing count `n` (or -1: none) stands in
// for its open count; -1 if it promises nothing definite.
long long promised(const Zone& z, long long n)
{
    long long c[3] = {z.i, z.j, z.k};
    for (long long open : {9999LL, 999LL}) {
        for (long long& v : c)
            if (v == open) {
                if (n < 0) return -1;
                v = n;
                return c[0] * c[1] * c[2];
            }
    }
    return z.points();
}

}  // namespace

long long convert_series(const fs::path& in, const fs::path& out, int width, bool zoned,
                         const std::string& title_column)
{
    LineReader r(in);
    Header h;
    if (!read_header(r, h)) return -1;
    OutFile o(out);
    // header row
    std::string head;
    if (zoned) head = title_column.empty() ? "zone," : "zone," + csv_text(title_column) + ",";
    for (std::size_t i = 0; i < h.names.size(); ++i) head += (i ? "," : "") + csv_text(h.names[i]);
    o.put(head + "\n");

    const std::size_t m = h.names.size();
    std::vector<double> row;
    OpenZone cur;
    int zones = 0;
    double title_value = nan;
    long long total = 0;
    const auto close = [&](long long count) {
        if (!cur.active) return;
        if (!row.empty())
            throw InputError(r.name(), cur.last_line,
                             "a record of " + std::to_string(row.size()) + " values where " + std::to_string(m) +
                                 " belong (a cut file?)");
        const long long want = cur.has_line ? promised(cur.z, count) : -1;
        if (want >= 0 && want != cur.rows)
            throw InputError(r.name(), cur.rows ? cur.last_line : cur.line,
                             "the zone of line " + std::to_string(cur.line) + " holds " + std::to_string(cur.rows) +
                                 " records where its count gives " + std::to_string(want));
        cur = OpenZone{};
    };
    const auto open = [&](bool has_line) {
        cur.active = true;
        cur.has_line = has_line;
        cur.line = r.number();
        ++zones;
        title_value = nan;
        if (has_line) {
            cur.z = parse_zone(r);
            if (!title_column.empty()) first_number(cur.z.title, title_value);
        }
    };
    while (r.next()) {
        switch (kind_of(r.line())) {
        case LineKind::blank:
        case LineKind::text: break;
        case LineKind::title:
        case LineKind::variables: r.fail("a second header inside the file");
        case LineKind::zone:
            close(-1);
            open(true);
            break;
        case LineKind::count: {
            const long long n = closing_count(r);
            const bool open_count = placeholder(cur.z.i) || placeholder(cur.z.j) || placeholder(cur.z.k);
            if (!cur.active || (cur.has_line && !open_count))
                r.fail("a closing count with no open zone before it");
            close(n);
            break;
        }
        case LineKind::data:
            if (!cur.active) open(false);
            cur.last_line = r.number();
            line_values(r, width, [&](double v) {
                row.push_back(v);
                if (row.size() < m) return;
                if (zoned) {
                    o.num(zones);
                    o.put(",");
                    if (!title_column.empty()) {
                        o.num(title_value);
                        o.put(",");
                    }
                }
                for (std::size_t i = 0; i < m; ++i) {
                    if (i) o.put(",");
                    o.num(row[i]);
                }
                o.put("\n");
                row.clear();
                ++cur.rows;
                ++total;
            });
            break;
        }
    }
    close(-1);
    o.commit();
    return total;
}

}  // namespace gvtk
