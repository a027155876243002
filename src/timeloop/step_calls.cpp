#include "timeloop/step_calls.hpp"

#include "base/limits.hpp"
#include "base/stop.hpp"
#include "element/hex.hpp"
#include "flow/flow_system.hpp"
#include "flow/type_change.hpp"
#include "flow/velocities.hpp"
#include "flow/water_table.hpp"
#include "input/initial_state.hpp"
#include "output/fortran_format.hpp"
#include "output/history_files.hpp"
#include "solver/lower_csr.hpp"
#include "timeloop/plot_output.hpp"
#include "timeloop/run_state.hpp"
#include "transport/heat_step.hpp"
#include "transport/mass_step.hpp"

#include <cmath>

void apply_forcing(RunState& rs, const Listing& lst)
{
    const SurfaceInputs in{rs.deck, rs.aux, rs.grid, rs.patches, rs.faces.areacol, rs.opt.ktair, rs.loop.tdays};
    surface_forcing(in, rs.forcing, rs.heat.fc, rs.flow.qnode, lst);
}
void update_boundary_heads(RunState& rs, const Listing& lst)
{
    boundary_heads(rs.aux, rs.grid, rs.loop.tdays, rs.loop.iv.hinc, rs.wt, rs.forcing, rs.flow, lst);
}
void peclet_courant_plot(RunState& rs) { peclet_output(rs); }
void velocity_files(RunState& rs) { velocity_output(rs); }

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

// A solution that is not finite cannot recover in later solves: the run stops at the
// first such node with the time, instead of ending as if nothing had happened.
void stop_if_not_finite(const char* field, const std::vector<double>& u, int n, const RunState& rs, bool flow_nodes,
                        const Listing& lst)
{
    for (int i = 1; i <= n; ++i) {
        if (std::isfinite(u[i])) continue;
        const Grid& g = rs.grid;
        const int t = flow_nodes ? g.nmap[i] : i;
        stop_run(lst, {std::string("error, the ") + field + " solution is not a finite number",
                       free_items("first at node", i, " x,y,z:", g.x[t], g.y[t], g.z[t]),
                       free_items("time (days):", rs.loop.tdays),
                       "check the deck's values there: conductivities, apertures, sizes, options",
                       "program stopping ..."});
    }
}
}  // namespace

void flow_solve(RunState& rs, const Listing& lst, const Console& con)
{
    // the storage and buoyancy terms gather in the solver's work, free until the solve
    flow_step(rs.grid, rs.media, rs.frac, rs.tables, flow_params(rs), rs.src.qsrc, rs.flow, rs.f, rs.work,
              rs.work.work, con, lst);
    stop_if_not_finite("flow", rs.f.u, rs.grid.nn, rs, true, lst);
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
    stop_if_not_finite("mass transport", rs.f.t2, rs.grid.nnt, rs, false, lst);
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
    stop_if_not_finite("heat transport", rs.f.t1, rs.grid.nnt, rs, false, lst);
    lst.line(free_line("heat transport(v1) solution complete at t= ", rs.loop.tdays));
}

void heat_transport_v2(RunState& rs, const Listing& lst, const Console&)
{
    htran2(rs.grid, rs.media, rs.frac, rs.vel, rs.tables, heat_params(rs), heat_top(rs), heat_sources(rs), rs.heat,
           rs.f, rs.work, rs.cmat, lst);
    stop_if_not_finite("heat transport", rs.f.t1, rs.grid.nnt, rs, false, lst);
    lst.line(free_line("heat transport(v2) solution complete at t= ", rs.loop.tdays));
}

namespace {
WaterTable water_table(const RunState& rs)
{
    const Deck& d = rs.deck;
    return WaterTable{rs.opt.kwt, d.nwtl, d.datum, d.ccw, &rs.top_idir, rs.opt.unsat ? rs.grid.nlz[rs.grid.ngz] : 0};
}

// After a transport field was renumbered: its brick slots again, and the shared values
// and work grown to the new system, here and never inside a solve.
void refit_transport_field(RunState& rs, FieldIndex& fi, bool transported)
{
    const Grid& g = rs.grid;
    if (transported) element_positions(fi.pat, transport_incidence(g), g.net, fi.idir, fi.ncum, nb_transport, fi.epos);
    SolverWork& w = rs.work;
    if (w.a.size() < (std::size_t)fi.pat.nvec + 1) w.a.resize((std::size_t)fi.pat.nvec + 1, 0.0);
    const std::size_t need = 3 * (std::size_t)fi.neq + fi.pat.nvec + 1;
    if (w.work.size() < need) w.work.resize(need, 0.0);
}
}  // namespace

bool water_table_converged(RunState& rs, const Listing& lst)
{
    return water_table_test(rs.grid, water_table(rs), rs.f.u, lst);
}

void water_table_move(RunState& rs, const Listing& lst) { water_table_move(rs.grid, water_table(rs), rs.f.u, lst); }

void age_exit_rule(RunState& rs, const Listing& lst)
{
    if (age_exit_conversion(rs.grid, rs.vel, rs.heat, rs.mass, lst)) refit_transport_field(rs, rs.mass, true);
}

void deformation_update(RunState& rs, const Listing&)
{
    const Grid& g = rs.grid;
    deformation_update(rs.grid, rs.media, rs.f, rs.deck.medium, rs.deck.rhoi, rs.opt.lheat,
                       rs.opt.unsat ? g.nlz[g.ngz] : 0, rs.defo);
    rs.loop.dzmin = rs.defo.dmin;
    rs.loop.dzmax = rs.defo.dmax;
}

void dztot_update(RunState& rs, const Listing& lst) { dztot_update(rs.grid, rs.defo, lst); }

void node_type_change(RunState& rs, const Listing& lst)
{
    if (!top_face_switch(rs.grid, rs.vel, rs.heat, rs.mass, rs.f, lst)) return;
    refit_transport_field(rs, rs.heat, rs.opt.lheat);
    refit_transport_field(rs, rs.mass, rs.opt.lmass || rs.opt.lage);
}

void update_element_volumes(RunState& rs, const Listing& lst)
{
    Grid& g = rs.grid;
    Media& m = rs.media;
    elvol(g.x, g.y, g.z, rs.tables.gauss, transport_incidence(g), m.vol, g.net, m.voltot, rs.opt.kint, g.dxe, g.dye, g.dze, lst);
}

namespace {
BalanceConstants balance_constants(const RunState& rs)
{
    const Deck& d = rs.deck;
    return BalanceConstants{d.cf, d.ci * d.rhoi, d.tcon, d.medium, rs.opt.lheat};
}

bool flow_only(const RunState& rs) { return rs.opt.kcntrl == 1 || rs.opt.kcntrl == 3; }

// The solute inventory is kept only with the extra outputs of a solute run.
bool mass_series(const RunState& rs) { return rs.opt.kprt == 1 && (rs.opt.kmass == 1 || rs.opt.kmass == 3); }
}  // namespace

// Setup: the reference temperature and the initial heat content with their echo, the
// initial solute inventory, then the t = 0 output.
void initial_output(RunState& rs, const Listing& lst)
{
    const Grid& g = rs.grid;
    Balances& b = rs.bal;
    size_balances(b, g);
    size_histories(rs.hist, (int)rs.deck.wells.size(), g);
    b.tref = rs.f.t1[g.nzt / 2];
    if (rs.opt.lheat) {
        heat_content(g, rs.media, rs.f, balance_constants(rs), b);
        lst.line(free_line("reference temperature for heat: tref   : ", b.tref));
        lst.line(free_line("reference temperature for heat: tref2  : ", 0.0));
        lst.line(free_line("initial absolute heat content (wrt Tref): ", b.heat.htota));
        lst.line(free_line("initial relative heat content (wrt t2mpa: ", b.heat.htotr));
    }
    // the initial state is what the first step starts from
    if (mass_series(rs)) mass_inventory(g, rs.media, rs.frac, rs.src, rs.f.t2, b.mass0);
    initial_plot_output(rs);
    heater_profile_header(rs.plots.rec);
    write_block(rs.files.w(plot_unit::heater_z), rs.plots.rec);
}

// After the time-level copies: the step's source, leak and recharge sums, and at a
// moment step the surface and boundary fluxes and the mass series.
void balances(RunState& rs, const Listing&)
{
    const Grid& g = rs.grid;
    const LoopState& L = rs.loop;
    const BalanceConstants k = balance_constants(rs);
    if (!flow_only(rs))
        step_balance(g, rs.f, rs.src, rs.forcing, rs.faces.areacol, k, rs.opt.kmass, L.iv.dt, rs.bal);
    if (L.lmom) {
        surface_fluxes(g, rs.media, rs.f, rs.vel, rs.aux, k, rs.bal);
        boundary_fluxes(g, rs.media, rs.f, rs.vel, k, L.iv.dt, rs.bal);
        // the series follows the temperature field, unlike the initial inventory: kept so
        if (mass_series(rs)) mass_inventory(g, rs.media, rs.frac, rs.src, rs.f.t1, rs.bal.mass);
    }
}

// The new heat content on the moved grid and the balance lines, the step's files, and
// the histories of wells, fronts and heater columns.
void step_output(RunState& rs, const Listing& lst)
{
    const LoopState& L = rs.loop;
    const Options& o = rs.opt;
    Balances& b = rs.bal;
    b.content_now = !flow_only(rs) && (o.kmass == 3 || (o.kmass == 0 && (L.lplot2d || L.lmom)));
    if (b.content_now) {
        heat_content(rs.grid, rs.media, rs.f, balance_constants(rs), b);
        // an empty content has no relative error to show
        const double err = b.heat.htota != 0 ? 100 * (b.heat.htota - b.hexp) / b.heat.htota : 0.0;
        lst.line(free_line("heat balance (%) ..................  ", err));
    }
    if (!flow_only(rs) && rs.src.lsrc) {
        lst.line(free_line("fluid volume injected  this step: ", b.qin * L.iv.dt));
        lst.line(free_line("fluid volume withdrawn this step: ", b.qout * L.iv.dt));
    }
    step_plot_output(rs);

    const Grid& g = rs.grid;
    Histories& h = rs.hist;
    record_time(h, L.numit, L.tdays);
    record_wells(g, rs.f, rs.deck.wells, o.ksat, L.numit, h, lst);
    if (o.lheat) record_fronts(g, rs.f, rs.deck.knox, rs.deck.knoy, rs.deck.knoz, rs.deck.medium.Ts, L.numit, h);
    if (rs.src.nheat > 0) {
        record_heaters(g, rs.f, rs.src, L.numit, h);
        write_heater_profile(rs.files.w(plot_unit::heater_z), h, L.numit, L.tdays, rs.plots.rec);
    }
}

// End of run: the closing lines of the result files, the series kept in memory, and the
// recoveries.
void final_summaries(RunState& rs, const Listing& lst)
{
    end_plot_output(rs);
    Files& fl = rs.files;
    const Histories& h = rs.hist;
    const long long n = rs.loop.numit;
    std::string& b = rs.plots.rec;
    write_break(fl.w(plot_unit::brk), h, n, b);
    write_fronts(fl.w(plot_unit::xfront), fl.w(plot_unit::zfront), h, n, rs.deck.medium.Ts, b);
    write_heater_series(fl.w(plot_unit::heater_t), h, n, b);
    recovery_summary(rs.bal, rs.opt.kmass, rs.opt.kcntrl, rs.src.lsrc, lst);
}
