#pragma once
#include "base/fields.hpp"
#include "base/options.hpp"
#include "flow/velocities.hpp"
#include "grid/fractures.hpp"
#include "grid/grid.hpp"
#include "grid/properties.hpp"
#include "input/deck.hpp"
#include "output/fortran_format.hpp"
#include "output/plot_state.hpp"
#include "timeloop/forcing.hpp"

#include <omp.h>

#include <algorithm>
#include <ostream>
#include <vector>
#include <string>
#include <string_view>

// What the plot writers read: the grid, the fields and the properties of the moment.
struct PlotContext {
    const Grid& g;
    const Fields& f;
    const Deck& d;
    const Options& o;
    const Media& m;
    const Velocities& v;
    const Fractures& fr;
    const Forcing& fo;                    // the top surface of the step
    const std::vector<double>& heat_fc;   // heat fixed values: the air side of a leaky top
    double tdays = 0;    // time of the state (days)
    double dt = 0;       // step (s)
    bool setup = false;  // the t = 0 state written before the first step
};

// Unfrozen fraction of the pore water at a node, with the porous-medium curve.
inline double node_wu(const PlotContext& c, int n) { return Wu(c.f.t1[n], c.d.medium); }

// Text pieces of headers and zone lines, appended to the record buffer.
inline void add(std::string& b, std::string_view s) { b.append(s); }
inline void add_line(std::string& b, std::string_view s) { b.append(s).push_back('\n'); }
// A zone size: i, j, k counts and node or element indices.
inline void add_count(std::string& b, long long n) { b += fmt_i(n, 6); }
// The time of a zone or text label (days): an E field that never overflows for any time
// a run can reach and keeps the step of short runs.
inline void add_days(std::string& b, double tdays) { append_e(b, tdays, 13, 6); }

// Writes the buffer to the file and empties it.
void write_block(std::ostream& os, std::string& b);

// Rows of one zone: values in fields of width w with d decimals, `per_row` to a record,
// the list running on across nodes; the zone's last record may be short.  Records gather
// in the buffer and go to the file in large blocks.
struct Rows {
    std::ostream* os = nullptr;
    std::string* b = nullptr;
    int per_row = 5, w = 15, d = 6;
    int n = 0;  // fields in the open record
};
inline Rows begin_rows(std::ostream& os, std::string& b, int per_row, int w, int d) { return Rows{&os, &b, per_row, w, d, 0}; }
// Size at which a block is handed to the file; the buffer is reserved above it once.
constexpr std::size_t block_size = 1 << 16;
inline void put(Rows& r, double v)
{
    append_e(*r.b, v, r.w, r.d);
    if (++r.n == r.per_row) {
        r.b->push_back('\n');
        r.n = 0;
        if (r.b->size() >= block_size) write_block(*r.os, *r.b);
    }
}
// Closes a short last record and writes what is left.
void end_rows(Rows& r);

// Puts value(0) ... value(count - 1) as `put` would, one after the other, with the text
// of large runs formatted on all threads: each thread formats whole records of a block
// into its own piece, and the pieces go to the file in order, so the file is the same
// with any thread count.
template <class Value>
void put_values(Rows& r, long long count, Value&& value)
{
    long long k = 0;
    for (; k < count && r.n != 0; ++k) put(r, value(k));  // an open record first
    const int threads = omp_in_parallel() ? 1 : omp_get_max_threads();
    const long long per_piece = 4096LL * r.per_row;  // values a thread formats between writes
    if (threads == 1 || count - k < per_piece) {
        for (; k < count; ++k) put(r, value(k));
        return;
    }
    write_block(*r.os, *r.b);
    const long long start = k;  // a record boundary
    std::vector<std::string> pieces(threads);
    for (std::string& p : pieces) p.reserve((std::size_t)per_piece * (r.w + 1));
    while (k < count) {
        const long long n = std::min(count - k, per_piece * threads);
        const long long records = (n + r.per_row - 1) / r.per_row;
#pragma omp parallel for schedule(static, 1) num_threads(threads)
        for (int t = 0; t < threads; ++t) {
            std::string& p = pieces[t];
            p.clear();
            const long long first = k + records * t / threads * r.per_row;
            const long long last = std::min(k + records * (t + 1) / threads * r.per_row, k + n);
            for (long long j = first; j < last; ++j) {
                append_e(p, value(j), r.w, r.d);
                if ((j - k + 1) % r.per_row == 0) p.push_back('\n');
            }
        }
        for (std::string& p : pieces) r.os->write(p.data(), (std::streamsize)p.size());
        k += n;
    }
    r.n = (int)((count - start) % r.per_row);
}

// Reserves the record buffer once for the whole run.
void reserve_records(PlotOutputs& p);
