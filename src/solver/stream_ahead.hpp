#pragma once
#include <algorithm>
#include <cstddef>

// Software prefetch for the row loops of the solvers.  Rows are short (14 entries at most)
// and every entry also gathers from or scatters to a vector, so the hardware prefetcher
// alone keeps large systems waiting on memory; touching the value and column streams
// about nine rows ahead lets the loops run at memory speed.  Addresses stay in [1, last].
constexpr int stream_ahead = 128;  // entries

// g++ 12 drops __builtin_prefetch in some of these loops as dead code, so on x86-64 the
// instruction is written out.
inline void prefetch(const void* p)
{
#if defined(__x86_64__)
    asm volatile("prefetcht0 %0" : : "m"(*static_cast<const char*>(p)));
#else
    __builtin_prefetch(p);
#endif
}

inline void prefetch_ahead(const double* a, const int* ja, int k, int last)
{
    const int ka = std::min(k + stream_ahead, last);
    const int kb = std::min(k + stream_ahead + 8, last);
    prefetch(a + ka);
    prefetch(a + kb);
    prefetch(ja + ka);
}

inline void prefetch_behind(const double* a, const int* ja, int k)
{
    const int ka = std::max(k - stream_ahead, 1);
    const int kb = std::max(k - stream_ahead - 8, 1);
    prefetch(a + ka);
    prefetch(a + kb);
    prefetch(ja + ka);
}

// The memory an element's assembly reads and writes, by node and by equation: brick
// loops over large grids wait on it, the rows of a that one element adds to lying far
// apart.  `extra` arrays are nodal fields the element reads (may be null).
struct ElementStreams {
    const int* inc;       // incidence, inc[(e-1)*8 + i]
    int ne;               // elements
    const int* idir;      // fixed flags by node
    const int* ncum;      // running fixed count by node
    const int* ia;        // row starts by equation
    const double* a;      // matrix values
    const double* b;      // right-hand side by equation
    const double* r;      // a second vector by equation, or null
    const double* extra[4];
};

// Starts the loads of the element some elements ahead of e, in three stages so that each
// finds the index it depends on in cache: the node data, then the row starts, then the
// rows and the vectors by equation.
inline void prefetch_element(const ElementStreams& s, int e)
{
    constexpr int ahead_rows = 4, ahead_starts = 8, ahead_nodes = 12;  // elements
    if (e + ahead_nodes <= s.ne) {
        const int* nd = s.inc + (std::size_t)(e + ahead_nodes - 1) * 8;
        for (int i = 1; i <= 8; ++i) {
            prefetch(s.idir + nd[i]);
            prefetch(s.ncum + nd[i]);
            for (const double* x : s.extra)
                if (x) prefetch(x + nd[i]);
        }
    }
    if (e + ahead_starts <= s.ne) {
        const int* nd = s.inc + (std::size_t)(e + ahead_starts - 1) * 8;
        for (int i = 1; i <= 8; ++i)
            if (s.idir[nd[i]] != 1) prefetch(s.ia + nd[i] - s.ncum[nd[i]]);
    }
    if (e + ahead_rows <= s.ne) {
        const int* nd = s.inc + (std::size_t)(e + ahead_rows - 1) * 8;
        for (int i = 1; i <= 8; ++i) {
            if (s.idir[nd[i]] == 1) continue;
            const int m = nd[i] - s.ncum[nd[i]];
            const int k = s.ia[m], last = s.ia[m + 1] - 1;  // a row holds at most 15 entries
            prefetch(s.a + k);
            prefetch(s.a + std::min(k + 7, last));
            prefetch(s.a + last);
            prefetch(s.b + m);
            if (s.r) prefetch(s.r + m);
        }
    }
}
