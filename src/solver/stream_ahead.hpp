#pragma once
#include <algorithm>

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
