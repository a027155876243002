#include "flow/velocities.hpp"

#include "element/fracture_geometry.hpp"
#include "element/hex.hpp"
#include "flow/flow_system.hpp"

#include <cmath>

namespace {
constexpr double vfloor = 1e-40;  // keeps later divisions by a velocity norm defined
inline double floored(double v) { return std::fabs(v) < vfloor ? vfloor : v; }
}  // namespace

void element_velocities(const Grid& g, const Media& m, const ElementTables& et, const FlowParams& fp, int kintv,
                        const Fields& f, Velocities& v)
{
    if (kintv != 0 && kintv != 1) return;
    const FreezeParams& pm = fp.medium;
    // every element on its own: the threads share nothing but what they read
#pragma omp parallel for schedule(static)
    for (int l = 1; l <= g.ne; ++l) {
        int nodes[9], tnodes[9];
        double h[9], dndx[9], dndy[9], dndz[9], shp[9];
        double tbar = 0, csum = 0;
        for (int a = 1; a <= 8; ++a) {
            nodes[a] = node_at(g.in, l, a);
            tnodes[a] = g.nmap[nodes[a]];
            h[a] = f.u[nodes[a]];
            tbar += f.t1[tnodes[a]];
            csum += f.t2[tnodes[a]];
        }
        tbar /= 8.0;
        // Wu at the mean temperature here, where the flow system averages nodal values
        const double wu = Wu(tbar, pm);
        double kr = ::kr(wu, pm.p, pm.omega, m.por[l], pm.modelkr);
        if (fp.lkr1top && l > g.ne - g.nexy) kr = 1.0;
        const double rv = fp.lheat ? flow_viscosity(tbar) : 1.0;
        double r = fp.lheat ? flow_buoyancy_T(tbar) : 0.0;
        if (fp.lmass) r = r + 0.125 * csum * fp.gammac;
        const double den = rv * wu * m.por[l];
        double gx = 0, gy = 0, gz = 0;
        if (kintv == 0) {
            for (int a = 1; a <= 8; ++a) {
                gx += et.sx[a] * h[a];
                gy += et.sy[a] * h[a];
                gz += et.sz[a] * h[a];
            }
            v.vx[l] = floored((gx / (-4 * g.dxe[l])) * (kr * m.ckx[l] / den));
            v.vy[l] = floored((gy / (-4 * g.dye[l])) * (kr * m.cky[l] / den));
            v.vz[l] = floored(-(kr * m.ckz[l] / den) * (r + gz / (4 * g.dze[l])));
        } else {
            for (int p = 1; p <= 8; ++p) {
                double xi, eta, zeta, w, det;
                gauss_point_2x2x2(et.gauss, p, xi, eta, zeta, w);
                hex_shape(g.x, g.y, g.z, tnodes, xi, eta, zeta, det, dndx, dndy, dndz, shp);
                for (int a = 1; a <= 8; ++a) {
                    gx += dndx[a] * h[a];
                    gy += dndy[a] * h[a];
                    gz += dndz[a] * h[a];
                }
            }
            v.vx[l] = -0.125 * gx * (kr * m.ckx[l] / den);
            v.vy[l] = -0.125 * gy * (kr * m.cky[l] / den);
            v.vz[l] = -0.125 * (kr * m.ckz[l] / den) * (gz + 8 * r);
        }
    }
}

void fracture_velocities(const Grid& g, const Media& m, const Fractures& fr, const FlowParams& fp, const Fields& f,
                         Velocities& v)
{
    const FreezeParams& pf = fp.fracture;
    const auto tmean = [&](const int* fn, int n, const std::vector<double>& a) {
        double s = 0;
        for (int i = 1; i <= n; ++i) s += a[g.nmap[fn[i]]];
        return s / n;
    };
    // buoyancy of a vertical fracture from its mean temperature and concentration
    const auto drive = [&](double tbar, double cbar) {
        double d = fp.lheat ? flow_buoyancy_T(tbar) : 0.0;
        if (fp.lmass) d += cbar * fp.gammac;
        return d;
    };
    for (int l = 1; l <= fr.nfrac; ++l) {
        const int host = fr.ifracl[l];
        const int lv = fr.lvert[l];
        if (fr.ifdim[l] == 1) {
            int fn[3] = {0, 0, 0};
            double len = 0;
            edgegeo(fr.lvert, fn, g.in, l, host, len, g.dxe, g.dye, g.dze);
            if (fn[1] == 0) continue;
            const double tbar = tmean(fn, 2, f.t1);
            const double wu = Wu(tbar, pf);
            const double kr = ::kr(wu, pf.p, pf.omega, m.por[host], pf.modelkr);
            const double d = (lv == 1 || lv == 4) ? drive(tbar, tmean(fn, 2, f.t2)) : 0.0;
            const double rv = fp.lheat ? flow_viscosity(tbar) : 1.0;
            // a fracture is all void: no division by porosity or Wu
            v.vlin[l] = -((f.u[fn[2]] - f.u[fn[1]]) / len + d) * (kr * fr.ck[l] / rv);
        } else if (fr.ifdim[l] == 2) {
            int fn[5] = {0, 0, 0, 0, 0};
            double l1 = 0, l2 = 0, asp = 0, area = 0;
            facegeo(fr.lvert, fn, g.in, l, host, l1, l2, g.dxe, g.dye, g.dze, asp, area);
            if (fn[1] == 0) continue;
            const double tbar = tmean(fn, 4, f.t1);
            const double d = (lv == 5 || lv == 6) ? 0.0 : drive(tbar, tmean(fn, 4, f.t2));
            const double rv = fp.lheat ? flow_viscosity(tbar) : 1.0;
            const double h1 = f.u[fn[1]], h2 = f.u[fn[2]], h3 = f.u[fn[3]], h4 = f.u[fn[4]];
            v.vx2d[l] = floored(-(((h3 - h4) - h1 + h2) / (2 * l1)) * (fr.ck[l] / rv));
            v.vy2d[l] = floored(-(d + ((h3 + h4) - h1 - h2) / (2 * l2)) * (fr.ck[l] / rv));
        }
    }
}
