#pragma once
#include <vector>

// Block capacity the flow step hands to ssor::pcg: a limit with a message, not a size.
// The work length limit is max_work (base/limits.hpp).
constexpr int maxblk = 1'000'000;

// Values and work shared by all fields: one solve at a time owns them.  All vectors are
// one-based (index 0 unused) and sized once by size_solver_work; nothing in a solve allocates.
struct SolverWork {
    std::vector<double> a;     // matrix values in the pattern of the field being solved
    std::vector<double> b;     // right-hand side: nodal while filled, then by equation
    std::vector<double> rvec;  // transport's second right-hand vector, nodal
    std::vector<double> work;  // pcg work: 6*neq (ssor) or 3*neq + nnz (icc) doubles
    std::vector<int> iblk;     // first equation of each tridiagonal block, ssor only
};

// nn: the most nodes of any field; nnz: the most stored entries of any pattern;
// nwork: the longest work any solve needs; maxblk: the block capacity; transport: whether
// a transport field is solved (only transport uses rvec).
inline void size_solver_work(SolverWork& w, int nn, int nnz, int nwork, int maxblk, bool transport = true)
{
    w.a.assign(nnz + 1, 0.0);
    w.b.assign(nn + 1, 0.0);
    w.rvec.assign(transport ? nn + 1 : 0, 0.0);
    w.work.assign(nwork + 1, 0.0);
    w.iblk.assign(maxblk + 1, 0);
}
