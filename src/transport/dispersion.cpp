#include "transport/dispersion.hpp"

#include <cmath>

Tensor dispersion_tensor(const Dispersivity& d, double vx, double vy, double vz, double diag)
{
    Tensor t;
    const double vx2 = vx * vx, vy2 = vy * vy, vz2 = vz * vz;
    const double vh2 = vx2 + vy2;
    const double vm = std::sqrt(vx2 + vy2 + vz2);
    if (vm == 0.0) {
        // no flow: diffusion alone
    } else if (d.idisp == 0) {
        t.xx = (d.al * vx2 + d.ath * vy2 + d.atv * vz2) / vm;
        t.yy = (d.ath * vx2 + d.al * vy2 + d.atv * vz2) / vm;
        t.zz = (d.atv * vh2 + d.al * vz2) / vm;
        t.xy = (d.al - d.ath) * vx * vy / vm;
        t.xz = (d.al - d.atv) * vx * vz / vm;
        t.yz = (d.al - d.atv) * vy * vz / vm;
    } else if (vh2 == 0.0) {
        // vertical flow: cs = 1, so aL = alt and aT = ath, and the horizontal direction
        // drops out of Dxx and Dyy
        const double av = std::fabs(vz);
        t.xx = d.ath * av;
        t.yy = d.ath * av;
        t.zz = d.alt * av;
    } else {
        const double cs = (vz / vm) * (vz / vm);
        const double aL = d.al + (d.alt - d.al) * cs;
        const double aT = d.atv + (d.ath - d.atv) * cs;
        const double f = 1.0 + vz2 / vh2;
        t.xx = (aL * vx2 + aT * vz2 * vx2 / vh2 + d.ath * f * vy2) / vm;
        t.yy = (aL * vy2 + aT * vz2 * vy2 / vh2 + d.ath * f * vx2) / vm;
        t.zz = (aL * vz2 + aT * vh2) / vm;
        t.xz = (aL - aT) * vx * vz / vm;
        t.yz = (aL - aT) * vy * vz / vm;
        t.xy = (aT * vz2 / vh2 + aL - f * d.ath) * vx * vy / vm;
    }
    t.xx += diag;
    t.yy += diag;
    t.zz += diag;
    return t;
}
