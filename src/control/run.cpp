#include "control/run.hpp"
#include "timeloop/run_state.hpp"

#include "base/limits.hpp"
#include "base/stop.hpp"
#include "element/function_table.hpp"
#include "element/hex.hpp"
#include "flow/mindex.hpp"
#include "grid/bulk_thermal.hpp"
#include "grid/gengrid.hpp"
#include "input/auxfiles.hpp"
#include "input/deck.hpp"
#include "input/deck_io.hpp"
#include "input/initial_state.hpp"
#include "output/fortran_format.hpp"
#include "solver/lower_csr.hpp"
#include "timeloop/step_calls.hpp"
#include "timeloop/time_loop.hpp"

#include <iostream>
#include <sstream>

namespace {

void write_banner(const Deck& deck, const Listing& lst, const Console& con)
{
    const std::vector<std::string> lines = banner_lines(deck);
    for (const std::string& l : lines) lst.line(l);
    for (const std::string& l : lines) con.line(l);
}

// Two corner columns of the flow grid, two nodes a line.
void echo_vertical_strip(const Listing& lst, const Grid& g, const char* title, int first)
{
    lst.line(free_line(title));
    for (int n = first; n < first + g.nz; n += 2) {
        FreeLine fl;
        fl << n << g.x[n] << g.y[n] << g.z[n];
        if (n + 1 < first + g.nz) fl << (n + 1) << g.x[n + 1] << g.y[n + 1] << g.z[n + 1];
        lst.line(fl.str());
    }
}

void echo_transport_grid(const Listing& lst, const Grid& g)
{
    lst.line(free_line("transport grid ..."));
    lst.line(free_line("number of nodes in vertical (z) direction  (nzt) = ", g.nzt));
    lst.line(free_line("number of z-elements in transport grid:   (nezt) = ", g.nezt));
    lst.line(free_line("total number of nodes in transport grid:   (nnt) = ", g.nnt));
    lst.line(free_line("total number of elements in transport grid:(net) = ", g.net));
}

// The seven thermal constants of the deck with the two capacities derived from them.
ThermalConstants thermal_constants(const Deck& d)
{
    ThermalConstants tc{d.cf, d.pf, d.ci, d.rhoi, d.tclw, d.tcli, d.wlh};
    derive_thermal_constants(tc);
    return tc;
}

// Whether the run ever solves flow, and whether it ever solves transport.
bool solves_flow(const Options& opt) { return opt.kcntrl != 2; }
bool solves_transport(const Options& opt) { return opt.kcntrl != 1 && opt.kcntrl != 3; }

// The shared matrix store and work of the solves, sized for the largest field the run
// solves.
void size_solves(RunState& rs)
{
    int nn = rs.grid.nn, nnz = 0, nwork = 0;
    for (const FieldIndex* fi : {&rs.flow, &rs.heat, &rs.mass}) {
        nn = std::max(nn, fi->nn);
        if (fi == &rs.flow ? solves_flow(rs.opt) : solves_transport(rs.opt)) nnz = std::max(nnz, fi->pat.nvec);
    }
    nwork = 6 * rs.flow.neq;
    if (solves_transport(rs.opt))
        for (const FieldIndex* fi : {&rs.heat, &rs.mass}) nwork = std::max(nwork, 3 * fi->neq + fi->pat.nvec);
    // the block list never holds more blocks than equations
    size_solver_work(rs.work, nn, nnz, nwork, rs.flow.neq + 1, solves_transport(rs.opt));
}

// Velocities given by the deck instead of a flow solution.
void set_given_velocities(RunState& rs, const Listing& lst)
{
    const Grid& g = rs.grid;
    const Deck& d = rs.deck;
    Velocities& v = rs.vel;
    for (auto* a : {&v.vx, &v.vy, &v.vz}) a->assign(g.net + 1, 0.0);
    for (auto* a : {&v.vlin, &v.vx2d, &v.vy2d}) a->assign(rs.frac.nfrac + 1, 0.0);
    if (d.ivel == 1) {
        for (int e = 1; e <= g.net; ++e) {
            v.vx[e] = d.iflipv * d.vx0;
            v.vy[e] = d.iflipv * d.vy0;
            v.vz[e] = d.iflipv * d.vz0;
        }
    } else if (d.ivel == 2) {
        // the matrix carries next to nothing; the fractures get the given velocity
        for (auto* a : {&v.vx, &v.vy, &v.vz})
            for (int e = 1; e <= g.net; ++e) (*a)[e] = 9.999999682655225e-21;
    } else if (d.ivel == 3) {
        read_veloc2d(rs.files, lst, g, v);
    }
}

// Phases 2 to 22 of a run, in their fixed order; the deck is read strictly forward.
// An input-only run stops after the initial output, before the time loop.
void run_phases(RunState& rs, RecordReader& rd, const Listing& lst, const Console& con, RunScope scope)
{
    Options& opt = rs.opt;
    Deck& deck = rs.deck;
    Grid& g = rs.grid;
    Media& media = rs.media;

    fill_element_tables(rs.tables, rs.cmat);
    read_titles(rd, lst, deck);
    write_banner(deck, lst, con);
    read_options(rd, lst, opt);

    read_grid_definition(rd, lst, g);
    grid_sizes(g, opt, lst);
    read_datum_record(rd, lst, g, deck);
    read_wells(rd, lst, deck);

    gengrid(g, 0, opt.unsat, opt.kgo);
    trace_file(rd, "grid3d.plt", opt.kgo == 4, "kgo", opt.kgo);
    if (opt.kgo == 4) read_grid3d(rs.files, lst, opt, g);
    echo_vertical_strip(lst, g, "vertical strip at (x,y)=(0,0) x,y,z coords:", 1);
    echo_vertical_strip(lst, g, "vertical strip at (x,y)=(xl,yl) x,y,z coords:", g.nn - g.nz + 1);

    // fractures, drawn into their two geometry files as each record is read
    std::ostream& geo_xz = open_late(rs.files, unit::fracgeo_xz, "gelmor_fracgeo_xz.plt");
    std::ostream& geo_xy = open_late(rs.files, unit::fracgeo_xy, "gelmor_fracgeo_xy.plt");
    size_fractures(rs.frac, g.ne, opt.kmass, opt.lheat);
    read_fractures(rd, lst, opt.unsat, g, rs.frac, geo_xz, geo_xy);
    close_unit(rs.files, unit::fracgeo_xz);
    close_unit(rs.files, unit::fracgeo_xy);
    fracture_summary(rs.frac, lst);
    lst.flush();

    rd.note("record 13 (boundary section, flow): always there");
    mindex(rd, lst, 0, g.nn, g.ne, g.nx, g.ny, g.nz, g.in, g.x, g.y, g.z, g.nb, rs.flow, rs.faces, rs.wt);
    lst.flush();
    rs.fc0 = rs.flow.fc;
    if (solves_flow(opt)) element_positions(rs.flow.pat, g.in, g.ne, rs.flow.idir, rs.flow.ncum, g.nb, rs.flow.epos);
    rs.top_idir.assign(g.nxy + 1, 0);
    for (int c = 1; c <= g.nxy; ++c) rs.top_idir[c] = rs.flow.idir[c * g.nz];

    size_media(media, g, opt.unsat, lst);
    read_properties(rd, lst, opt.unsat, g, media);
    trace_file(rd, "fgen92.asc", opt.krk > 0, "krk", opt.krk);
    if (opt.krk > 0) read_random_fields(rs.files.r(unit::fgen), opt.krk, media, lst);
    check_properties(media, lst);
    read_storage(rd, lst, media);
    read_init_head(rd, lst, deck);
    rs.f.u.assign(g.nn + 1, 0.0);
    rs.f.u0 = rs.f.ui = rs.f.u;
    trace_file(rd, "hinput.data", deck.init == 1, "init", deck.init);
    set_initial_heads(rs.files, lst, deck, g, rs.f);

    g.nezt = g.nez;
    g.net = g.ne;
    g.nnt = g.nx * g.ny * g.nzt;
    gengrid(g, 1, opt.unsat, opt.kgo);
    echo_transport_grid(lst, g);
    trace_section(rd, "record 13h (boundary section, heat)", opt.kmass == 0 || opt.kmass == 3, "kmass", opt.kmass);
    if (opt.kmass == 0 || opt.kmass == 3) {
        mindex(rd, lst, 1, g.nnt, g.net, g.nx, g.ny, g.nzt, transport_incidence(g), g.x, g.y, g.z, g.nbb, rs.heat, rs.faces, rs.wt);
        lst.flush();
    }
    trace_section(rd, "record 13m (boundary section, mass)", opt.kmass == 1 || opt.kmass == 3, "kmass", opt.kmass);
    if (opt.kmass == 1 || opt.kmass == 3) {
        mindex(rd, lst, 2, g.nnt, g.net, g.nx, g.ny, g.nzt, transport_incidence(g), g.x, g.y, g.z, g.nbb, rs.mass, rs.faces, rs.wt);
        lst.flush();
    }
    // a field without a boundary section of its own is free everywhere, with no fixed value;
    // a flow-only run needs no such mass field (its concentrations stay 0)
    for (FieldIndex* fi : {&rs.heat, &rs.mass}) {
        if ((int)fi->fc.size() == g.nnt + 1) continue;
        if (fi == &rs.mass && !solves_transport(opt) && !opt.lage) continue;
        fi->nn = g.nnt;
        fi->idir.assign(g.nnt + 1, 0);
        fi->fc.assign(g.nnt + 1, 0.0);
        fi->qnode.assign(g.nnt + 1, 0.0);
        count_fixed(*fi);
    }
    // age has no boundary section: every transport node is free, and the pattern is
    // built quietly
    if (opt.lage) build_pattern(Listing{}, transport_incidence(g), g.net, g.nbb, rs.mass);
    // the slots of every brick, for the assembly of the transport steps; a flow-only run
    // keeps of the transport patterns only their counts, which the listing has shown
    if (solves_transport(opt)) {
        if (opt.lheat)
            element_positions(rs.heat.pat, transport_incidence(g), g.net, rs.heat.idir, rs.heat.ncum, nb_transport, rs.heat.epos);
        if (opt.lmass || opt.lage)
            element_positions(rs.mass.pat, transport_incidence(g), g.net, rs.mass.idir, rs.mass.ncum, nb_transport, rs.mass.epos);
    } else {
        for (FieldIndex* fi : {&rs.heat, &rs.mass}) fi->pat.ia = fi->pat.ja = std::vector<int>();
        media.co0 = media.co1 = std::vector<double>();  // the heat capacities of the heat steps
    }
    size_solves(rs);
    size_deformation(rs.defo, g, opt.kdz > 0);
    std::vector<double> u = std::move(rs.f.u), u0 = std::move(rs.f.u0), ui = std::move(rs.f.ui);
    size_fields(rs.f, g.nn, g.nnt);
    rs.f.u = std::move(u);
    rs.f.u0 = std::move(u0);
    rs.f.ui = std::move(ui);
    elvol(g.x, g.y, g.z, rs.tables.gauss, transport_incidence(g), media.vol, g.net, media.voltot, opt.kint, g.dxe, g.dye, g.dze, lst);

    const bool leaky = (opt.kmass == 0 || opt.kmass == 3) && rs.heat.kb[6] == 4;
    size_forcing(rs.forcing, g.nx, g.nxy);
    rs.forcing.lleaky = leaky;
    read_surface_records(rd, lst, leaky, deck);
    trace_file(rd, "tair.data", opt.ktair > 0, "ktair", opt.ktair);
    if (opt.ktair > 0) read_tair(rs.files, lst, rs.aux);
    read_hbdy(rs.files, lst, rs.aux);
    read_bzin(rs.files, lst, rs.aux);
    read_velocity_choice(rd, lst, opt, deck);
    trace_file(rd, "veloc2d_in.data", deck.ivel == 3, "ivel", deck.ivel);
    set_given_velocities(rs, lst);
    read_transport_constants(rd, lst, opt, deck);
    read_initial_blocks(rd, lst, opt, g, deck);
    rs.loop.can_freeze = set_initial_transport(lst, opt, deck, g, rs.heat, rs.mass, rs.f);

    bulk_thermal_conductivity(g, rs.f, deck.medium, thermal_constants(deck), media, lst);
    derived_parameters(g, rs.f, deck.medium, thermal_constants(deck), opt.lheat, deck.porsurf, deck.satsurf, media, lst);
    read_slope_zt(rs.files, lst, g, rs.heat.last_value > -999, rs.aux, rs.heat.fc, rs.f);
    h_adjust(lst, true, 0.0, deck.gammac, g, rs.flow, rs.fc0, rs.aux, rs.flow.fc, rs.f);
    trace_file(rd, "therm_in.data", opt.kgo >= 1 && opt.kgo <= 3, "kgo", opt.kgo);
    if (opt.kgo >= 1 && opt.kgo <= 3) {
        read_restart(rs.files, lst, opt, g, rs.f, rs.flow.last_value < -998, rs.flow.fc);
        lst.flush();
    }
    read_iteration_control(rd, lst, g, deck);

    // the check table of the fluid functions, for element 1 and the porous medium; its tk
    // column takes the largest bulk conductivity of the start-up state
    std::ostream& dv = open_late(rs.files, unit::den_visc, "gelmor_den_visc_T.plt");
    write_function_table(dv, deck.medium, thermal_constants(deck), fluid_switches(opt.kmass, deck.gammac),
                         media.por[1], media.sw[1], media.csol[1], media.tkmax);
    close_unit(rs.files, unit::den_visc);
    initial_output(rs, lst);
    if (scope == RunScope::input_only) return;
    if (scope == RunScope::deck) {
        read_intervals(rs, rd, lst);
        return;
    }

    time_loop(rs, rd, lst, con);
    end_of_run(rs, lst, con);
}

struct Outcome {
    int status = 0;
    bool stopped = false;  // a fatal stop ended the run
};

// The run frame on an opened file table: the only catch of a fatal stop.
Outcome run_frame(RunState& rs, std::ostream& console, RunScope scope, TraceSink* trace = nullptr)
{
    Listing lst{rs.files.out[unit::lst].get()};
    Console con{&console};
    RecordReader rd(*rs.files.r(unit::deck), "gelmor.data");
    rd.set_trace(trace);
    Outcome o;
    try {
        run_phases(rs, rd, lst, con, scope);
    } catch (const RunStopped& s) {
        o = {s.status, true};
    }
    lst.flush();
    console.flush();
    return o;
}

}  // namespace

int run_gelmor(const std::filesystem::path& dir, std::ostream& console)
{
    RunState rs;
    if (!open_files(rs.files, dir)) {
        // without its deck or its listing a run cannot start
        std::cerr << "gelmor: " << rs.files.problem << "\n";
        return 2;
    }
    // a result that cannot be written would be lost without a word: the run does not start
    if (!rs.files.unopened.empty()) {
        const Listing lst{rs.files.out[unit::lst].get()};
        for (const std::string& name : rs.files.unopened) {
            lst.line("cannot create result file " + name);
            std::cerr << "gelmor: cannot create result file " << name << " in " << dir.string() << "\n";
        }
        lst.flush();
        return 2;
    }
    int status = run_frame(rs, console, RunScope::whole).status;
    if (!rs.files.unopened.empty()) status = 2;  // a file opened late
    for (const std::string& name : rs.files.unopened) std::cerr << "gelmor: cannot create result file " << name << "\n";
    // a full disk shows only here: what could not be written is named, and the run fails
    for (const std::string& name : flush_files(rs.files)) {
        std::cerr << "gelmor: writing " << name << " in " << dir.string() << " failed\n";
        status = 2;
    }
    return status;
}

InputRun run_input_in_memory(const std::map<std::string, std::string>& texts, RunScope scope, TraceSink* trace)
{
    RunState rs;
    if (!open_in_memory(rs.files, texts)) return {2, true, ""};
    std::ostringstream console;
    const Outcome o = run_frame(rs, console, scope, trace);
    return {o.status, o.stopped, memory_text(rs.files, unit::lst)};
}
