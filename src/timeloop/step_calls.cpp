#include "timeloop/step_calls.hpp"

#include "control/run_state.hpp"
#include "flow/flow_system.hpp"
#include "flow/velocities.hpp"
#include "input/initial_state.hpp"
#include "output/fortran_format.hpp"
#include "output/plot_output.hpp"
#include "transport/heat_step.hpp"
#include "transport/mass_step.hpp"

void initial_output(RunState& rs, const Listing&) { initial_plot_output(rs); }
void apply_forcing(RunState& rs, const Listing& lst)
{
    const SurfaceInputs in{rs.deck, rs.aux, rs.grid, rs.patches, rs.faces.areacol, rs.opt.ktair, rs.loop.tdays};
    surface_forcing(in, rs.forcing, rs.heat.fc, rs.flow.qnode, lst);
}
void update_boundary_heads(RunState& rs, const Listing& lst)
{
    boundary_heads(rs.aux, rs.grid, rs.loop.tdays, rs.loop.iv.hinc, rs.wt, rs.forcing, rs.flow, lst);
}
bool water_table_converged(RunState&, const Listing&) { return true; }
void water_table_move(RunState&, const Listing&) {}
void age_exit_rule(RunState&, const Listing&) {}
void deformation_update(RunState&, const Listing&) {}
void node_type_change(RunState&, const Listing&) {}
void dztot_update(RunState&, const Listing&) {}
void peclet_courant_plot(RunState& rs) { peclet_output(rs); }
void velocity_files(RunState& rs) { velocity_output(rs); }
void balances(RunState&, const Listing&) {}
void update_element_volumes(RunState&, const Listing&) {}
void step_output(RunState& rs, const Listing&) { step_plot_output(rs); }
void final_summaries(RunState& rs, const Listing&) { end_plot_output(rs); }

namespace {
FlowParams flow_params(const RunState& rs)
{
    FlowParams fp;
    fp.kint = rs.opt.kint;
    fp.lheat = rs.opt.lheat;
    fp.lmass = rs.opt.lmass;
    fp.gammac = rs.deck.gammac;
    fp.lkr1top = rs.opt.lkr1top;
    fp.medium = rs.deck.medium;
    fp.fracture = rs.deck.fracture;
    fp.dtinv = rs.loop.dtinv;
    return fp;
}
}  // namespace

void flow_solve(RunState& rs, const Listing& lst, const Console& con)
{
    flow_step(rs.grid, rs.media, rs.frac, rs.tables, flow_params(rs), rs.src.qsrc, rs.flow, rs.f, rs.work, rs.bs, con,
              lst);
}

void compute_velocities(RunState& rs, const Listing&)
{
    element_velocities(rs.grid, rs.media, rs.tables, flow_params(rs), rs.opt.kintv, rs.f, rs.vel);
}

void compute_fracture_velocities(RunState& rs, const Listing& lst)
{
    fracture_velocities(rs.grid, rs.media, rs.frac, flow_params(rs), rs.f, rs.vel);
    if (rs.frac.nfrac < 1) return;
    const bool line = rs.frac.ifdim[1] == 1;
    lst.line(free_line("fracture velocities complete t= ", rs.loop.tdays, line ? ", vlin(1): " : ", vx2d(1): ",
                       line ? rs.vel.vlin[1] : rs.vel.vx2d[1]));
}

void uniform_fracture_velocities(RunState& rs)
{
    const Deck& d = rs.deck;
    for (int l = 1; l <= rs.frac.nfrac; ++l) {
        rs.vel.vlin[l] = d.iflipv * d.vx0;
        rs.vel.vx2d[l] = d.iflipv * d.vx0;
        rs.vel.vy2d[l] = d.iflipv * d.vy0;
    }
}

namespace {
// The deck's transport constants and the step, common to the mass and heat steps.
template <class P>
void common_transport_params(const RunState& rs, P& p)
{
    const Deck& d = rs.deck;
    p.kint = rs.opt.kint;
    p.disp = Dispersivity{d.al, d.alt, d.ath, d.atv, d.idisp};
    p.dd = d.dd;
    p.decay = d.decay;
    p.agefx = d.agefx;
    p.scheme.dtinv = rs.loop.dtinv;
    p.scheme.dthalf = rs.loop.dthalf;
}

MassParams mass_params(const RunState& rs)
{
    MassParams mp;
    common_transport_params(rs, mp);
    mp.lmass = rs.opt.lmass;
    mp.ret = rs.deck.ret;
    return mp;
}
}  // namespace

void mass_transport(RunState& rs, const Listing& lst, const Console&)
{
    mtran(rs.grid, rs.media, rs.frac, rs.vel, rs.tables, mass_params(rs), MassSources{rs.src.qsrc, rs.src.csrc},
          rs.mass, rs.f, rs.work, rs.cmat, lst);
    lst.line(free_line("mass transport(v2) solution complete at t= ", rs.loop.tdays));
    // fixed heads follow the weight of the new concentrations
    if (rs.deck.gammac > 0)
        h_adjust(lst, false, rs.forcing.htide, rs.deck.gammac, rs.grid, rs.flow, rs.fc0, rs.aux, rs.flow.fc, rs.f);
}

namespace {
HeatParams heat_params(const RunState& rs)
{
    const Deck& d = rs.deck;
    HeatParams hp;
    common_transport_params(rs, hp);
    hp.lheat = rs.opt.lheat;
    hp.medium = d.medium;
    hp.fracture = d.fracture;
    hp.tc = ThermalConstants{d.cf, d.pf, d.ci, d.rhoi, d.tclw, d.tcli, d.wlh};
    derive_thermal_constants(hp.tc);
    return hp;
}

HeatTop heat_top(const RunState& rs)
{
    const Forcing& fo = rs.forcing;
    return HeatTop{fo.lleaky, rs.deck.tcon, fo.rtdiff, fo.tsurf, fo.bz, fo.bzflx, fo.rech, rs.faces.areacol,
                   rs.flow.idir};
}

HeatSources heat_sources(const RunState& rs)
{
    const Sources& s = rs.src;
    return HeatSources{s.qsrc, s.tsrc, s.nheat, s.helem, s.hnode, s.fluxin1, s.fluxin2};
}
}  // namespace

void heat_transport_v1(RunState& rs, const Listing& lst, const Console&)
{
    htran1(rs.grid, rs.media, rs.frac, rs.vel, rs.tables, heat_params(rs), heat_top(rs), heat_sources(rs), rs.heat,
           rs.f, rs.work, rs.cmat, lst);
    lst.line(free_line("heat transport(v1) solution complete at t= ", rs.loop.tdays));
}

void heat_transport_v2(RunState& rs, const Listing& lst, const Console&)
{
    htran2(rs.grid, rs.media, rs.frac, rs.vel, rs.tables, heat_params(rs), heat_top(rs), heat_sources(rs), rs.heat,
           rs.f, rs.work, rs.cmat, lst);
    lst.line(free_line("heat transport(v2) solution complete at t= ", rs.loop.tdays));
}
