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
    // The plan of the incomplete factorisation (plan_factorisation), empty without one.
    // A row's shape is the list of its offsets m - column.  Rows of a grid have few
    // shapes, and what the factorisation of entry q of a row of shape s with a row of
    // shape t must pair depends on s, q and t alone: that list of position pairs is found
    // once for the pattern.
    std::vector<int> shape;                 // 1..neq: shape of each row
    int shapes = 0;                         // distinct shapes
    std::vector<int> pair_start;            // ((s*15 + q)*shapes + t): first pair; one past the end last
    std::vector<std::uint8_t> pair_pos;     // the pairs: position in row i, position in row j (1..14)
};

// Column of position k (1..nb) of row m, 0 past the row's entries: the wide form in which
// the searches of assembly see a row.
inline int icol_at(const LowerPattern& p, int m, int k)
{
    return k <= p.ia[m + 1] - p.ia[m] ? p.ja[p.ia[m] + k - 1] : 0;
}

// The slots of every brick's node pairs, found once for a pattern so that assembly needs
// no search.  A pair of two free local nodes i != j of element e has its entry in the row
// of the higher equation, m2, at a[ia[m2] + k - 1]; k is kept once for the pair, at
// k[(e-1)*28 + pair_index(i, j)] (0 when a node of the pair is fixed).  A diagonal is
// always first in its row (k = 1) and is not kept.  Filled by the same searches, in the
// same order, as element-by-element assembly with lower_position, so the slots, and
// last_k for any search that follows, are exactly what it would find.  Valid for the
// pattern and fixed nodes it was made from: rebuild when they change.
struct ElementPositions {
    static constexpr int per_element = 28;  // the pairs i < j of 8 nodes
    int ne = 0;                  // elements covered; 0: not made
    std::vector<std::uint8_t> k; // per_element slots an element
    int last_k = 1;              // the search state after the last element
};

// Index 0..27 of the pair of local nodes i != j (1..8), the same for (i, j) and (j, i).
inline int pair_index(int i, int j)
{
    static constexpr signed char table[9][9] = {
        {-1, -1, -1, -1, -1, -1, -1, -1, -1}, {-1, -1, 0, 1, 2, 3, 4, 5, 6},
        {-1, 0, -1, 7, 8, 9, 10, 11, 12},     {-1, 1, 7, -1, 13, 14, 15, 16, 17},
        {-1, 2, 8, 13, -1, 18, 19, 20, 21},   {-1, 3, 9, 14, 18, -1, 22, 23, 24},
        {-1, 4, 10, 15, 19, 22, -1, 25, 26},  {-1, 5, 11, 16, 20, 23, 25, -1, 27},
        {-1, 6, 12, 17, 21, 24, 26, 27, -1}};
    return table[i][j];
}

// Slot k (1-based, within row m2) of the pair (i, j) of an element's slots; 1 for i == j.
inline int pair_slot(const std::uint8_t* slots, int i, int j) { return i == j ? 1 : slots[pair_index(i, j)]; }
