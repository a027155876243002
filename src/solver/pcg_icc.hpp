#pragma once
#include <span>

#include "base/listing.hpp"
#include "solver/pattern.hpp"

// The transport solver: conjugate gradients preconditioned by an incomplete LDL^T
// factorisation on the stored pattern, with stabilised pivots.  Its messages call it
// "ilu" and "icc"; all of them go to the listing.  All vectors one-based.
namespace icc {

// Finds the factorisation plan of a pattern (see LowerPattern); leaves none when the rows
// have too many shapes for one to pay.
void plan_factorisation(LowerPattern& p);

// Factorise f (a copy of a, same pattern) in place: f[ia[i]] becomes the pivot d(i), the
// other entries of row i the unit lower factors L(i,j).  Prints a notice on the listing
// when a pivot had to be held up by 90 % or more of its value.
void ilu(std::span<double> f, const LowerPattern& p, const Listing& lst);

// z := (L D L^T)^-1 z in place with the factor of ilu.  reach = pattern_reach(p).
void ilu_solve(std::span<const double> f, const LowerPattern& p, int reach, std::span<double> z);

// Solve A x = b.  kstart = 0: from x = 0 and factorise; 1: from x as given and factorise;
// 2 or more: from x and reuse the factor left in work.  work holds f (nnz), then r, z, p
// (neq each); its length is checked against worklen.  Stops the run only for a
// non-positive diagonal.
void pcg(std::span<const double> a, const LowerPattern& p,  // matrix
         std::span<const double> b, std::span<double> x,    // right-hand side, solution
         std::span<double> work, int worklen,               // work, 3*neq + nnz doubles
         int kstart,                                        // start and factor reuse
         const Listing& lst, int* steps = nullptr);         // out: steps taken, when asked

}  // namespace icc
