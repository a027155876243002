#pragma once
#include "flow/mindex.hpp"
#include "support/box_grid.hpp"
#include "transport/mass_step.hpp"

#include <sstream>
#include <string>

// A saturated box of bricks with uniform porosity and a given velocity, its mass
// boundary index from a boundary section written as in a deck (empty: every node free,
// as for age), and everything one mass step needs.
struct TransportCase {
    Grid g;
    Media m;
    Fractures fr;
    ElementTables et;
    double cmat[9][9];
    FieldIndex mass;
    FaceScratch fs;
    CosineHead wt;
    Fields f;
    Velocities v;
    SolverWork w;
    std::vector<double> qsrc, csrc;
    MassParams mp;
    std::ostringstream out;
    Listing lst{&out};

    TransportCase(int nex, int ney, int nez, double dx, double dy, double dz, const std::string& boundary,
                  double por = 0.3)
    {
        g = box_grid(nex, ney, nez, dx, dy, dz);
        fill_element_tables(et, cmat);
        mass.ktype = 2;
        if (!boundary.empty()) {
            std::istringstream in(boundary);
            RecordReader rd(in, "boundary");
            mindex(rd, lst, 2, g.nnt, g.net, g.nx, g.ny, g.nzt, transport_incidence(g), g.x, g.y, g.z, 15, mass, fs, wt);
        } else {
            mass.nn = g.nnt;
            mass.idir.assign(g.nnt + 1, 0);
            mass.fc.assign(g.nnt + 1, 0.0);
            mass.qnode.assign(g.nnt + 1, 0.0);
            count_fixed(mass);
            build_pattern(Listing{}, transport_incidence(g), g.net, 15, mass);
        }
        element_positions(mass.pat, transport_incidence(g), g.net, mass.idir, mass.ncum, 15, mass.epos);
        size_media(m, g, false, lst);
        for (int e = 1; e <= g.net; ++e) {
            m.por[e] = por;
            m.sw[e] = 1.0;
        }
        size_fractures(fr, g.ne, 1, false);
        size_fields(f, g.nn, g.nnt);
        for (auto* a : {&v.vx, &v.vy, &v.vz}) a->assign(g.net + 1, 0.0);
        size_solver_work(w, g.nnt, mass.pat.nvec, 3 * mass.neq + mass.pat.nvec, 1);
        qsrc.assign(g.nnt + 1, 0.0);
        csrc.assign(g.nnt + 1, 0.0);
        mp.lmass = true;
        mp.ret = 1.0;
    }

    void velocity(double vx, double vy, double vz)
    {
        for (int e = 1; e <= g.net; ++e) {
            v.vx[e] = vx;
            v.vy[e] = vy;
            v.vz[e] = vz;
        }
    }

    // Adds fracture elements as a deck record would.
    void add_fracture(const FractureRecord& r)
    {
        std::ostringstream xz, xy;
        fracture_record(r, false, g, fr, lst, xz, xy);
        for (auto* a : {&v.vlin, &v.vx2d, &v.vy2d}) a->assign(fr.nfrac + 1, 0.0);
    }

    // Every node at c, both levels; fixed nodes keep their fixed value.
    void fill(double c)
    {
        for (int n = 1; n <= g.nnt; ++n) f.t2[n] = f.t20[n] = mass.idir[n] == 1 ? mass.fc[n] : c;
    }

    // One step of length dt from the present field.
    void step(double dt)
    {
        mp.scheme.dtinv = 1.0 / dt;
        mp.scheme.dthalf = 0.5 * dt;
        f.t20 = f.t2;
        mtran(g, m, fr, v, et, mp, MassSources{qsrc, csrc}, mass, f, w, cmat, lst);
    }

    double at(int i, int j, int k) const { return f.t2[grid_node(i, j, k, g.ny, g.nzt)]; }
};
