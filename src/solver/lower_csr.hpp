#pragma once
#include <span>

#include "solver/pattern.hpp"

// The one matrix format of all solves: the lower triangle of the condensed symmetric
// matrix in the rows of a LowerPattern, fixed nodes eliminated.  Equation of a free node
// i is m = i - ncum[i].  All arrays are one-based: index 0 is never read or written.

// The fixed-node data of one field: idir[i] = 1 fixed, ncum[i] running count, fc fixed values.
struct FixedNodes {
    std::span<const int> idir;
    std::span<const int> ncum;
    std::span<const double> fc;
};

// Where element matrices go: the field's pattern, the shared values a and right-hand side b.
// bound is the icol search bound: nb for flow, the literal 15 (nb_transport) for transport.
// k is the icol position of the last search; a search that fails (never with a consistent
// pattern) reuses it.
struct ScatterTarget {
    const LowerPattern& pat;
    std::span<double> a;
    std::span<double> b;
    int bound;
    int k = 1;
};

// a := 0 over the entries the pattern uses, 1..nvec.
void clear_values(const LowerPattern& p, std::span<double> a);

// For ascending i = 1..nn: b[i] := 0, then b[i - ncum[i]] := qnode[i] if i is free.
// In place is safe because an equation number never exceeds its node number.
void fill_rhs(int nn, std::span<const int> idir, std::span<const int> ncum,
              std::span<const double> qnode, std::span<double> b);

// Position in a of A(m2,m1), m1 <= m2: linear search of icol row m2 for m1 over
// k = 1..t.bound; on failure the k of the previous search is used, in row m2.
int lower_position(ScatterTarget& t, int m1, int m2);

// The slots of every brick's node pairs of a pattern (see ElementPositions), from the
// element incidence inc and the field's fixed nodes; bound as for lower_position.
void element_positions(const LowerPattern& p, std::span<const int> inc, int ne, std::span<const int> idir,
                       std::span<const int> ncum, int bound, ElementPositions& ep);

// Add element matrix e (row i, column j in local node order) of an element with nodes
// `nodes` into t.a, eliminating fixed neighbours into t.b with fx.fc.  Only the pairs
// with m1 <= m2 are entered, so the part of e that goes to a must be symmetric.
void scatter_element(const int nodes[8], const double e[8][8], const FixedNodes& fx, ScatterTarget& t);
void scatter_element(const int nodes[4], const double e[4][4], const FixedNodes& fx, ScatterTarget& t);
void scatter_element(const int nodes[2], const double e[2][2], const FixedNodes& fx, ScatterTarget& t);

// Expand the equation-numbered solution in u to nodal values, i = nn down to 1:
// u[i] := fc[i] if fixed, else u[i - ncum[i]].  Descending order makes it safe in place.
void restore_nodal(int nn, const FixedNodes& fx, std::span<double> u);

// y := A x, form 1: y[i] is assigned by its own row before later rows add their mirrored
// entries, so y needs no clearing.  x and y must be distinct.
void matvec_lower(const LowerPattern& p, std::span<const double> a, std::span<const double> x,
                  std::span<double> y);

// y := A x, form 2: y is cleared over 1..neq first, then every entry is added.
void matvec_lower_cleared(const LowerPattern& p, std::span<const double> a,
                          std::span<const double> x, std::span<double> y);

// The first residual of both conjugate gradient solvers, r = A x - b: with kstart 0 from
// x := 0, so r := -b; otherwise from x as handed over, through product form 1 or, with
// `cleared`, form 2.
void start_residual(const LowerPattern& p, std::span<const double> a, std::span<const double> b,
                    std::span<double> x, std::span<double> r, int kstart, bool cleared);

// How far back the rows reach: the largest i - j of a stored entry (0 for a diagonal).
// The last entry of a row holds its smallest column.
int pattern_reach(const LowerPattern& p);
