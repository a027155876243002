#pragma once
#include <span>
#include <vector>

#include "base/listing.hpp"
#include "element/layers.hpp"
#include "element/tables.hpp"
#include "flow/field_index.hpp"
#include "flow/velocities.hpp"
#include "grid/fractures.hpp"
#include "grid/grid.hpp"
#include "solver/solver_work.hpp"
#include "solver/stream_ahead.hpp"
#include "transport/element_matrices.hpp"

// The frame every transport step shares: clearing the system, the brick loop with its
// scatter, the fracture geometry, and the solve with the restore of the nodal field.
// The steps differ only in the coefficients they hand to it.

// rvec := 0 over 1..nnt, b from the field's qnode, a := 0 over the pattern.
void start_transport_system(int nnt, const FieldIndex& fi, SolverWork& w);

// b += rvec over the equations, the ICC pcg from u (in node numbering) as start vector,
// then u restored to nodes: fixed nodes take fc; with `clip` a value below 1e-50 is set to
// 0, in the equation's slot too.  `steps`, when given, receives the pcg step count.
void solve_transport_system(int nnt, const FieldIndex& fi, SolverWork& w, std::vector<double>& u, bool clip,
                            const Listing& lst, int* steps = nullptr);

// What the brick loop needs of one element: its 15 coefficients, R and the 1/dt that
// multiplies its mass matrix (a heat capacity times 1/dt in heat units).
struct BrickTerms {
    ElementCoefficients c;
    double R = 1;
    double dtinv = 0;
};

// Assembles every brick of the transport grid: terms(e, nodes) gives its coefficients, then the
// Gauss path (kint 1) or the tables path (kint 0, with decay and growth into cmat) forms
// the matrices and they are scattered with the old-level field `old`; `pass` is the
// other field terms reads.  On large grids the loads of the elements ahead are started
// early (the rows an element adds to lie far apart).  Any other kint leaves the matrices of the element before.
// Returns the R of the last element; cmat is left as the last element made it.
// With `on_threads` the bricks are shared among the threads in runs of whole layers, every
// sum still in element order (for_each_element_in_order); terms must then write nothing
// but its own element's values and must not stop the run.
template <class Terms>
double assemble_bricks(const Grid& g, const ElementTables& et, int kint, double decay, double agefx,
                       const FieldIndex& fi, const std::vector<double>& old, const std::vector<double>& pass,
                       SolverWork& w, double cmat[9][9], TransportTarget& tt, bool on_threads, Terms&& terms)
{
    const std::vector<int>& inc = transport_incidence(g);
    const bool fast = fi.epos.ne == g.net && g.net > 0;  // slots found in advance
    const ElementStreams streams{inc.data(),       g.net,      fi.idir.data(), fi.ncum.data(),
                                 fi.pat.ia.data(), w.a.data(), w.b.data(),     w.rvec.data(),
                                 {old.data(), pass.data(), nullptr, nullptr}};
    if (fast && on_threads && (kint == 0 || kint == 1)) {
        for_each_element_in_order(g.net, g.nexy, [&](int e, Share share) {
            int nodes[9];
            double amat[9][9], bmat[9][9], cm[9][9];
            prefetch_element(streams, e);
            for (int i = 1; i <= 8; ++i) nodes[i] = node_at(inc, e, i);
            BrickTerms bt = terms(e, nodes);
            if (kint == 1)
                elmatn(bt.c, bt.dtinv, g.x, g.y, g.z, nodes, amat, bmat, bt.R, et.gauss);
            else
                elmatd(bt.c, et, bt.dtinv, g.dxe[e], g.dye[e], g.dze[e], bt.R, decay, agefx, amat, bmat, cm);
            scatter_brick(nodes, &fi.epos.k[(std::size_t)(e - 1) * ElementPositions::per_element], amat, bmat,
                          kint == 1 ? cmat : cm, tt, share);
        });
        tt.t.k = fi.epos.last_k;
        // what one thread leaves behind: the last element's R, and its cmat on the tables path
        int nodes[9];
        double amat[9][9], bmat[9][9];
        for (int i = 1; i <= 8; ++i) nodes[i] = node_at(inc, g.net, i);
        BrickTerms bt = terms(g.net, nodes);
        if (kint == 0)
            elmatd(bt.c, et, bt.dtinv, g.dxe[g.net], g.dye[g.net], g.dze[g.net], bt.R, decay, agefx, amat, bmat, cmat);
        return bt.R;
    }
    int nodes[9];
    double amat[9][9] = {}, bmat[9][9] = {};
    double R = 0.0;
    for (int e = 1; e <= g.net; ++e) {
        if (fast) prefetch_element(streams, e);
        for (int i = 1; i <= 8; ++i) nodes[i] = node_at(inc, e, i);
        BrickTerms bt = terms(e, nodes);
        R = bt.R;
        if (kint == 1)
            elmatn(bt.c, bt.dtinv, g.x, g.y, g.z, nodes, amat, bmat, R, et.gauss);
        else if (kint == 0)
            elmatd(bt.c, et, bt.dtinv, g.dxe[e], g.dye[e], g.dze[e], R, decay, agefx, amat, bmat, cmat);
        if (fast)
            scatter_brick(nodes, &fi.epos.k[(std::size_t)(e - 1) * ElementPositions::per_element], amat, bmat, cmat, tt);
        else
            scatter_transport(8, nodes, &amat[0][0], &bmat[0][0], &cmat[0][0], 9, tt);
    }
    if (fast) tt.t.k = fi.epos.last_k;
    return R;
}

// The two transport nodes and the length of line fracture l; false if its code places
// it nowhere.
bool line_fracture_nodes(const Grid& g, const Fractures& fr, int l, int tn[3], double& len);
// The four transport nodes and the geometry of plane fracture l, with its in-plane
// velocities; false if its code places it nowhere.
bool plane_fracture_nodes(const Grid& g, const Fractures& fr, const Velocities& v, int l, int tn[5],
                          PlaneFracture& pf);

// Third-type terms on a node: s on the diagonal of the equation of node n and s*value
// in its right-hand side.  At a fixed node the slot n - ncum(n) is the equation of the
// free node below it, as the numbering gives; with no free node below, nothing.
void add_nodal_term(const FieldIndex& fi, int n, double s, double value, SolverWork& w);
