#pragma once
#include <vector>

// Lower triangle of a symmetric matrix, one-based (index 0 unused).  Row m holds the
// diagonal first at a[ia[m]], then columns < m in strictly descending order up to
// ia[m+1]-1.  Equation m of a field is free node i with m = i - ncum[i].
struct LowerPattern {
    int neq = 0;            // number of equations (free nodes)
    int nb = 15;            // positions reserved per row in icol, diagonal included
    int nvec = 0;           // stored entries (the "vector length")
    int bandwidth = 0;      // widest row found, diagonal included
    std::vector<int> ia;    // size neq+2; ia[neq+1] = nvec + 1
    std::vector<int> ja;    // size nvec+1: column of each stored entry
    std::vector<int> icol;  // wide form for assembly: icol_at(m,k) = ja[ia[m]+k-1], 0 past the row
};

// The wide form keeps the nb positions of a row side by side, so that the short linear
// search of assembly touches one or two cache lines.
inline int& icol_at(LowerPattern& p, int m, int k) { return p.icol[(m - 1) * p.nb + k]; }
inline int icol_at(const LowerPattern& p, int m, int k) { return p.icol[(m - 1) * p.nb + k]; }
