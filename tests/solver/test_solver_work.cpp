#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "control/limits.hpp"
#include "solver/lower_csr.hpp"
#include "solver/pcg_icc.hpp"
#include "solver/pcg_ssor.hpp"
#include "solver/solver_work.hpp"
#include "solver_test_util.hpp"
#include "support/hex_system.hpp"

namespace {

// Assemble one field of the grid into the shared values and right-hand side.
void assemble(const HexSystem& s, SolverWork& w, int bound)
{
    clear_values(s.pat, w.a);
    fill_rhs(s.grid.nn, s.field.idir, s.field.ncum, s.field.qnode, w.b);
    const FixedNodes fx{s.field.idir, s.field.ncum, s.field.fc};
    ScatterTarget t{s.pat, w.a, w.b, bound};
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
    const std::vector<double> x = dense_solve(A, b);
    std::vector<double> u(s.grid.nn + 1, 0.0);
    int m = 0;
    for (int n = 1; n <= s.grid.nn; ++n) u[n] = s.field.idir[n] ? s.field.fc[n] : x[++m];
    return u;
}

// A flow field and a transport field of one grid, with different fixed nodes, take turns
// in one SolverWork sized once: each solve begins by clearing what it uses.
TEST(SolverWork, TwoFieldsShareValuesRightHandSideAndWork)
{
    const HexSystem flow = hex_grid_system(8, 7, 6, [](int, int, int k) { return k == 6; });
    const HexSystem heat = hex_grid_system(8, 7, 6, [](int i, int j, int) { return i == 1 || j == 7; });
    ASSERT_NE(flow.pat.neq, heat.pat.neq);
    SolverWork w;
    const int nnz = std::max(flow.pat.nvec, heat.pat.nvec);
    const int nwork = std::max(6 * flow.pat.neq, 3 * heat.pat.neq + heat.pat.nvec);
    size_solver_work(w, flow.grid.nn, nnz, nwork, maxblk);
    ASSERT_EQ(w.a.size(), std::size_t(nnz) + 1);
    ASSERT_EQ(w.b.size(), std::size_t(flow.grid.nn) + 1);
    ASSERT_EQ(w.iblk.size(), std::size_t(maxblk) + 1);

    Channels ch;
    std::vector<double> u(flow.grid.nn + 1, 1.0), t(heat.grid.nn + 1, 2.0);
    for (int pass = 0; pass < 2; ++pass) {
        assemble(flow, w, flow.pat.nb);
        ssor::pcg(w.a, flow.pat, w.b, u, w.work, max_work, w.iblk, maxblk, 1, ch.con, ch.lst);
        restore_nodal(flow.grid.nn, FixedNodes{flow.field.idir, flow.field.ncum, flow.field.fc}, u);
        assemble(heat, w, nb_transport);
        icc::pcg(w.a, heat.pat, w.b, t, w.work, max_work, 1, ch.lst);
        restore_nodal(heat.grid.nn, FixedNodes{heat.field.idir, heat.field.ncum, heat.field.fc}, t);
    }
    EXPECT_EQ(ch.console(), "");
    EXPECT_EQ(ch.listing(), "");
    const std::vector<double> uw = dense_nodal(flow), tw = dense_nodal(heat);
    for (int n = 1; n <= flow.grid.nn; ++n) {
        EXPECT_NEAR(u[n], uw[n], 1e-5 * std::fabs(uw[n])) << n;
        EXPECT_NEAR(t[n], tw[n], 1e-5 * std::fabs(tw[n])) << n;
    }
}

}  // namespace
