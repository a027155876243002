#pragma once
#include <cstdint>
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
};

// Column of position k (1..nb) of row m, 0 past the row's entries: the wide form in which
// the searches of assembly see a row.
inline int icol_at(const LowerPattern& p, int m, int k)
{
    return k <= p.ia[m + 1] - p.ia[m] ? p.ja[p.ia[m] + k - 1] : 0;
}

// The slots of every brick's node pairs, found once for a pattern so that assembly needs
// no search: for element e and local nodes i, j (1..8) with both nodes free and the
// equation of i not above that of j, k[(e-1)*64 + (i-1)*8 + j-1] is the slot of the pair
// in row m2 (the entry a[ia[m2] + k - 1]); 0 for every other pair.  Filled by the same
// searches, in the same order, as element-by-element assembly with lower_position, so
// the slots, and last_k for any search that follows, are exactly what it would find.
// Valid for the pattern and fixed nodes it was made from: rebuild when they change.
struct ElementPositions {
    int ne = 0;                  // elements covered; 0: not made
    std::vector<std::uint8_t> k; // 64 slots an element
    int last_k = 1;              // the search state after the last element
};
