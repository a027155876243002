#include "grid/deformation.hpp"

#include "output/fortran_format.hpp"

#include <algorithm>

namespace {
constexpr int max_shifted_nodes = 120;  // nodes of a column that take the surface movement
}

void size_deformation(Deformation& d, const Grid& g, bool deforms)
{
    d.dzcol.assign(g.nxy + 1, 0.0);
    d.dztot.assign(g.nxy + 1, 0.0);
    d.dzel.assign(deforms ? g.net + 1 : 0, 0.0);
    d.ncolcnt.assign(g.nxy + 1, 0);
    for (int e = 1; e <= g.nexy; ++e)
        for (int i = 1; i <= 4; ++i) {
            const int n = node_at(transport_incidence(g), e, i);
            ++d.ncolcnt[(n + g.nzt - 1) / g.nzt];
        }
}

void renew_top_dze(Grid& g, int layers)
{
    layers = std::clamp(layers, 0, g.nezt);
    for (int e = g.net - layers * g.nexy + 1; e <= g.net; ++e) {
        double s = 0;
        for (int i = 5; i <= 8; ++i) s += g.z[node_at(transport_incidence(g), e, i)];
        for (int i = 1; i <= 4; ++i) s -= g.z[node_at(transport_incidence(g), e, i)];
        g.dze[e] = 0.25 * s;
    }
}

void deformation_update(Grid& g, const Media& m, const Fields& f, const FreezeParams& medium, double rhoi,
                        bool lheat, int unsat_layers, Deformation& d)
{
    std::fill(d.dzcol.begin(), d.dzcol.end(), 0.0);
    d.dmin = d.dmax = 0.0;
    for (int s = 1; s <= g.nexy; ++s) {
        double sum = 0;
        for (int layer = 1; layer <= g.nezt; ++layer) {
            const int e = (layer - 1) * g.nexy + s;
            double told = 0, tnew = 0;
            for (int i = 1; i <= 8; ++i) {
                const int n = node_at(transport_incidence(g), e, i);
                told += f.t10[n];
                tnew += f.t1[n];
            }
            told /= 8.0;
            tnew /= 8.0;
            // water expands by rho/rhoi as it freezes
            double rho = 1000.0;
            if (lheat) {
                const double t4 = (told + tnew) / 2.0 - 4.0;
                rho = 1000.0 * (1.0 + (t4 * 2.166e-08 - 6.562e-06) * t4 * t4);
            }
            const double wnew = Wu(tnew, medium), wold = Wu(told, medium);
            d.dzel[e] = (wnew - wold) * (rho - rhoi) * (m.por[e] * m.sw[e] * g.dze[e]) / rhoi;
            sum += d.dzel[e];
        }
        const int top = (g.nezt - 1) * g.nexy + s;
        for (int i = 5; i <= 8; ++i) d.dzcol[node_at(transport_incidence(g), top, i) / g.nzt] += sum;
    }
    const int mshift = std::min(g.nzt, max_shifted_nodes);
    for (int c = 1; c <= g.nxy; ++c) {
        if (d.ncolcnt[c] > 0) d.dzcol[c] /= d.ncolcnt[c];  // the mean of the stacks about it
        d.dmin = std::min(d.dmin, d.dzcol[c]);
        d.dmax = std::max(d.dmax, d.dzcol[c]);
        // a uniform shift of the top nodes, repeated in every pass: they drift together
        for (int k = g.nzt - mshift + 1; k <= g.nzt; ++k) g.z[(c - 1) * g.nzt + k] -= d.dzcol[c] / mshift;
    }
    renew_top_dze(g, mshift - 1 + unsat_layers);
}

void dztot_update(const Grid& g, Deformation& d, const Listing& lst)
{
    double mx = -99999, mn = 99999;
    for (int c = 1; c <= g.nxy; ++c) {
        d.dztot[c] -= d.dzcol[c];
        mx = std::max(mx, d.dztot[c]);
        mn = std::min(mn, d.dztot[c]);
    }
    lst.line(free_line("cumulative max dztot (+ve = heave     ) : ", mx));
    lst.line(free_line("cumulative min dztot (-ve = settlement) : ", mn));
}
