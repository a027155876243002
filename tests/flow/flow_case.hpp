#pragma once
#include "base/options.hpp"
#include "flow/flow_system.hpp"
#include "flow/mindex.hpp"
#include "flow/velocities.hpp"
#include "grid/gengrid.hpp"
#include "support/box_grid.hpp"

#include <sstream>
#include <string>

// A saturated box of bricks with uniform properties, its flow boundary index from a
// boundary section written as in a deck, and everything one flow step needs.
struct FlowCase {
    Grid g;
    Media m;
    Fractures fr;
    ElementTables et;
    double cmat[9][9];
    FieldIndex flow;
    FaceScratch fs;
    CosineHead wt;
    Fields f;
    Velocities v;
    SolverWork w;
    std::vector<double> bs, qsrc;
    FlowParams fp;
    std::ostringstream out;
    Listing lst{&out};
    Console con{&out};

    FlowCase(int nex, int ney, int nez, double dx, double dy, double dz, const std::string& boundary, double K,
             double ss, double por)
    {
        g = box_grid(nex, ney, nez, dx, dy, dz);
        fill_element_tables(et, cmat);
        std::istringstream in(boundary);
        RecordReader rd(in, "boundary");
        mindex(rd, lst, 0, g.nn, g.ne, g.nx, g.ny, g.nz, g.in, g.x, g.y, g.z, 15, flow, fs, wt);
        size_media(m, g, false, lst);
        for (int e = 1; e <= g.ne; ++e) {
            m.ckx[e] = m.cky[e] = m.ckz[e] = K;
            m.por[e] = por;
            m.sw[e] = 1.0;
        }
        m.ss = ss;
        size_fractures(fr, g.ne, 1, false);
        size_fields(f, g.nn, g.nnt);
        for (auto* a : {&v.vx, &v.vy, &v.vz}) a->assign(g.ne + 1, 0.0);
        size_solver_work(w, g.nn, flow.pat.nvec, 6 * flow.neq, flow.neq + 1);
        bs.assign(flow.neq + 1, 0.0);
        qsrc.assign(g.nnt + 1, 0.0);
        fp.medium.modelwu = 0;  // no freezing: Wu = 1 and kr = 1
        fp.medium.modelkr = 0;
        fp.fracture = fp.medium;
    }

    // Adds fracture elements as a deck record would.
    void add_fracture(const FractureRecord& r)
    {
        std::ostringstream xz, xy;
        fracture_record(r, false, g, fr, lst, xz, xy);
        for (auto* a : {&v.vlin, &v.vx2d, &v.vy2d}) a->assign(fr.nfrac + 1, 0.0);
    }

    // One implicit step of length dt from the present heads.
    void step(double dt)
    {
        fp.dtinv = 1.0 / dt;
        f.u0 = f.u;
        flow_step(g, m, fr, et, fp, qsrc, flow, f, w, bs, con, lst);
    }

    void velocities(int kintv)
    {
        element_velocities(g, m, et, fp, kintv, f, v);
        fracture_velocities(g, m, fr, fp, f, v);
    }

    double head(int i, int j, int k) const { return f.u[grid_node(i, j, k, g.ny, g.nz)]; }
};
