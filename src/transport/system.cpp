#include "transport/system.hpp"

#include "base/limits.hpp"
#include "element/fracture_geometry.hpp"
#include "solver/pcg_icc.hpp"

namespace {
constexpr double tiny_value = 1e-50;
}  // namespace

void start_transport_system(int nnt, const FieldIndex& fi, SolverWork& w)
{
    for (int i = 1; i <= nnt; ++i) w.rvec[i] = 0.0;
    fill_rhs(nnt, fi.idir, fi.ncum, fi.qnode, w.b);
    clear_values(fi.pat, w.a);
}

void solve_transport_system(int nnt, const FieldIndex& fi, SolverWork& w, std::vector<double>& u, bool clip,
                            const Listing& lst, int* steps)
{
    for (int k = 1; k <= fi.neq; ++k) w.b[k] += w.rvec[k];
    // u itself, in node numbering, is the start vector
    icc::pcg(w.a, fi.pat, w.b, u, w.work, max_work, 1, lst, steps);
    const int* idir = fi.idir.data();
    const int* ncum = fi.ncum.data();
    double* uv = u.data();
    for (int i = nnt; i >= 1; --i) {
        if (idir[i] == 1) {
            uv[i] = fi.fc[i];
            continue;
        }
        const int k = i - ncum[i];
        if (clip && uv[k] < tiny_value) uv[k] = 0.0;  // negative values too
        uv[i] = uv[k];
    }
}

bool line_fracture_nodes(const Grid& g, const Fractures& fr, int l, int tn[3], double& len)
{
    int fn[3] = {0, 0, 0};
    edgegeo(fr.lvert, fn, g.in, l, fr.ifracl[l], len, g.dxe, g.dye, g.dze);
    if (fn[1] == 0) return false;
    tn[1] = g.nmap[fn[1]];
    tn[2] = g.nmap[fn[2]];
    return true;
}

bool plane_fracture_nodes(const Grid& g, const Fractures& fr, const Velocities& v, int l, int tn[5],
                          PlaneFracture& pf)
{
    int fn[5] = {0, 0, 0, 0, 0};
    facegeo(fr.lvert, fn, g.in, l, fr.ifracl[l], pf.l1, pf.l2, g.dxe, g.dye, g.dze, pf.asp, pf.area);
    if (fn[1] == 0) return false;
    for (int k = 1; k <= 4; ++k) tn[k] = g.nmap[fn[k]];
    pf.vx2d = v.vx2d[l];
    pf.vy2d = v.vy2d[l];
    return true;
}

void add_nodal_term(const FieldIndex& fi, int n, double s, double value, SolverWork& w)
{
    const int k = n - fi.ncum[n];
    if (k < 1) return;
    w.b[k] += value * s;
    w.a[fi.pat.ia[k]] += s;
}
