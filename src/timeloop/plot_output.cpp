#include "timeloop/plot_output.hpp"

#include "timeloop/run_state.hpp"
#include "output/field_files.hpp"
#include "output/profile_files.hpp"
#include "output/section_files.hpp"
#include "output/series_files.hpp"
#include "output/vector_files.hpp"

#include <cmath>

namespace {

constexpr double print_time_hit = 1.0000000116861e-07;  // days: a field file is due
constexpr double no_peak = 1.0e33;                     // start of the running extremes

// The pieces of the run state the writers read.  The setup state is written at time 0
// whatever the clock holds; dt is the interval's step in seconds (0 before the first).
PlotContext context(const RunState& rs, bool setup)
{
    return PlotContext{rs.grid, rs.f,       rs.deck,   rs.opt, rs.media, rs.vel, rs.frac, rs.forcing,
                       rs.heat.fc, setup ? 0.0 : rs.loop.tdays, rs.loop.iv.dt, setup};
}

// Which families of files this run can fill.
struct PlotSwitches {
    bool temperature = false;  // not a flow-only run: temperature sections and profiles
    bool leaky = false;        // heat run with a thermally leaky top
    bool knox = false, knoy = false, knoz = false;  // a slot of each section list in use
    bool hxz = false;          // knoy slot 1 or 2 in use
    bool t1dz = false;         // vertical profiles: knoy(1) and a knox slot
    bool debug = false;        // knoy(1) and knoz(1)
    bool mass = false;         // the mass sums are written
};

// The switches follow from the options and the section lists alone, so setup and steps
// agree on which files get a header and which get zones.
PlotSwitches switches(const RunState& rs)
{
    const Options& o = rs.opt;
    const Deck& d = rs.deck;
    PlotSwitches s;
    s.temperature = !(o.kcntrl == 1 || o.kcntrl == 3);
    // the heat index exists only when heat is transported; its top code 4 is a leaky top
    s.leaky = o.lheat && rs.heat.kb.size() > 6 && rs.heat.kb[6] == 4;
    s.knox = any_slot(d.knox);
    s.knoy = any_slot(d.knoy);
    s.knoz = any_slot(d.knoz);
    s.hxz = d.knoy[1] != 0 || d.knoy[2] != 0;
    s.t1dz = d.knoy[1] != 0 && s.knox;
    s.debug = d.knoy[1] != 0 && d.knoz[1] != 0;
    s.mass = o.kprt == 1 && (o.kmass == 1 || o.kmass == 3);
    return s;
}

// Builds a header in the buffer and writes it to its unit.
template <typename F>
void header(RunState& rs, int unit, F&& build)
{
    std::string& b = rs.plots.rec;
    build(b);
    write_block(rs.files.w(unit), b);
}

// The files of a plot step (and of the setup); in a flow-only run the head sections only.
// Every writer walks its own section slots and skips the unused ones; the switches here
// only keep temperature files out of a flow-only run and the optional files quiet.
void plot_step_files(RunState& rs, const PlotContext& c, const PlotSwitches& s)
{
    Files& fl = rs.files;
    PlotOutputs& p = rs.plots;
    std::string& b = p.rec;
    if (s.temperature) {
        write_xz_sections(fl.w(plot_unit::txz), c, XzKind::temperature, p.zones_txz, b);
        if (rs.opt.lmass) write_xz_sections(fl.w(plot_unit::cxz), c, XzKind::concentration, p.zones_cxz, b);
        write_xz_sections(fl.w(plot_unit::tdif), c, XzKind::difference, p.zones_tdif, b);
    }
    write_hxz(fl.w(plot_unit::hxz), c, b);
    if (s.temperature) write_tyz(fl.w(plot_unit::tyz), c, b);
    write_hyz(fl.w(plot_unit::hyz), c, b);
    if (s.temperature) write_txy(fl.w(plot_unit::txy), c, p.zones_txy, b);
    write_hxy(fl.w(plot_unit::hxy), c, p.zones_hxy, b);
    if (!s.temperature) return;
    // profiles and maps of the temperature field and of what the heat steps hand over
    if (s.t1dz) write_t1dz(fl.w(plot_unit::t1dz), c, rs.defo.dzel, b);
    write_t1dx(fl.w(plot_unit::t1dx), c, b);
    write_bzq(fl.w(plot_unit::bzq), c, rs.defo.dztot, b);
    if (s.leaky) write_hflux_xl(fl.w(plot_unit::hflux_xl), c, b);
    if (s.debug) write_debug_1dx(fl.w(plot_unit::debug_1dx), c, b);
    write_tbck(fl.w(plot_unit::tbck), c, b);
    write_tpeak(fl.w(plot_unit::tpeak), c, p, rs.defo.dzcol, rs.defo.dztot);
}

// The header of every file this run can fill, in the order of the units.  A file whose
// zones can never come (a section list without slots, no solute, a flow-only run) is
// left empty, so an empty file tells the user at once that it was not asked for.
void headers(RunState& rs, const PlotSwitches& s)
{
    const Grid& g = rs.grid;
    if (s.temperature && s.knoy) {
        header(rs, plot_unit::txz, [](std::string& b) { xz_header(b, XzKind::temperature); });
        if (rs.opt.lmass) header(rs, plot_unit::cxz, [](std::string& b) { xz_header(b, XzKind::concentration); });
        header(rs, plot_unit::tdif, [](std::string& b) { xz_header(b, XzKind::difference); });
    }
    if (s.hxz) header(rs, plot_unit::hxz, hxz_header);
    if (s.temperature && s.knox) header(rs, plot_unit::tyz, tyz_header);
    if (s.knox) header(rs, plot_unit::hyz, hyz_header);
    if (s.temperature && s.knoz) header(rs, plot_unit::txy, txy_header);
    if (s.knoz) header(rs, plot_unit::hxy, hxy_header);
    if (s.temperature) {
        if (s.t1dz) header(rs, plot_unit::t1dz, t1dz_header);
        if (s.knoz) header(rs, plot_unit::t1dx, t1dx_header);
        header(rs, plot_unit::bzq, bzq_header);
        if (s.leaky) header(rs, plot_unit::hflux_xl, hflux_xl_header);
        if (s.debug) header(rs, plot_unit::debug_1dx, debug_1dx_header);
        header(rs, plot_unit::tbck, tbck_header);
        header(rs, plot_unit::tpeak, tpeak_header);
    }
    // maps and series of the moment steps, whatever the section lists
    header(rs, plot_unit::kplot, kplot_header);
    header(rs, plot_unit::heatfluxtop, heatfluxtop_header);
    header(rs, plot_unit::surface_flux, surface_flux_header);
    header(rs, plot_unit::bndy, bndy_header);
    header(rs, plot_unit::htot, htot_header);
    header(rs, plot_unit::peak, peak_header);
    if (rs.plots.t1dz_on) header(rs, plot_unit::t1dz_tdum, [&](std::string& b) { t1dz_time_header(b, g.nzt); });
    if (rs.plots.t1dx_on) header(rs, plot_unit::t1dx_tdum, [&](std::string& b) { t1dx_time_header(b, g.nx); });
    // the vector files and the movie: their header once, their zones when due
    header(rs, plot_unit::vxz, [](std::string& b) { vector_header(b, VectorPlane::xz); });
    header(rs, plot_unit::vxy, [](std::string& b) { vector_header(b, VectorPlane::xy); });
    header(rs, plot_unit::vyz, [](std::string& b) { vector_header(b, VectorPlane::yz); });
    header(rs, plot_unit::v3d, vector3d_header);
    header(rs, plot_unit::peclet, peclet_header);
    header(rs, plot_unit::movie, movie_header);
    if (s.mass) header(rs, plot_unit::mass, mass_header);
}

}  // namespace

void initial_plot_output(RunState& rs)
{
    PlotOutputs& p = rs.plots;
    const Grid& g = rs.grid;
    const Deck& d = rs.deck;
    // one buffer for the whole run: no step allocates to build its records
    reserve_records(p);
    p.tpk.assign(g.nxy + 1, -no_peak);
    p.tmin.assign(g.nxy + 1, no_peak);
    // the time plots follow the first slots only: the column (knox1, knoy1) and the row
    // (knoy1, knoz1)
    p.t1dz_on = d.knox[1] != 0 && d.knoy[1] != 0;
    p.t1dx_on = d.knoy[1] != 0 && d.knoz[1] != 0;
    const PlotSwitches s = switches(rs);
    headers(rs, s);

    // the initial state goes into the plot-step files as their first zone; the moment
    // files start with the first step, which has the first velocities
    const PlotContext c = context(rs, true);
    plot_step_files(rs, c, s);
    // the first heat record: contents of the initial state, no flows yet
    write_htot(rs.files.w(plot_unit::htot), 0.0, HeatTotals{rs.bal.heat.htotr, rs.bal.heat.htota, 0.0, 0.0, 0.0}, p.rec);
    ++p.n_htot;
    if (p.t1dz_on) {
        write_t1dz_time(rs.files.w(plot_unit::t1dz_tdum), c, p.rec);
        ++p.n_t1dz;
    }
    if (p.t1dx_on) {
        write_t1dx_time(rs.files.w(plot_unit::t1dx_tdum), c, p.rec);
        ++p.n_t1dx;
    }
}

void step_plot_output(RunState& rs)
{
    PlotOutputs& p = rs.plots;
    Files& fl = rs.files;
    const LoopState& L = rs.loop;
    const PlotSwitches s = switches(rs);
    const PlotContext c = context(rs, false);
    std::string& b = p.rec;

    // the peak line first: the extremes of this step enter the peak maps of its plots
    if (L.lmom) {
        update_peak_maps(rs.grid, rs.f, p);
        write_peak(fl.w(plot_unit::peak), c, b);
        ++p.n_peak;
    }
    // the heat totals every step: the record repeats the last contents when the heat
    // content was not recomputed
    write_htot(fl.w(plot_unit::htot), L.tdays, rs.bal.heat, b);
    ++p.n_htot;
    if (L.lplot2d) plot_step_files(rs, c, s);
    // the K section and the surface flux map need both a plot and a moment step
    if (L.lmom) {
        if (L.lplot2d) write_kplot(fl.w(plot_unit::kplot), c, b);
        write_heatfluxtop(fl.w(plot_unit::heatfluxtop), c, rs.bal.top, b);
        if (L.lplot2d) write_surface_flux(fl.w(plot_unit::surface_flux), c, rs.bal.top, b);
        write_bndy(fl.w(plot_unit::bndy), L.tdays, rs.bal.bndy, b);
        ++p.n_bndy;
    }
    // the time plots thin the steps out: every second step for the short vertical
    // profile, every hundredth for the long horizontal one
    if (p.t1dz_on && L.istep % 2 == 0) {
        write_t1dz_time(fl.w(plot_unit::t1dz_tdum), c, b);
        ++p.n_t1dz;
    }
    if (p.t1dx_on && L.istep % 100 == 0) {
        write_t1dx_time(fl.w(plot_unit::t1dx_tdum), c, b);
        ++p.n_t1dx;
    }
    // a field file is due within 1e-7 days of its print time, closer than the loop's test
    // for the vector files: a step between the two gets vectors but no field file
    for (int k = 1; k <= 5; ++k)
        if (std::fabs(L.tdays - rs.deck.tprint3d[k]) < print_time_hit)
            write_field_file(fl.w(plot_unit::tc3d1 + k - 1), c, b);
    if (L.lmovie) write_movie_frame(fl.w(plot_unit::movie), c, p.movie_frames, b);
    if (L.lmom && s.mass) {
        write_mass(fl.w(plot_unit::mass), L.tdays, rs.bal.mass, b);
        ++p.n_mass;
    }
}

// The Peclet and Courant numbers of the step; the loop decides when they are due.
void peclet_output(RunState& rs)
{
    PlotOutputs& p = rs.plots;
    write_peclet(rs.files.w(plot_unit::peclet), context(rs, false), p.zones_peclet, p.rec);
}

// Called by the loop when vectors are due: the sections at a plot step with the extra
// outputs on, and everything at a print time.
void velocity_output(RunState& rs)
{
    const PlotContext c = context(rs, false);
    std::string& b = rs.plots.rec;
    Files& fl = rs.files;
    if ((rs.opt.kprt == 1 && rs.loop.lplot2d) || rs.loop.lprint3d) {
        write_vectors(fl.w(plot_unit::vxz), c, VectorPlane::xz, b);
        write_vectors(fl.w(plot_unit::vxy), c, VectorPlane::xy, b);
        write_vectors(fl.w(plot_unit::vyz), c, VectorPlane::yz, b);
    }
    if (rs.loop.lprint3d) write_vectors3d(fl.w(plot_unit::v3d), c, b);
}

void end_plot_output(RunState& rs)
{
    PlotOutputs& p = rs.plots;
    Files& fl = rs.files;
    std::string& b = p.rec;
    const PlotContext c = context(rs, false);
    // fracture velocities of the last step only; a run without fractures leaves them empty
    if (rs.frac.nfrac > 0)
        write_fracture_vectors(fl.w(plot_unit::vfracxz), fl.w(plot_unit::vfracxy), fl.w(plot_unit::vfracset1), c, b);
    // the counts behind the 9999 placeholders, for the user to put in by hand
    write_count_line(fl.w(plot_unit::peak), p.n_peak, b);
    write_count_line(fl.w(plot_unit::htot), p.n_htot, b);
    if (p.t1dz_on) write_count_line(fl.w(plot_unit::t1dz_tdum), p.n_t1dz, b);
    if (p.t1dx_on) write_count_line(fl.w(plot_unit::t1dx_tdum), p.n_t1dx, b);
    write_count_line(fl.w(plot_unit::bndy), p.n_bndy, b);

    // the time plots are read back and written again with their true profile counts
    close_unit(fl, plot_unit::t1dz_tdum);
    close_unit(fl, plot_unit::t1dx_tdum);
    if (p.t1dz_on)
        rewrite_time_plot(fl.dir / "t1dz_tdum.plt", fl.dir / "t1dz_time.plt", rs.grid.nzt, p.n_t1dz, "at knox1,knoy1");
    if (p.t1dx_on)
        rewrite_time_plot(fl.dir / "t1dx_tdum.plt", fl.dir / "t1dx_time.plt", rs.grid.nx, p.n_t1dx, "at knoy1,knoz1");
}
