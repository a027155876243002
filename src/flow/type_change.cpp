#include "flow/type_change.hpp"

#include "base/stop.hpp"
#include "flow/mindex.hpp"
#include "output/fortran_format.hpp"

namespace {
constexpr int transport_row = 15;  // entries reserved a row when a transport field is renumbered

void switch_line(const Grid& g, const char* what, int l2d, int j, int node, int ie3d, double vz, const Listing& lst)
{
    lst.line(std::string(what) + fmt_i(l2d, 7) + fmt_i(j, 7) + fmt_i(node, 7) + fmt_i(ie3d, 7) +
             fmt_f(g.x[node], 12, 2) + fmt_f(g.y[node], 12, 2) + fmt_f(g.z[node], 12, 2) + fmt_e(vz, 12, 2));
}
}  // namespace

void recondense(const Grid& g, FieldIndex& fi, const Listing& lst)
{
    count_fixed(fi);
    lst.line("recondensing: new # dirichlet nodes: " + fmt_i(fi.ndirn, 5) + "; new # degrees of freedom: " +
             fmt_i(fi.neq, 9));
    const int bw = build_pattern(lst, transport_incidence(g), g.net, transport_row, fi);
    if (bw > transport_row) stop_run(lst, {"bandwidth required" + fmt_i(bw, 5)});
    fi.epos = ElementPositions{};  // the slots belong to the old numbering
}

bool top_face_switch(const Grid& g, const Velocities& v, FieldIndex& heat, FieldIndex& mass, Fields& f,
                     const Listing& lst)
{
    int n10 = 0, n01 = 0;
    for (int l2d = 1; l2d <= g.nexy; ++l2d) {
        const int ie3d = g.ne - g.nexy + l2d;
        for (int j : {1, 4}) {
            const int node = g.itopf[(l2d - 1) * 4 + j];
            const double vz = v.vz[ie3d];
            if (vz > 0 && mass.idir[node] == 1) {
                heat.idir[node] = mass.idir[node] = 0;
                ++n10;
                switch_line(g, "type change 1-0 +vzTOP; l2d,j,3dnode,ie3d,x,y,z,vz:", l2d, j, node, ie3d, vz, lst);
            } else if (vz < 0 && mass.idir[node] == 0) {
                heat.idir[node] = mass.idir[node] = 1;
                // the boundary value starts the node: the values about to become the old
                // level take it
                f.t1[node] = f.t10[node] = heat.fc[node];
                f.t2[node] = f.t20[node] = mass.fc[node];
                ++n01;
                switch_line(g, "type change 0-1 -vzTOP; l2d,j,3dnode,ie3d,x,y,z,vz:", l2d, j, node, ie3d, vz, lst);
            }
        }
    }
    if (n10 == 0 && n01 == 0) return false;
    lst.line("converting:");
    lst.line("top face node switches: 1-0 and 0-1: " + fmt_i(n10, 5) + fmt_i(n01, 5));
    lst.line("rt  face node switches: 1-0 and 0-1: " + fmt_i(0, 5) + fmt_i(0, 5));
    recondense(g, heat, lst);
    recondense(g, mass, lst);
    return true;
}

bool age_exit_conversion(const Grid& g, const Velocities& v, FieldIndex& heat, FieldIndex& mass, const Listing& lst)
{
    int count = 0;
    for (int l = 1; l <= g.nexy; ++l) {
        const int ie3d = g.net - g.nexy + l;
        if (!(v.vz[ie3d] > 0)) continue;
        for (int j = 5; j <= 8; ++j) {
            const int node = node_at(transport_incidence(g), ie3d, j);
            if (heat.idir[node] <= 0) continue;
            ++count;
            lst.line(free_line("found vz>0 ", v.vz[ie3d], " at x= ", g.x[node]));
            heat.idir[node] = 0;
        }
    }
    if (count == 0) return false;
    lst.line("converting" + fmt_i(count, 5) + " t-1 age nodes on exit boundaries ...");
    // the heat flags changed but the mass field is the one renumbered: the heat pattern
    // waits for the next top-face rebuild
    recondense(g, mass, lst);
    return true;
}
