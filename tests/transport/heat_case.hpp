#pragma once
#include "flow/mindex.hpp"
#include "support/box_grid.hpp"
#include "timeloop/sources.hpp"
#include "transport/heat_step.hpp"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>

// A saturated box of bricks with uniform properties (no freezing unless set), its heat
// boundary index from a boundary section written as in a deck, and everything one heat
// step needs.  Water 4186 J/kg/C, solid 2650 kg/m3 at 800 J/kg/C.
struct HeatCase {
    Grid g;
    Media m;
    Fractures fr;
    ElementTables et;
    double cmat[9][9];
    FieldIndex heat;
    FaceScratch fs;
    CosineHead wt;
    Fields f;
    Velocities v;
    SolverWork w;
    std::vector<double> qsrc, tsrc, tsurf, bz, bzflx, rech;
    std::vector<int> flow_idir;
    Sources heaters;
    HeatParams hp;
    bool lleaky = false;          // the leaky top: tcon, rtdiff with the vectors above and
    double tcon = 0, rtdiff = 0;  // fs.areacol
    std::ostringstream out;
    Listing lst{&out};

    HeatCase(int nex, int ney, int nez, double dx, double dy, double dz, const std::string& boundary,
             double por = 0.3, double tcx = 2.0)
    {
        g = box_grid(nex, ney, nez, dx, dy, dz);
        fill_element_tables(et, cmat);
        std::istringstream in(boundary);
        RecordReader rd(in, "boundary");
        mindex(rd, lst, 1, g.nnt, g.net, g.nx, g.ny, g.nzt, transport_incidence(g), g.x, g.y, g.z, 15, heat, fs, wt);
        element_positions(heat.pat, transport_incidence(g), g.net, heat.idir, heat.ncum, 15, heat.epos);
        size_media(m, g, false, lst);
        m.tkel.assign(g.net + 1, 0.0);
        for (int e = 1; e <= g.net; ++e) {
            m.por[e] = por;
            m.sw[e] = 1.0;
            m.tcx[e] = tcx;
            m.csol[e] = 800.0 * 2650.0;
        }
        size_fractures(fr, g.ne, 0, true);
        size_fields(f, g.nn, g.nnt);
        for (auto* a : {&v.vx, &v.vy, &v.vz}) a->assign(g.net + 1, 0.0);
        size_solver_work(w, g.nnt, heat.pat.nvec, 3 * heat.neq + heat.pat.nvec, 1);
        for (auto* a : {&qsrc, &tsrc}) a->assign(g.nnt + 1, 0.0);
        tsurf.assign(g.nx + 2, 0.0);
        for (auto* a : {&bz, &bzflx, &rech}) a->assign(g.nxy + 1, 0.0);
        flow_idir.assign(g.nn + 1, 0);
        hp.tc = ThermalConstants{4186.0, 1000.0, 2100.0, 917.0, 0.6, 2.24, 334000.0};
        derive_thermal_constants(hp.tc);
        hp.lheat = false;  // water at 1000 kg/m3: capacities exactly constant
    }

    // The bulk heat capacity and conductivity of unfrozen saturated ground at 4 C.
    double capacity() const { return m.por[1] * 1000.0 * hp.tc.cf + (1 - m.por[1]) * m.csol[1]; }
    double water_capacity() const { return m.por[1] * 1000.0 * hp.tc.cf; }
    double conductivity() const { return tk(1.0, m.por[1], 1.0, hp.tc.tclw, hp.tc.tcli, m.tcx[1]); }

    // Every node at T, both levels; fixed nodes keep their fixed value.
    void fill(double T)
    {
        for (int n = 1; n <= g.nnt; ++n) f.t1[n] = f.t10[n] = f.t1i[n] = heat.idir[n] == 1 ? heat.fc[n] : T;
    }

    // One step of length dt in formulation `version`, a single pass.
    void step(int version, double dt) { step_passes(version, dt, 0.0, 1); }

    // One step of length dt with passes until the largest change of a pass is below tol
    // (at most maxpass): the capacities follow the last pass's temperatures.
    int step_passes(int version, double dt, double tol, int maxpass)
    {
        const std::vector<double> start = f.t1;
        int pass = 0;
        for (double change = HUGE_VAL; change > tol && pass < maxpass; ++pass) {
            const std::vector<double> last = f.t1;
            hp.scheme.dtinv = 1.0 / dt;
            hp.scheme.dthalf = 0.5 * dt;
            f.t10 = start;
            f.t1i = last;
            const Sources& s = heaters;
            const HeatSources src{qsrc, tsrc, s.nheat, s.helem, s.hnode, s.fluxin1, s.fluxin2};
            const HeatTop top{lleaky, tcon, rtdiff, tsurf, bz, bzflx, rech, fs.areacol, flow_idir};
            if (version == 1)
                htran1(g, m, fr, v, et, hp, top, src, heat, f, w, cmat, lst);
            else
                htran2(g, m, fr, v, et, hp, top, src, heat, f, w, cmat, lst);
            change = 0;
            for (int n = 1; n <= g.nnt; ++n) change = std::max(change, std::fabs(f.t1[n] - last[n]));
        }
        return pass;
    }

    double at(int i, int j, int k) const { return f.t1[grid_node(i, j, k, g.ny, g.nzt)]; }
};
