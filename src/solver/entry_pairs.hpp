#pragma once
#include <cstring>

// Two neighbouring stored entries at a time: one 16-byte load brings two values and one
// 8-byte load two columns, where the row loops would otherwise spend a load on each.  The
// products of a pair are formed lane by lane, so every one is rounded exactly as alone.
using double_pair = double __attribute__((vector_size(16)));
using int_pair = int __attribute__((vector_size(8)));

inline double_pair load_pair(const double* p)
{
    double_pair v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

inline int_pair load_pair(const int* p)
{
    int_pair v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

inline double_pair splat(double x) { return double_pair{x, x}; }

inline void store_pair(double* p, double_pair v) { std::memcpy(p, &v, sizeof v); }
