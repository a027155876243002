#include "input/deck.hpp"

#include "base/limits.hpp"
#include "base/stop.hpp"
#include "input/deck_io.hpp"
#include "output/fortran_format.hpp"

std::vector<std::string> banner_lines(const Deck& deck)
{
    const std::string pad(10, ' ');
    const std::string stars = pad + std::string(60, '*');
    return {stars,
            "",
            pad + "caldrift/gelmor",
            pad + "freezing groundwater flow, heat and solute transport",
            "",
            pad + "3-d density-dependent flow and thermal transport model",
            pad + "linear isoparametric elements",
            "",
            stars,
            "",
            pad + deck.title[1],
            "",
            pad + deck.title[2],
            pad + deck.title[3],
            stars,
            ""};
}

void read_titles(RecordReader& rd, const Listing& lst, Deck& deck)
{
    static const char* const label[] = {"", "record 1 (title line 1)", "record 1 (title line 2)",
                                        "record 1 (title line 3)"};
    for (int k = 1; k <= 3; ++k) {
        rd.label(label[k]);
        if (rd.title(deck.title[k]) != ReadStatus::ok) input_failure(rd, lst, "the title lines", ReadStatus::eof);
    }
}

void read_options(RecordReader& rd, const Listing& lst, Options& o)
{
    read_worded(rd, lst, "record 2 (run options)",
                {"error reading kprt,kcntrl,kwt,kint,kintv,kgo,ksat", ",kmass,ktair,krk,kdz,ksubtr,kr1top,kfreec",
                 "program stopping ..."},
                o.kprt, o.kcntrl, o.kwt, o.kint, o.kintv, o.kgo, o.ksat, o.kmass, o.ktair, o.krk, o.kdz, o.ksubtr,
                o.kr1top, o.kfreec);
    lst.line(free_line("run-time options ..."));
    lst.line(free_line("kprt,kcntrl,kwt,kint,kintv,kgo,ksat,kmass,ktair,"));
    lst.line(free_line("krk,kdz,ksubtr,kr1top,kfreec"));
    std::string vals;
    for (int v : {o.kprt, o.kcntrl, o.kwt, o.kint, o.kintv, o.kgo, o.ksat, o.kmass, o.ktair, o.krk, o.kdz, o.ksubtr,
                  o.kr1top, o.kfreec})
        vals += fmt_i(v, 3);
    lst.line(vals);

    switch (o.kmass) {
    case 0: lst.line(free_line("heat transport option in effect")); break;
    case 1: lst.line(free_line("mass transport option in effect")); break;
    case 2: lst.line(free_line("age transport option in effect")); break;
    case 3: lst.line(free_line("heat & mass transport option in effect")); break;
    default: break;
    }
    lst.line(free_line("conjugate gradient solver for flow"));
    if (o.kint == 0) lst.line(free_line("direct integration for element matrices"));
    if (o.kint == 1) lst.line(free_line("numerical integration for element matrices"));
    if (o.kintv == 0) lst.line(free_line("direct derivatives for velocities"));
    if (o.kintv == 1) lst.line(free_line("numerical derivatives for velocities"));
    if (o.kgo >= 1 && o.kgo <= 3) {
        lst.line(free_line("restart option in effect ... kgo = ", o.kgo));
        lst.line(free_line("restart using therm_in.data ... "));
        lst.line(free_line(o.kgo == 1   ? "(using heads only ...)"
                           : o.kgo == 2 ? "(using temperatures only ...)"
                                        : "(using both heads, T and C ...)"));
    } else if (o.kgo == 4) {
        lst.line(free_line("restart option in effect ... kgo = ", o.kgo));
        lst.line(free_line("(reading grid, no external initial conditions ..."));
    }
    lst.line(free_line("transport: advective term lagged, augmentation"));
    lst.line(free_line("matrix at midpoint in time"));
    lst.line(free_line("weighting for physical dispersion", weight_dispersion));
    lst.line(free_line("weighting for augmentation term  ", weight_augmentation));
    lst.line(free_line("weighting for cauchy boundary    ", weight_cauchy));
    lst.line(free_line(o.ksat == 0 ? "unsaturated transport zone included" : "saturated domain only"));
    if (o.ksubtr == 1) lst.line(free_line("using transport formulation v1 for latent heat"));
    else if (o.ksubtr == 2) lst.line(free_line("using transport formulation v2 with kappa,R"));
    else
        stop_run(lst, {"error, ksubtr for thermal transport must be 1", " (Co on rhs for L.Heat) or 2 (kappa,R)",
                       "program stopping ..."});

    o.lheat = (o.kmass == 0 || o.kmass == 3);
    o.lmass = (o.kmass == 1 || o.kmass == 3);
    o.lage = (o.kmass == 2);
    o.unsat = (o.ksat == 0);
    o.lkr1top = (o.kr1top == 1);
}

namespace {
// Sub-interval counts beyond any sensible grid are refused before their values are read.
constexpr int max_subintervals_read = 1000;

template <typename T>
void read_axis(RecordReader& rd, const Listing& lst, const char* what, int n, std::vector<T>& v)
{
    v.assign(n + 1, T{});
    const std::vector<Slot> s = slots_of(v, 1, n);
    read_record(rd, lst, what, s);
}

template <typename T>
std::string axis_echo(const char* label, const std::vector<T>& v)
{
    FreeLine fl;
    fl << label;
    for (std::size_t m = 1; m < v.size(); ++m) fl << v[m];
    return fl.str();
}
}  // namespace

void read_grid_definition(RecordReader& rd, const Listing& lst, Grid& g)
{
    read_plain(rd, lst, "record 3 (ngx ngy ngz)", g.ngx, g.ngy, g.ngz);
    lst.line(free_line("grid definition:"));
    lst.line(free_line("ngx,ngy,ngz: ", g.ngx, g.ngy, g.ngz));
    if (g.ngx > max_subintervals_read || g.ngy > max_subintervals_read || g.ngz > max_subintervals_read)
        stop_run(lst, {"dimension error in grid definition ", "you have too many grid sub-intervals",
                       "recompile with larger mxgx,mxgy,mxgz", "or reduce your number of sub-intervals (ngx,ngy,ngz)",
                       "... program ending "});
    read_axis(rd, lst, "record 4 (xg)", std::max(g.ngx, 0), g.xg);
    read_axis(rd, lst, "record 5 (yg)", std::max(g.ngy, 0), g.yg);
    read_axis(rd, lst, "record 6 (zg)", std::max(g.ngz, 0), g.zg);
    read_axis(rd, lst, "record 7 (nlx)", std::max(g.ngx, 0), g.nlx);
    read_axis(rd, lst, "record 8 (nly)", std::max(g.ngy, 0), g.nly);
    read_axis(rd, lst, "record 9 (nlz)", std::max(g.ngz, 0), g.nlz);
    lst.line(free_line("Global grid intervals for element spacing:"));
    lst.line(axis_echo("x-dimension grid intervals: ", g.xg));
    lst.line(axis_echo("y-dimension grid intervals: ", g.yg));
    lst.line(axis_echo("z-dimension grid intervals: ", g.zg));
    lst.line(free_line("element distribution (nlx,nly,nlz): "));
    lst.line(axis_echo("x-dimension: ", g.nlx));
    lst.line(axis_echo("y-dimension: ", g.nly));
    lst.line(axis_echo("z-dimension: ", g.nlz));
}

void read_datum_record(RecordReader& rd, const Listing& lst, const Grid& g, Deck& d)
{
    read_plain(rd, lst, "record 10 (nwtl datum gammac)", d.nwtl, d.datum, d.gammac);
    lst.line(free_line("number of deformable layers: ", d.nwtl));
    lst.line(free_line("grid datum:                ", d.datum));
    lst.line(free_line("conc./density coefficient: ", d.gammac));
    if (d.gammac == 0.0) lst.line(free_line("this is a linear mass transport run"));
    if (d.gammac > 0.0) lst.line(free_line("this is a nonlinear mass transport run"));
    if (d.nwtl > g.nez)
        stop_run(lst, {"error - the number of deformable watertable layers",
                       " (nwtl) is greater than your number of vertical elements", " program stopping ..."});
}

void read_wells(RecordReader& rd, const Listing& lst, Deck& d)
{
    int more = 0;
    do {
        Well w;
        read_worded(rd, lst, "record 11 (monitor well)", {"error reading breakthrough points", "program stopping ..."},
                    w.ixw, w.iyw, w.izw1, w.izw2, more);
        lst.line(free_line("well index data for breakthrough well:"));
        lst.line(free_line(w.ixw, w.iyw, w.izw1, w.izw2));
        if (w.ixw != 0 && w.iyw != 0 && w.izw1 != 0 && w.izw2 != 0) d.wells.push_back(w);
        else rd.note("an index 0: no well (a dummy record), its more still counts");
    } while (more > 0);
    const int nbt = (int)d.wells.size();
    lst.line(free_line("number of monitor wells ... ", nbt));
    if (nbt > maxbt)
        stop_run(lst, {free_items("max # monitor wells = ", maxbt), "Error - # monitor wells > maxbt",
                       "program stopping .... "});
}

void read_fractures(RecordReader& rd, const Listing& lst, bool unsat, const Grid& g, Fractures& fr,
                    std::ostream& xz, std::ostream& xy)
{
    int more = 0;
    do {
        FractureRecord f;
        read_worded(rd, lst, "record 12 (fracture)",
                    {"error in reading fracture data", "check ilx1,ilx2,ily1,ily2,ilz1,ilz2,idim,iloc,aperture,more",
                     "program stopping"},
                    f.ilx1, f.ilx2, f.ily1, f.ily2, f.ilz1, f.ilz2, f.idim, f.iloc, f.aperture, more);
        if (is_dummy(f)) rd.note("an index 0: no fracture (a dummy record), its more still counts");
        fracture_record(f, unsat, g, fr, lst, xz, xy);
    } while (more > 0);
}

void read_properties(RecordReader& rd, const Listing& lst, bool unsat, const Grid& g, Media& m)
{
    echo_range_head(lst);
    int more = 0;
    do {
        PropertyRange r;
        PropertyValues& v = r.v;
        read_worded(rd, lst, "record 14 (element properties)",
                    {"error in reading elemental hydraulic Kx,Ky,Kz, etc.",
                     "check j1,j2,ckx,cky,ckz,tcx,cps,ps,theta,satw,more", "program stopping"},
                    r.j1, r.j2, v.ckx, v.cky, v.ckz, v.tcx, v.cps, v.ps, v.theta, v.satw, more);
        property_range(r, unsat, m, lst);
    } while (more > 0);
    echo_block_head(lst);
    do {
        PropertyBlock b;
        PropertyValues& v = b.v;
        read_worded(rd, lst, "record 15 (indexed properties)",
                    {"error reading indexed K data in gelmor.data", "program stopping ..."}, b.i1, b.i2, b.j1, b.j2,
                    b.k1, b.k2, v.ckx, v.cky, v.ckz, v.tcx, v.cps, v.ps, v.theta, v.satw, more);
        if (!property_block(b, unsat, g, m, lst)) {  // a zero index ends the list at once
            rd.note("an index 0 (or an odd count of negative ones): block ignored, the list ends here whatever "
                    "its more");
            break;
        }
    } while (more > 0);
}

void read_storage(RecordReader& rd, const Listing& lst, Media& m)
{
    read_worded(rd, lst, "record 15a (ss)", {"error reading storage term ss", "program stopping ..."}, m.ss);
    lst.line(free_line("storage term ... ", m.ss));
}

void read_init_head(RecordReader& rd, const Listing& lst, Deck& d)
{
    read_plain(rd, lst, "record 15b (init h0)", d.init, d.h0);
}

namespace {
const std::initializer_list<std::string> surface_words = {"error reading surfat terms (tair,bz,sat or tide)...",
                                                          "(ix1,ix2),surfmin,amp,period,phase,cutoff,gradt,gradx,more",
                                                          "program stopping ..."};
// Periods below this single-precision 1e-10 would divide the cosine argument by zero.
constexpr double period_floor = 1.00000001335143e-10;

void check_period(const Listing& lst, const CosineSet& s)
{
    if (s.period < period_floor) stop_run(lst, {"error ... cosine period=0", "program stopping"});
}

void read_cosine7(RecordReader& rd, const Listing& lst, const char* what, const char* echo, CosineSet& s)
{
    const Slot sl[] = {s.surfmin, s.amp, s.period, s.phase, s.cutoff, s.gradt, s.gradx};
    read_record(rd, lst, what, surface_words, sl);
    lst.line(free_line(echo));
    lst.line(free_line(s.surfmin, s.amp, s.period, s.phase, s.cutoff, s.gradt, s.gradx));
    check_period(lst, s);
}
}  // namespace

void read_surface_records(RecordReader& rd, const Listing& lst, bool leaky, Deck& d)
{
    read_worded(rd, lst, "record 15c (tcon porsurf satsurf)", {"error reading tcon,porsurf,satsurf", "program stopping ..."},
                d.tcon, d.porsurf, d.satsurf);
    lst.line(free_line(leaky ? "top surface thermally leaky" : "top surface not thermally leaky"));
    lst.line(free_line("top surface thermal parameters"));
    lst.line(free_line("thermal conductivity (tcon):  ", d.tcon));
    lst.line(free_line("porosity (porsurf):           ", d.porsurf));
    lst.line(free_line("saturation (satsurf):         ", d.satsurf));

    lst.line(free_line("surface T cosine variation: max number of sets: ", maxs));
    for (int set = 1;; ++set) {
        CosineSet& s = d.tsurf_sets[set];
        int more = 0;
        const Slot sl[] = {s.ix1, s.ix2, s.surfmin, s.amp, s.period, s.phase, s.cutoff, s.gradt, s.gradx, more};
        read_record(rd, lst, "record 16 (surface air temperature set)", surface_words, sl);
        lst.line(free_line("surface T set:", set));
        lst.line(free_line(s.ix1, s.ix2, s.surfmin, s.amp, s.period, s.phase, s.cutoff, s.gradt, s.gradx));
        if (set == maxs && more > 0)
            stop_run(lst, {"error, max number of surface T groups reached,", free_items("maxs = ", maxs),
                           "program stopping ..."});
        check_period(lst, s);
        if (s.surfmin < -50 || s.surfmin > 200 || s.amp > 50 || s.amp < -0.100000001490116 || s.phase > 365 ||
            s.phase < -365 || s.gradt > 1 || s.gradt < -1 || s.gradx > 1 || s.gradx < -1)
            stop_run(lst, {"error ... ", "non-physical cosine surface temperature parameters", "program stopping"});
        if (more < 0 || set == maxs) break;
        rd.note("more 0 or above on set 1: a second set follows (-1 ends the sets)");
    }
    read_cosine7(rd, lst, "record 17 (conductance layer thickness)", "conductance layer thickness variation", d.bz_thick);
    read_cosine7(rd, lst, "record 18 (conductance layer saturation)", "conductance layer saturation variation", d.bz_sat);
    read_cosine7(rd, lst, "record 19 (tide)", "tidal variation parameters", d.tide);
}

void read_velocity_choice(RecordReader& rd, const Listing& lst, const Options& opt, Deck& d)
{
    read_plain(rd, lst, "record 20 (ivel vx0 vy0 vz0 iflipv)", d.ivel, d.vx0, d.vy0, d.vz0, d.iflipv);
    if (d.iflipv == -1) lst.line(free_line("iflipv=-1: reversing velocity field ..."));
    if (d.iflipv == 0) stop_run(lst, {"error, iflipv=0, stopping ..."});
    if (d.ivel == 0 && opt.kcntrl == 2) stop_run(lst, {"Error: kcntrl=2 and ivel=0", "program stopping ..."});
    if (d.ivel == 2) lst.line(free_line("assuming uniform fracture velocity & v=0 in matrix"));
    if (d.ivel == 1 || d.ivel == 2) lst.line(free_line("fixed groundwater velocity (pre-flipped): ", d.vx0, d.vy0, d.vz0));
}

namespace {
void echo_freeze(const Listing& lst, const FreezeParams& f)
{
    lst.line(free_line("terminal unfrozen moisture content(p):   ", f.p));
    lst.line(free_line("unfrozen moisture content curvature(q):  ", f.q));
    lst.line(free_line("freezing front temperature (Ts):         ", f.Ts));
    lst.line(free_line("relative permeability exponent omega:    ", f.omega));
    lst.line(free_line("unfrozen moisture content model# wu:      ", f.modelwu));
    lst.line(free_line("relative permeability function model# kr: ", f.modelkr));
}

void read_freeze(RecordReader& rd, const Listing& lst, const char* what, FreezeParams& f)
{
    read_worded(rd, lst, what, {"error reading wlh,p,q, ... modelwu, modelkr", "program stopping ..."}, f.p, f.q, f.Ts,
                f.omega, f.modelwu, f.modelkr);
}
}  // namespace

void read_transport_constants(RecordReader& rd, const Listing& lst, const Options& opt, Deck& d)
{
    read_plain(rd, lst, "record 21 (al alt ath atv dd ret decay agefx idisp)", d.al, d.alt, d.ath, d.atv, d.dd, d.ret,
               d.decay, d.agefx, d.idisp);
    lst.line(free_line("dispersivities al,alt,ath,atv:", d.al, d.alt, d.ath, d.atv));
    lst.line(free_line("diffusion, retardation, decay, age growth:", d.dd, d.ret, d.decay, d.agefx));
    if (d.idisp == 0) lst.line(free_line("Original Burnett-Frind dispersion tensor"));
    if (d.idisp == 1) lst.line(free_line("Lichtner dispersion tensor"));
    if (opt.kint == 1 && d.decay > 0)
        stop_run(lst, {"decay only coded for direct integration option", "please contact authors for latest update",
                       "in the meantime, use kint=1", "program stopping"});
    if (opt.kmass == 0 && (d.decay > 0 || d.agefx > 0))
        stop_run(lst, {"incompatible kmass-decay-agefx", "kmass=0 (heat) but either decay>0 or agefx>0 ",
                       "   if agefx>0 (age transport), must set kmass=2", "program stopping"});
    if (d.decay > 0 && d.agefx > 0)
        stop_run(lst, {"incompatible decay-agefx", "agefx>0 then decay must be =0", "program stopping"});
    // R divides every transport term: a mass or age run needs it positive
    if ((opt.lmass || opt.lage) && !(d.ret > 0))
        stop_run(lst, {"error, retardation ret must be greater than 0 for mass or age transport",
                       free_items("ret = ", d.ret), "program stopping ..."});

    read_worded(rd, lst, "record 22 (cf pf ci rhoi tclw tcli wlh)", {"error reading cf,pf ... etc.", "program stopping ..."},
                d.cf, d.pf, d.ci, d.rhoi, d.tclw, d.tcli, d.wlh);
    lst.line(free_line("fluid specific heat, density:", d.cf, d.pf));
    lst.line(free_line("ice specific heat, density:  ", d.ci, d.rhoi));
    lst.line(free_line("thermal K of water, ice:     ", d.tclw, d.tcli));
    lst.line(free_line("latent heat of water:        ", d.wlh));
    if (d.tclw > 100 || d.tcli > 100)
        stop_run(lst, {"error in thermal K of water or ice", free_items("tclw,tcli ... ", d.tclw, d.tcli),
                       "program stopping ..."});

    read_freeze(rd, lst, "record 23 (Wu, kr of the porous medium)", d.medium);
    read_freeze(rd, lst, "record 24 (Wu, kr of fractures)", d.fracture);
    lst.line(free_line("porous medium:"));
    echo_freeze(lst, d.medium);
    lst.line(free_line("fractures:"));
    echo_freeze(lst, d.fracture);
    const FreezeParams& m = d.medium;
    if (m.modelwu < 0 || m.modelwu > 4) stop_run(lst, {"Error in Wu: modelwu is not 0-4", "program stopping ..."});
    if (m.modelkr < 0 || m.modelkr > 2) stop_run(lst, {"Error in kr: modelkr is not 0-4", "program stopping ..."});
    if ((m.modelwu == 2 || m.modelwu == 3) && m.q < 9.99999968265523e-21)
        stop_run(lst, {"Error in Wu: q cannot=0 with Wu model 2 or 3", "Program stopping ..."});
    if (m.modelwu == 0) lst.line(free_line("ModelWu = 0, so unfrozen moisture always = 1"));
    if (m.modelkr == 0) lst.line(free_line("Modelkr = 0, so relative perm. kr always = 1"));
}

namespace {
// One list of initial blocks (temperature or concentration).  The lower ends must be
// inside the grid and the upper ends not beyond it; a reversed range is simply empty.
// `range_error` gives the message lines for a block outside the grid.
template <typename RangeError>
void read_block_list(RecordReader& rd, const Listing& lst, const Grid& g, const char* what, const std::string& fail,
                     RangeError range_error, std::vector<InitialBlock>& blocks)
{
    int more = 0;
    do {
        InitialBlock b;
        read_worded(rd, lst, what, {fail, "program stopping ..."}, b.i1, b.i2, b.j1, b.j2, b.k1, b.k2, b.t_bot, b.t_top,
                    more);
        lst.line(free_line(b.i1, b.i2, b.j1, b.j2, b.k1, b.k2, b.t_bot, b.t_top));
        if (!(b.i1 > 0 && b.j1 > 0 && b.k1 > 0 && b.i2 <= g.nx && b.j2 <= g.ny && b.k2 <= g.nzt)) range_error(b);
        blocks.push_back(b);
    } while (more > 0);
}
}  // namespace

void read_initial_blocks(RecordReader& rd, const Listing& lst, const Options& opt, const Grid& g, Deck& d)
{
    if (opt.lheat) lst.line(free_line("initial temperature conditions"));
    read_block_list(rd, lst, g, "record 25 (initial temperature block)", "error reading temperature initial conditions",
                    [&](const InitialBlock&) {
                        stop_run(lst, {"error in initial conditions for T transport ...",
                                       free_items("nx,ny,nzt ...", g.nx, g.ny, g.nzt), "program stopping ..."});
                    },
                    d.tinit);
    trace_section(rd, "record 26 (initial concentration blocks)", opt.kmass == 1 || opt.kmass == 3, "kmass", opt.kmass);
    if (!(opt.kmass == 1 || opt.kmass == 3)) return;
    lst.line(free_line("initial concentration conditions"));
    read_block_list(rd, lst, g, "record 26 (initial concentration block)", "error reading concentration initial conditions",
                    [&](const InitialBlock& b) {
                        stop_run(lst, {"error in initial c condition nodes for transport...",
                                       free_items("i1,i2,j1,j2,k1,k2: ", b.i1, b.i2, b.j1, b.j2, b.k1, b.k2),
                                       "program stopping ..."});
                    },
                    d.cinit);
}

namespace {
void read_planes(RecordReader& rd, const Listing& lst, const char* what, const char* echo, const char* err, int limit,
                 std::array<int, 6>& kno)
{
    const Slot s[] = {kno[1], kno[2], kno[3], kno[4], kno[5]};
    read_record(rd, lst, what, s);
    lst.line(free_line(echo, kno[1], kno[2], kno[3], kno[4], kno[5]));
    for (int m = 1; m <= 5; ++m)
        if (kno[m] < 0 || kno[m] > limit) stop_run(lst, {free_items(err, kno[m]), " stopping ... "});
}
}  // namespace

void read_iteration_control(RecordReader& rd, const Listing& lst, const Grid& g, Deck& d)
{
    // the one record whose failure ends the program by running off its end
    read_worded(rd, lst, "record 27 (ccp cct ccw ccc maxit1 maxit2)",
                {"error in reading convergence criteria,", "check ccp,cct,ccw,ccc,maxit1,maxit2", "program stopping"},
                d.ccp, d.cct, d.ccw, d.ccc, d.maxit1, d.maxit2);
    lst.line(free_line("convergence criteria ccp,cct,ccw,ccc:", d.ccp, d.cct, d.ccw, d.ccc));
    lst.line(free_line("iteration limits maxit1,maxit2:", d.maxit1, d.maxit2));
    read_plain(rd, lst, "record 28 (hext text tsearch)", d.hext, d.text, d.tsearch);
    lst.line(free_line("extrapolation factor for heads:", d.hext));
    lst.line(free_line("extrapolation factor for temp.:", d.text));
    lst.line(free_line("temperature search area for tpeak:", d.tsearch));
    read_planes(rd, lst, "record 29 (knox)", "x-nodes for y/z contouring plane   : ", "Error with knox ... ", g.nx, d.knox);
    read_planes(rd, lst, "record 30 (knoy)", "y-nodes for x/z contouring plane   : ", "Error with knoy ... ", g.ny, d.knoy);
    read_planes(rd, lst, "record 31 (knoz)", "z-nodes for x/y contouring plane   : ", "Error with knoz ... ", g.nzt, d.knoz);
    const Slot s[] = {d.tprint3d[1], d.tprint3d[2], d.tprint3d[3], d.tprint3d[4], d.tprint3d[5]};
    read_record(rd, lst, "record 32 (3D print times)", s);
    lst.line(free_line("3D print times (days) ...", d.tprint3d[1], d.tprint3d[2], d.tprint3d[3], d.tprint3d[4],
                       d.tprint3d[5]));
}
