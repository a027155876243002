#include "timeloop/time_loop.hpp"

#include "base/limits.hpp"
#include "timeloop/run_state.hpp"
#include "base/stop.hpp"
#include "output/fortran_format.hpp"
#include "timeloop/sources.hpp"
#include "timeloop/step_calls.hpp"

#include <cmath>

namespace {

constexpr double day = 86400.0;
constexpr double end_tolerance = 9.99999997475243e-07;  // single-precision 1e-6, relative to t2
constexpr double print_time_tolerance = 9.99999974737875e-06;
constexpr double density_coupled = 9.99999974737875e-06;
constexpr double unsat_velocity = 9.999999682655225e-21;

// Interval records T1..T5 with their echoes, and the interval's boundary changes.
void start_interval(RunState& rs, RecordReader& rd, const Listing& lst)
{
    LoopState& L = rs.loop;
    IntervalRecord& iv = L.iv;
    read_interval_times(rd, lst, iv);
    // a step that does not advance the clock would never reach t2
    if (!(iv.dt > 0)) stop_run(lst, {"error detected in time step data", "check and rerun ... program stopping "});
    iv.t1 *= day;
    iv.t2 *= day;
    iv.dt *= day;
    if (!std::isfinite(1.0 / iv.dt) || iv.t1 + iv.dt == iv.t1 || iv.t2 + iv.dt == iv.t2)
        stop_run(lst, {"error, time step dt too small to advance the clock", free_items("dt (days) = ", iv.dt / day),
                       "program stopping ..."});
    lst.line(free_line("time interval from", iv.t1 / day, " to ", iv.t2 / day));
    lst.line(free_line("time step dt =    ", iv.dt / day));
    lst.line(free_line("2d plot frequency =      ", iv.k2dfreq));
    lst.line(free_line("flow update frequency =  ", iv.kflowfreq));
    lst.line(free_line("3d plot frequency =      ", iv.k3dfreq));
    lst.line(free_line("moment/tpeak frequency = ", iv.kmomfreq));
    read_interval_changes(rd, lst, iv);
    lst.line(free_line("hinc,rinc,rtdiff,bzfmult:", iv.hinc, iv.rinc, iv.rtdiff, iv.bzfmult));

    const Grid& g = rs.grid;
    start_interval_forcing(iv, rs.aux.lbzin, g, rs.flow, rs.forcing);
    read_patches(rd, lst, g, rs.heat, rs.patches);
    read_heaters(rd, lst, rs.opt.kmass, g, rs.src);
    read_sources(rd, lst, g, rs.src);
    lst.flush();

    L.tsec = iv.t1;  // a gap or overlap between intervals makes the clock jump
    L.dtinv = 1.0 / iv.dt;
    L.dthalf = 0.5 * iv.dt;
    L.istep = 0;
}

// A frequency of 0 never triggers.
bool divisible(long long istep, long long freq) { return freq != 0 && istep % freq == 0; }

// The flow sequence of a pass: solve, then move the free top until it sits on the
// water table or the pass limit is reached.
void flow_sequence(RunState& rs, const Listing& lst, const Console& con)
{
    LoopState& L = rs.loop;
    L.kwtit = -1;
    bool converged = false;
    do {
        ++L.kwtit;
        ++L.nflow;
        flow_solve(rs, lst, con);
        lst.line(free_line("flow solution complete "));
        if (rs.opt.kwt == 0) break;
        converged = water_table_converged(rs, lst);
        if (!converged) water_table_move(rs, lst);
    } while (!converged && L.kwtit < rs.deck.maxit2);
    if (rs.opt.kwt != 0) {
        if (converged) lst.line(free_line("watertable has converged in ", L.kwtit, " iterations"));
        if (L.kwtit >= rs.deck.maxit2) lst.line(free_line("watertable iteration limit reached"));
    }
}

void velocity_sequence(RunState& rs, const Listing& lst)
{
    const Grid& g = rs.grid;
    Velocities& v = rs.vel;
    compute_velocities(rs, lst);
    if (rs.frac.nfrac > 0) compute_fracture_velocities(rs, lst);
    if (rs.opt.ksat == 0) {
        for (int e = g.ne + 1; e <= g.net; ++e) v.vx[e] = v.vy[e] = v.vz[e] = unsat_velocity;
    }
    if (rs.deck.ivel == 0) {
        const double f = rs.deck.iflipv;
        for (int e = 1; e <= g.net; ++e) {
            v.vx[e] *= f;
            v.vy[e] *= f;
            v.vz[e] *= f;
        }
        for (auto* fv : {&v.vlin, &v.vx2d, &v.vy2d})
            for (double& x : *fv) x *= f;
    }
    lst.line(free_line("velocity solution complete at time= ", rs.loop.tdays, " days"));
    lst.line(free_line("vx(1),vx(ne) = ", v.vx[1], v.vx[g.ne], " vz(1),vz(ne) = ", v.vz[1], v.vz[g.ne]));
}

// Largest change of a field since the last pass; the pass copy takes the new values.
double largest_change(const std::vector<double>& a, std::vector<double>& ai, int n, int& node, double& signed_change)
{
    double mx = -999;
    node = -999;
    signed_change = -999;
    for (int i = 1; i <= n; ++i) {
        const double d = a[i] - ai[i];
        if (std::fabs(d) > mx) {  // ties keep the first node
            mx = std::fabs(d);
            node = i;
            signed_change = d;
        }
        ai[i] = a[i];
    }
    return mx;
}

void pass_changes(RunState& rs, const Listing& lst)
{
    LoopState& L = rs.loop;
    const Grid& g = rs.grid;
    Fields& f = rs.f;
    int nu = 0, nt = -999, nc = -999;
    double su = 0, st = -999, sc = -999;
    L.dumx = largest_change(f.u, f.ui, g.nn, nu, su);
    L.dtmx = largest_change(f.t1, f.t1i, g.nnt, nt, st);
    L.dcmx = -999;
    if (rs.opt.lmass) L.dcmx = largest_change(f.t2, f.t2i, g.nnt, nc, sc);
    lst.line(free_line("dumx= ", L.dumx, "    dtmx= ", L.dtmx, "     dcmx= ", L.dcmx));
    const bool tn = nt >= 1;
    lst.line(free_line("node of max. temp. change: ", nt, " T = ", tn ? f.t1[nt] : 0.0, " z=", tn ? g.z[nt] : 0.0));
    lst.line(free_line("node of max. conc. change: ", nc));
    lst.line(free_line("column deformation min,max: ", L.dzmin, L.dzmax));
}

// True when this pass ends the step's iteration.
bool pass_is_last(RunState& rs, const Listing& lst)
{
    const Options& o = rs.opt;
    const Deck& d = rs.deck;
    LoopState& L = rs.loop;
    const bool plain = o.kcntrl == 0 && d.ivel == 0 && o.kmass != 2;
    const bool can_freeze = (d.wlh > 0 || L.can_freeze) && (o.kmass == 0 || o.kmass == 3);
    if (!plain && !can_freeze) return true;
    const bool converged = L.dumx <= d.ccp && L.dtmx <= d.cct && L.dcmx <= d.ccc;
    if (!converged && L.kit < d.maxit1) return false;
    if (converged && L.kit < d.maxit1)
        lst.line(free_line("thermal solution has converged in", L.kit, " iterations"));
    else  // the limit also when the limiting pass converged
        lst.line(free_line("thermal/concentration iteration limit reached", " at this time step"));
    return true;
}

void time_step(RunState& rs, const Listing& lst, const Console& con)
{
    LoopState& L = rs.loop;
    const Options& o = rs.opt;
    const Deck& d = rs.deck;
    const IntervalRecord& iv = L.iv;
    ++L.numit;
    ++L.istep;
    L.tsec += iv.dt;
    L.tdays = L.tsec / day;
    L.dumx = 999;
    lst.line(free_line("time step #", (int)L.numit, "time = ", L.tdays, " days"));
    lst.line(" " + std::string(45, '#'));
    con.line(free_line("         beginning solution for time= ", L.tdays, " days").substr(1));
    if (L.numit > maxit)
        stop_run(lst, {"error ... #time steps (" + free_items((int)L.numit) + ")" + " > maxit (" + free_items(maxit) + ")",
                       "program stopping ..."});

    apply_forcing(rs, lst);
    L.lplot2d = divisible(L.istep, iv.k2dfreq);
    L.lflow = divisible(L.istep, iv.kflowfreq);
    L.lmom = divisible(L.istep, iv.kmomfreq);
    L.lpeclet = divisible(L.istep, 10LL * iv.kmomfreq);
    L.lmovie = divisible(L.istep, iv.k3dfreq);
    update_boundary_heads(rs, lst);

    L.kit = -1;
    L.last_pass_flow = false;
    for (;;) {
        ++L.kit;
        lst.line(free_line("non-linear iteration # (kit): ", L.kit));
        lst.line(" " + std::string(35, '-'));
        L.ldoflow = false;
        if (!(o.kcntrl == 2 || d.ivel != 0 || d.ccp >= L.dumx))
            L.ldoflow = d.gammac > density_coupled || L.lflow || o.kcntrl == 1 || o.kcntrl == 3 || L.istep < 3;
        L.last_pass_flow = L.ldoflow;
        if (L.ldoflow) {
            flow_sequence(rs, lst, con);
            velocity_sequence(rs, lst);
            if (o.kmass == 2 && o.ksat == 1) age_exit_rule(rs, lst);
            if (o.kcntrl == 1 || o.kcntrl == 3) break;
        }
        if (d.ivel == 2) uniform_fracture_velocities(rs);
        if (o.lheat && o.ksubtr == 1) heat_transport_v1(rs, lst, con);
        if (o.lheat && o.ksubtr == 2) heat_transport_v2(rs, lst, con);
        if (o.kdz > 0) deformation_update(rs, lst);
        if (o.lmass || o.lage) mass_transport(rs, lst, con);
        pass_changes(rs, lst);
        if (pass_is_last(rs, lst)) break;
    }

    // a flow-only step goes from its velocities straight to the output
    const bool flow_only = o.kcntrl == 1 || o.kcntrl == 3;
    if (o.kfreec > 0 && !flow_only) node_type_change(rs, lst);
    if (o.kdz > 0 && !flow_only) dztot_update(rs, lst);
    if (L.lpeclet || L.istep == 1) peclet_courant_plot(rs);  // and on each interval's first step
    L.lprint3d = false;
    for (int k = 1; k <= 5; ++k)
        if (std::fabs(L.tdays - d.tprint3d[k]) < print_time_tolerance) L.lprint3d = true;
    if ((o.kprt == 1 && L.lplot2d) || L.lprint3d) velocity_files(rs);

    Fields& f = rs.f;
    f.u0 = f.u;
    f.t10 = f.t1;
    f.t20 = f.t2;
    balances(rs, lst);
    if (L.last_pass_flow) update_element_volumes(rs, lst);
    step_output(rs, lst);
}

}  // namespace

void time_loop(RunState& rs, RecordReader& rd, const Listing& lst, const Console& con)
{
    LoopState& L = rs.loop;
    do {
        start_interval(rs, rd, lst);
        const double t2 = L.iv.t2;
        // the last step is not shortened: an interval may overshoot t2 by up to dt
        while (t2 - L.tsec > end_tolerance * t2) time_step(rs, lst, con);
        lst.flush();
    } while (L.iv.more > 0);
}

void read_intervals(RunState& rs, RecordReader& rd, const Listing& lst)
{
    do start_interval(rs, rd, lst);
    while (rs.loop.iv.more > 0);
}

void end_of_run(RunState& rs, const Listing& lst, const Console& con)
{
    lst.line(free_line("# time steps numit ... ", (int)rs.loop.numit));
    final_summaries(rs, lst);
    lst.line(free_line("total iterations performed: ", (int)rs.loop.nflow));
    const std::string tail[] = {"", "", std::string(10, ' ') + "**** normal exit ****", "", ""};
    for (const std::string& l : tail) lst.line(l);
    for (const std::string& l : tail) con.line(l);
}
