#include "input/auxfiles.hpp"

#include "base/limits.hpp"
#include "base/stop.hpp"
#include "input/deck_io.hpp"
#include "input/record_reader.hpp"
#include "output/fortran_format.hpp"

#include <cmath>
#include <string>

namespace {

// One value of a fixed-column field; blank counts as zero.
bool fixed_field(const std::string& line, std::size_t first, std::size_t width, bool integer, double& v)
{
    std::string f = first < line.size() ? line.substr(first, width) : std::string();
    const std::size_t a = f.find_first_not_of(' ');
    if (a == std::string::npos) { v = 0; return true; }
    f = f.substr(a, f.find_last_not_of(' ') - a + 1);
    if (integer) {
        int i = 0;
        if (!parse_int(f, i)) return false;
        v = i;
        return true;
    }
    return parse_real(f, v);
}

// A title line of an auxiliary file; false at its end.
bool skip_title(RecordReader& rd)
{
    std::string t;
    return rd.title(t) == ReadStatus::ok;
}

}  // namespace

void read_grid3d(Files& files, const Listing& lst, const Options& opt, Grid& g)
{
    std::istream* in = files.r(unit::grid3d);
    if (!in)
        stop_run(lst, {"!!! error detected in grid3d.plt file !!! ", "you are trying to read an external grid (grid3d.plt)",
                       "but this file does not exist", "use kgrid=0 or create grid3d.plt file", "program stopping ..."});
    lst.line(free_line("kgo=4, reading external grid grid3d.plt ..."));
    RecordReader rd(*in, "grid3d.plt");
    std::string head;
    double nz2 = 0, ny2 = 0, nx2 = 0;
    const bool ok = skip_title(rd) && skip_title(rd) && rd.title(head) == ReadStatus::ok &&
                    fixed_field(head, 7, 8, true, nz2) && fixed_field(head, 19, 8, true, ny2) &&
                    fixed_field(head, 31, 8, true, nx2);
    // the head line is read whole, not cut at 80 columns
    if (!ok)
        stop_run(lst, {"error in reading grid3d.plt", "check spacing for data read:",
                       "zone i=    nz, j=    ny, k=    nx (7x,i8,4x,i8,4x,i8)", "program stopping"});
    const int inz2 = (int)nz2, iny2 = (int)ny2, inx2 = (int)nx2;
    if (inx2 != g.nx || iny2 != g.ny || (inz2 != g.nz && opt.ksat == 1))
        stop_run(lst, {"!!! error in grid3d.plt !!!", "grid dimensions are not the same as in gelmor.data",
                       free_items("nx2,ny2,nz2 = ", inx2, iny2, inz2), "program stopping ..."});
    if (opt.ksat == 0) {
        lst.line(free_line("unsat check with grid3d.plt ..."));
        lst.line(free_line("nx,ny,nz,nlz(ngz),nx2,ny2,nz2: ", g.nx, g.ny, g.nz, g.nlz[g.ngz], inx2, iny2, inz2));
        if (g.nz + g.nlz[g.ngz] != inz2) stop_run(lst, {"error detected with unsat option and grid3d.plt ..."});
    }
    if (inz2 < 1 || (long long)g.nx * g.ny * inz2 > maxn)
        stop_run(lst, {"!!! error in grid3d.plt !!!", "grid dimensions are not the same as in gelmor.data",
                       free_items("nx2,ny2,nz2 = ", inx2, iny2, inz2), "program stopping ..."});
    g.nzt = inz2;
    g.nnt = g.nx * g.ny * g.nzt;
    g.nyzt = g.ny * g.nzt;
    g.x.assign(g.nnt + 1, 0.0);
    g.y.assign(g.nnt + 1, 0.0);
    g.z.assign(g.nnt + 1, 0.0);
    double dummy = 0;
    for (int n = 1; n <= g.nnt; ++n) {
        const Slot s[] = {g.x[n], g.y[n], g.z[n], dummy};
        if (rd.list(s) != ReadStatus::ok)
            stop_run(lst, {"end of file detected in grid3d.plt", "this file is either empty or not compatible with",
                           "your existing data file - please check grid size", "and source of your existing data file",
                           "program stopping ..."});
    }
}

void read_hinput(Files& files, const Listing& lst, const Grid& g, Fields& f)
{
    std::istream* in = files.r(unit::hinput);
    if (!in)
        stop_run(lst, {"!!! error detected in hinput.data file !!! ", "you are trying to read an initial head condition",
                       "but this file does not exist; ", "rename a hxz.out file to hinput.data and try again",
                       "or use init=0 and use a uniform initial head"});
    RecordReader rd(*in, "hinput.data");
    const auto eof_stop = [&] {
        stop_run(lst, {"!!! end-of-file detected in hinput.data file !!! ", "the file is not compatible with your grid ",
                       "check source of old hinput.data file, and", "check present grid dimensions",
                       "program stopping ..."});
    };
    if (!skip_title(rd)) eof_stop();
    for (int i = 1; i <= g.nx; ++i) {
        for (int k = 1; k <= g.nz; ++k) {
            std::string line;
            if (rd.title(line) != ReadStatus::ok) eof_stop();
            double h = 0;
            // three fields of 15 columns: x and z are not used
            if (!fixed_field(line, 30, 15, false, h))
                stop_input(lst, {"input error: hinput.data line " + std::to_string(rd.line_no()) +
                                     ", the head in columns 31-45 is not a number",
                                 "program stopping ..."});
            f.u[grid_node(i, 1, k, g.ny, g.nz)] = h;
        }
        for (int j = 2; j <= g.ny; ++j)
            for (int k = 1; k <= g.nz; ++k) f.u[grid_node(i, j, k, g.ny, g.nz)] = f.u[grid_node(i, 1, k, g.ny, g.nz)];
    }
    f.u0 = f.u;
    f.ui = f.u;
    lst.line(free_line("initial condition for flow has been read in"));
}

namespace {
// Index rows of a table echo may run outside the table when it is short; those print zeros.
void echo_pair(const Listing& lst, const std::vector<double>& a, const std::vector<double>& b, int k)
{
    const bool in = k >= 1 && k < (int)a.size();
    lst.line(free_line(k, in ? a[k] : 0.0, in ? b[k] : 0.0));
}

void read_count(RecordReader& rd, const Listing& lst, const char* file, int& count)
{
    if (!skip_title(rd)) input_failure(rd, lst, std::string("the title of ") + file, ReadStatus::eof);
    read_plain(rd, lst, std::string("the point count of ") + file, count);
}
}  // namespace

void read_tair(Files& files, const Listing& lst, ForcingTables& t)
{
    std::istream* in = files.r(unit::tair);
    if (!in)
        stop_run(lst, {"error... you are trying to read tair.data", "(ktair>0), but this file does not exist",
                       "program stopping ..."});
    RecordReader rd(*in, "tair.data");
    int n = 0;
    read_count(rd, lst, "tair.data", n);
    if (n > max_tair)
        stop_run(lst, {"error, #Tair points (" + free_items(n) + ") > max (" + free_items(max_tair) + ")",
                       "program stopping ..."});
    n = std::max(n, 0);
    t.ntair = n;
    t.tair_t.assign(std::max(n, 5) + 1, 0.0);
    t.tair_v.assign(std::max(n, 5) + 1, 0.0);
    rd.begin_list();
    for (int k = 1; k <= n; ++k)
        if (rd.value(t.tair_t[k]) != ReadStatus::ok || rd.value(t.tair_v[k]) != ReadStatus::ok)
            stop_run(lst, {"error reading air temperatures in file tair.data", "program stopping ..."});
    rd.end_list();
    lst.line(free_line("surface air temperatures read from tair.data"));
    lst.line(free_line("# data points ... ", n));
    lst.line(free_line("first 5 and last 5 time/temperatures ... "));
    for (int k = 1; k <= 5; ++k) echo_pair(lst, t.tair_t, t.tair_v, k);
    for (int k = n - 5; k <= n; ++k) echo_pair(lst, t.tair_t, t.tair_v, k);
}

void read_hbdy(Files& files, const Listing& lst, ForcingTables& t)
{
    std::istream* in = files.r(unit::hbdy);
    if (!in) {
        lst.line(free_line("no hbdy.data file found ... continuing"));
        return;
    }
    RecordReader rd(*in, "hbdy.data");
    int n = 0;
    read_count(rd, lst, "hbdy.data", n);
    if (n > max_hbdy)
        stop_run(lst, {"error, #hbdy points (" + free_items(n) + ") > max (" + free_items(max_hbdy) + ")"});
    n = std::max(n, 0);
    t.lhbdy = true;
    t.nhbdy = n;
    t.hbdy_t.assign(n + 1, 0.0);
    t.hbdy_h.assign(n + 1, 0.0);
    rd.begin_list();
    for (int k = 1; k <= n; ++k)
        if (rd.value(t.hbdy_t[k]) != ReadStatus::ok || rd.value(t.hbdy_h[k]) != ReadStatus::ok)
            stop_run(lst, {"error reading bdy heads in file hbdy.data", "program stopping ..."});
    rd.end_list();
    lst.line(free_line("bdy heads read from hbdy.data"));
    lst.line(free_line("# data points ... ", n));
    lst.line(free_line("last 5 time/heads ... "));
    for (int k = std::max(n - 4, 1); k <= n; ++k) echo_pair(lst, t.hbdy_t, t.hbdy_h, k);
}

void read_bzin(Files& files, const Listing& lst, ForcingTables& t)
{
    std::istream* in = files.r(unit::bzin);
    if (!in) {
        lst.line(free_line("no bzin.data file found ... ok, continuing"));
        return;
    }
    RecordReader rd(*in, "bzin.data");
    int n = 0;
    read_count(rd, lst, "bzin.data", n);
    if (n > max_hbdy)
        stop_run(lst, {"error, #bzbdy points (" + free_items(n) + ") > max (" + free_items(max_hbdy) + ")"});
    n = std::max(n, 0);
    t.lbzin = true;
    t.bz.assign(n + 1, BzPoint{});
    const auto fail = [&] { stop_run(lst, {"error reading bz data in file bzin.data", "program stopping ..."}); };
    rd.begin_list();
    for (int k = 1; k <= n; ++k) {
        BzPoint& p = t.bz[k];
        if (rd.value(p.time) != ReadStatus::ok || rd.value(p.nzones) != ReadStatus::ok) fail();
        // a zone is a range of top columns: more zones than a grid can have columns is a
        // broken file, and would ask for more memory than there is
        if (p.nzones > nf)
            stop_run(lst, {"error, bzin.data point " + std::to_string(k) + " has nzones = " + std::to_string(p.nzones),
                           "more zones than the " + std::to_string(nf) + " columns a grid can have",
                           "program stopping ..."});
        p.nzones = std::max(p.nzones, 0);
        p.zone.assign(p.nzones + 1, BzZone{});
        for (int z = 1; z <= p.nzones; ++z) {
            BzZone& zn = p.zone[z];
            for (const Slot& s : {Slot(zn.ix1), Slot(zn.ix2), Slot(zn.bz), Slot(zn.bzflx), Slot(zn.bzq)})
                if (rd.value(s) != ReadStatus::ok) fail();
        }
        if (rd.value(p.tdiff) != ReadStatus::ok) fail();
    }
    rd.end_list();
    lst.line(free_line("top bdy bz data read from bzin.data"));
    lst.line(free_line("# data points...", n));
    lst.line(free_line("last 5:  time,tdiff,nzones, (ix1-ix2,bz,bzflx,bzq)_1,2... "));
    for (int k = std::max(n - 4, 1); k <= n; ++k) {
        const BzPoint& p = t.bz[k];
        FreeLine fl;
        fl << p.time << p.tdiff << p.nzones;
        for (int z = 1; z <= p.nzones; ++z)
            fl << p.zone[z].ix1 << p.zone[z].ix2 << p.zone[z].bz << p.zone[z].bzflx << p.zone[z].bzq;
        lst.line(fl.str());
    }
}

void read_veloc2d(Files& files, const Listing& lst, const Grid& g, Velocities& v)
{
    std::istream* in = files.r(unit::veloc2d_in);
    if (!in)
        stop_run(lst, {"error... you are trying to read veloc2d_in.data", "(ivel=3), but this file does not exist",
                       "program stopping ..."});
    lst.line(free_line("ivel=3: reading vx,vz from veloc2d_in.data; vy=0. "));
    RecordReader rd(*in, "veloc2d_in.data");
    const auto fail = [&] { stop_run(lst, {"error reading veloc2d_in.data; ivel=3", "program stopping ..."}); };
    for (int k = 1; k <= 3; ++k)
        if (!skip_title(rd)) fail();
    double x = 0, z = 0;
    for (int i = 1; i <= g.nex; ++i)
        for (int j = 1; j <= g.ney; ++j)
            for (int k = 1; k <= g.nezt; ++k) {
                const int e = grid_element(i, j, k, g.nex, g.ney);
                const Slot s[] = {x, z, v.vx[e], v.vz[e]};
                if (rd.list(s) != ReadStatus::ok) fail();
                v.vy[e] = 0.0;
            }
    lst.line(free_line("veloc2d_in read successful: vx(net),vz(net): ", v.vx[g.net], v.vz[g.net]));
}

void read_slope_zt(Files& files, const Listing& lst, const Grid& g, bool seabed_temps, ForcingTables& t,
                   std::vector<double>& heat_fc, Fields& f)
{
    t.hwcol.assign(max_hbdy + 1, 0.0);
    t.tsea.assign(max_hbdy + 1, 0.0);
    t.slope_row.assign(g.nx + 1, 0);
    std::istream* in = files.r(unit::slope);
    if (!in) {
        lst.line(free_line("no slope_zt.data file found, continuing ..."));
        return;
    }
    lst.line(free_line("reading slope_zt.data ..."));
    lst.line(free_line(" ixnode, water column height, sea Temperature"));
    RecordReader rd(*in, "slope_zt.data");
    std::vector<int> rows;
    int last = 0;
    if (skip_title(rd)) {
        while ((int)rows.size() < max_slope) {
            int i1 = 0;
            double depth = 0, temp = 0;
            const Slot s[] = {i1, depth, temp};
            const ReadStatus st = rd.list(s);
            if (st == ReadStatus::eof) break;
            if (st == ReadStatus::bad) input_failure(rd, lst, "a group i1 depth temp of slope_zt.data", st);
            if (i1 < 1 || i1 > max_hbdy)
                stop_input(lst, {"input error: slope_zt.data line " + std::to_string(rd.line_no()) +
                                     ", x index i1 outside 1.." + std::to_string(max_hbdy),
                                 "program stopping ..."});
            t.hwcol[i1] = depth;
            t.tsea[i1] = temp;
            rows.push_back(i1);
            last = i1;
        }
    }
    t.nslope = (int)rows.size();
    lst.line(free_line("done reading slope_zt.data (depth,T) ..."));
    lst.line(free_line("number of points read : ", t.nslope));
    lst.line(free_line("ix,depth,temp:"));
    for (int i1 : rows) lst.line(free_line(i1, t.hwcol[i1], t.tsea[i1]));
    if (last > g.nx) {
        lst.line(free_line("warning: node slope index i1 (", last, ") > nx"));
        lst.line(free_line("continuing anyway, will only use nx values ..."));
    }
    if (!seabed_temps) return;
    lst.line(free_line("updating BCs and ICs for T using seabed T"));
    lst.line(free_line(" from slope_zt"));
    for (int ix : rows) {
        if (ix > g.nx) continue;
        t.slope_row[ix] = 1;
        for (int j = 1; j <= g.ny; ++j) {
            const int n = grid_node(ix, j, g.nzt, g.ny, g.nzt);
            if ((int)heat_fc.size() > n) heat_fc[n] = t.tsea[ix];
            f.t1[n] = f.t10[n] = f.t1i[n] = t.tsea[ix];
        }
    }
}

void read_restart(Files& files, const Listing& lst, const Options& opt, Grid& g, Fields& f, bool fixed_from_file,
                  std::vector<double>& flow_fc)
{
    std::istream* in = files.r(unit::therm_in);
    if (!in)
        stop_run(lst, {"!!! error detected in therm_in.data file !!! ", "you are trying to restart a previous run but",
                       "this file does not exist", "use kgo=0 or rename a t3d file to therm_in.data",
                       "program stopping ..."});
    const double xlast = g.x[g.nnt];
    RecordReader rd(*in, "therm_in.data");
    const auto eof_stop = [&] {
        stop_run(lst, {"end of file detected in therm_in.data", "this file is either empty or not compatible with",
                       "your existing data file - please check grid size", "and source of your existing therm_in.data file",
                       "program stopping ..."});
    };
    for (int k = 1; k <= 3; ++k)
        if (!skip_title(rd)) eof_stop();
    std::vector<double> tf(g.nnt + 1), cf(g.nnt + 1), hf(g.nnt + 1);
    rd.begin_list();
    for (int n = 1; n <= g.nnt; ++n)
        for (const Slot& s : {Slot(g.x[n]), Slot(g.y[n]), Slot(g.z[n]), Slot(tf[n]), Slot(cf[n]), Slot(hf[n])}) {
            const ReadStatus st = rd.value(s);
            if (st == ReadStatus::eof) eof_stop();
            if (st == ReadStatus::bad) input_failure(rd, lst, "the fields of therm_in.data", st);
        }
    rd.end_list();
    if (std::fabs(xlast - g.x[g.nnt]) > 9.99999974737875e-06) {
        lst.line(free_line("!! x(nn) in restart file therm_in.data is not "));
        lst.line(free_line("compatible with the existing grid (x coords) !!"));
        lst.line(free_line("... continuing anyway .. "));
    }
    if (opt.kgo == 2 || opt.kgo == 3)
        for (int n = 1; n <= g.nnt; ++n) f.t1[n] = f.t10[n] = f.t1i[n] = tf[n];
    if (opt.kgo == 3)
        for (int n = 1; n <= g.nnt; ++n) f.t2[n] = f.t20[n] = f.t2i[n] = cf[n];
    if (opt.kgo == 1 || opt.kgo == 3) {
        // heads are stored by flow node number in the file's H column
        for (int n = 1; n <= g.nn; ++n) {
            f.u[n] = f.u0[n] = f.ui[n] = hf[n];
            if (fixed_from_file) flow_fc[n] = hf[n];
        }
    }
    lst.line(free_line("restart read successfull:"));
    lst.line(free_line("last x,y,z: ", g.x[g.nnt], g.y[g.nnt], g.z[g.nnt]));
}
