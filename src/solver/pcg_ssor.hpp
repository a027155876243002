#pragma once
#include <span>

#include "base/listing.hpp"
#include "solver/pattern.hpp"

// The flow solver: conjugate gradients with an adaptive block preconditioner, one
// symmetric block Gauss-Seidel sweep over runs of tridiagonally coupled equations
// (grid columns when z is the fastest index), relaxed by 1.3.  All vectors one-based.
namespace ssor {

// Find the tridiagonal blocks of the pattern and factorise them.  Writes nblk, iblk[1..nblk+1]
// (first equation of each block, iblk[nblk+1] = neq+1), d = 1.3 / pivot and e = the L factors.
// Stops the run when nblk reaches maxblk.
void precg(std::span<const double> a, const LowerPattern& p,  // matrix
           std::span<double> d, std::span<double> e,          // block factors, length neq
           std::span<int> iblk, int maxblk, int& nblk,        // blocks
           const Console& con, const Listing& lst);

// z := M^-1 r: a forward and a backward block sweep; w is scratch of length neq and keeps
// the forward right-hand side for the backward sweep.
void cgtriadapt(std::span<const double> a, const LowerPattern& p,    // matrix
                std::span<const double> r, std::span<double> z,      // in, out
                std::span<double> w,                                 // scratch
                std::span<const double> d, std::span<const double> e,  // from precg
                std::span<const int> iblk, int nblk);

// Solve A x = b.  kstart = 0 starts from x = 0, otherwise from x as given.  work holds
// r, s, p, w, d, e, neq each; its length is checked against worklen.  Warnings go to the
// console, reports also to the listing; the run stops for a non-positive diagonal, an
// indefinite step or too many blocks.
void pcg(std::span<const double> a, const LowerPattern& p,   // matrix
         std::span<const double> b, std::span<double> x,     // right-hand side, solution
         std::span<double> work, int worklen,                // work, 6*neq doubles
         std::span<int> iblk, int maxblk,                    // blocks
         int kstart,                                         // 0: x := 0 first
         const Console& con, const Listing& lst,
         int* steps = nullptr);                              // out: steps taken, when asked

}  // namespace ssor
