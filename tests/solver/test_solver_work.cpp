#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "solver/lower_csr.hpp"
#include "solver/solver_work.hpp"
#include "solver_test_util.hpp"

namespace {

// Assemble one field of the grid into the shared values and right-hand side.
void assemble(const HexSystem& s, SolverWork& w)
{
    clear_values(s.pat, w.a);
    fill_rhs(s.grid.nn, s.field.idir, s.field.ncum, s.field.qnode, w.b);
    const FixedNodes fx{s.field.idir, s.field.ncum, s.field.fc};
    ScatterTarget t{s.pat, w.a, w.b, nb_transport};
    double e[8][8];
    for (int l = 1; l <= s.grid.ne; ++l) {
        hex_element_matrix(s.grid, l, e);
        scatter_element(s.grid.in[l].data(), e, fx, t);
    }
}

// Nodal solution of the dense condensed system, fixed nodes at fc.
std::vector<double> dense_nodal(const HexSystem& s)
{
    Dense A(0);
    std::vector<double> b;
    dense_condensed(s, A, b);
    const std::vector<double> x = dense_gauss_solve(A, b);
    std::vector<double> u(s.grid.nn + 1, 0.0);
    int m = 0;
    for (int n = 1; n <= s.grid.nn; ++n) u[n] = s.field.idir[n] ? s.field.fc[n] : x[++m];
    return u;
}

// Both solvers on a 10x10x10 grid without fixed nodes (from zero) and with the top and
// the x-min face fixed (from a nodal start vector), taking turns in one SolverWork sized
// once: each solve begins by clearing what it uses.
TEST(Solvers, BothMatchTheDenseSolveWithAndWithoutFixedNodesInSharedWork)
{
    const HexSystem open = hex_grid_system(10, 10, 10);
    const HexSystem fixed = hex_grid_system(10, 10, 10, [](int i, int, int k) { return k == 10 || i == 1; });
    ASSERT_LT(fixed.pat.neq, open.pat.neq);
    SolverWork w;
    size_solver_work(w, open.grid.nn, open.pat.nvec, std::max(6 * open.pat.neq, 3 * open.pat.neq + open.pat.nvec),
                     maxblk);
    Channels ch;
    for (const HexSystem* s : {&open, &fixed}) {
        const int kstart = s == &open ? 0 : 1;
        const std::vector<double> want = dense_nodal(*s);
        const FixedNodes fx{s->field.idir, s->field.ncum, s->field.fc};
        std::vector<double> u(s->grid.nn + 1), t(s->grid.nn + 1);
        for (int n = 1; n <= s->grid.nn; ++n) u[n] = t[n] = 4.0 - 0.002 * n;
        assemble(*s, w);
        ssor::pcg(w.a, s->pat, w.b, u, w.work, max_work, w.iblk, maxblk, kstart, ch.con, ch.lst);
        restore_nodal(s->grid.nn, fx, u);
        assemble(*s, w);
        icc::pcg(w.a, s->pat, w.b, t, w.work, max_work, kstart, ch.lst);
        restore_nodal(s->grid.nn, fx, t);
        for (int n = 1; n <= s->grid.nn; ++n) {
            EXPECT_NEAR(u[n], want[n], 1e-5 * std::fabs(want[n])) << n;
            EXPECT_NEAR(t[n], want[n], 1e-5 * std::fabs(want[n])) << n;
        }
    }
    EXPECT_EQ(ch.console(), "");
    EXPECT_EQ(ch.listing(), "");
}

}  // namespace
