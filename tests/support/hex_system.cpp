#include "support/hex_system.hpp"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <sstream>
#include <stdexcept>

#include "flow/mindex.hpp"
#include "solver/lower_csr.hpp"

HexGrid hex_grid(int nx, int ny, int nz, double dx, double dy, double dz)
{
    HexGrid g;
    g.nx = nx, g.ny = ny, g.nz = nz;
    g.dx = dx, g.dy = dy, g.dz = dz;
    g.nn = nx * ny * nz;
    const int nex = nx - 1, ney = ny - 1, nez = nz - 1;
    g.ne = nex * ney * nez;
    g.in.assign(g.ne + 1, {});
    for (int k = 1; k <= nez; ++k)
        for (int j = 1; j <= ney; ++j)
            for (int i = 1; i <= nex; ++i) {
                const int l = (k - 1) * nex * ney + (j - 1) * nex + i;
                for (int up = 0; up < 2; ++up) {
                    g.in[l][4 * up + 0] = node_id(i, j, k + up, ny, nz);
                    g.in[l][4 * up + 1] = node_id(i + 1, j, k + up, ny, nz);
                    g.in[l][4 * up + 2] = node_id(i + 1, j + 1, k + up, ny, nz);
                    g.in[l][4 * up + 3] = node_id(i, j + 1, k + up, ny, nz);
                }
            }
    return g;
}

HexField hex_field(const HexGrid& g, const FixedMask& fixed)
{
    HexField f;
    f.idir.assign(g.nn + 1, 0);
    f.ncum.assign(g.nn + 1, 0);
    f.fc.assign(g.nn + 1, 0.0);
    f.qnode.assign(g.nn + 1, 0.0);
    for (int i = 1; i <= g.nx; ++i)
        for (int j = 1; j <= g.ny; ++j)
            for (int k = 1; k <= g.nz; ++k) {
                const int n = node_id(i, j, k, g.ny, g.nz);
                f.idir[n] = (fixed && fixed(i, j, k)) ? 1 : 0;
                f.fc[n] = 10.0 + 0.3 * i - 0.2 * j + 0.1 * k;
                f.qnode[n] = 0.1 * std::cos(0.37 * n) + 0.02;
            }
    for (int n = 1; n <= g.nn; ++n) f.ncum[n] = f.ncum[n - 1] + f.idir[n];
    f.neq = g.nn - f.ncum[g.nn];
    return f;
}

void hex_element_matrix(const HexGrid& g, int l, double e[8][8])
{
    static const double sx[8] = {-1, 1, 1, -1, -1, 1, 1, -1};
    static const double sy[8] = {-1, -1, 1, 1, -1, -1, 1, 1};
    static const double sz[8] = {-1, -1, -1, -1, 1, 1, 1, 1};
    const double kx = 1.0 + 0.5 * std::sin(1.0 * l), ky = 1.0 + 0.3 * std::cos(1.0 * l);
    const double kz = 2.0 + std::sin(0.7 * l), c = 0.05 * (1.0 + 0.5 * std::cos(1.3 * l));
    const double gp = 1.0 / std::sqrt(3.0);
    const double detj = g.dx * g.dy * g.dz / 8.0;
    for (int i = 0; i < 8; ++i)
        for (int j = 0; j < 8; ++j) e[i][j] = 0.0;
    for (int q = 0; q < 8; ++q) {
        const double xi = sx[q] * gp, eta = sy[q] * gp, zeta = sz[q] * gp;
        double n[8], nx[8], ny[8], nz[8];
        for (int i = 0; i < 8; ++i) {
            const double a = 1 + sx[i] * xi, b = 1 + sy[i] * eta, cc = 1 + sz[i] * zeta;
            n[i] = a * b * cc / 8.0;
            nx[i] = sx[i] * b * cc / 8.0 * 2.0 / g.dx;
            ny[i] = a * sy[i] * cc / 8.0 * 2.0 / g.dy;
            nz[i] = a * b * sz[i] / 8.0 * 2.0 / g.dz;
        }
        for (int i = 0; i < 8; ++i)
            for (int j = 0; j < 8; ++j)
                e[i][j] += (kx * nx[i] * nx[j] + ky * ny[i] * ny[j] + kz * nz[i] * nz[j] + c * n[i] * n[j]) *
                           detj;
    }
}

HexSystem hex_grid_system(int nx, int ny, int nz, const FixedMask& fixed)
{
    HexSystem s;
    s.grid = hex_grid(nx, ny, nz);
    s.field = hex_field(s.grid, fixed);
    // the program's pattern builder (test_mindex.cpp checks it against its own construction)
    std::vector<int> inc(8 * std::size_t(s.grid.ne) + 1, 0);
    for (int l = 1; l <= s.grid.ne; ++l)
        for (int i = 0; i < 8; ++i) inc[(l - 1) * 8 + i + 1] = s.grid.in[l][i];
    FieldIndex fi;
    fi.nn = s.grid.nn;
    fi.idir = s.field.idir;
    count_fixed(fi);
    std::ostringstream sink;
    if (build_pattern(Listing{&sink}, inc, s.grid.ne, 15, fi) > 15) throw std::runtime_error("row wider than nb");
    s.pat = fi.pat;
    s.a.assign(s.pat.nvec + 1, 0.0);
    s.b.assign(s.grid.nn + 1, 0.0);
    clear_values(s.pat, s.a);
    fill_rhs(s.grid.nn, s.field.idir, s.field.ncum, s.field.qnode, s.b);
    const FixedNodes fx{s.field.idir, s.field.ncum, s.field.fc};
    ScatterTarget t{s.pat, s.a, s.b, s.pat.nb};
    double e[8][8];
    for (int l = 1; l <= s.grid.ne; ++l) {
        hex_element_matrix(s.grid, l, e);
        scatter_element(s.grid.in[l].data(), e, fx, t);
    }
    return s;
}

Dense to_dense(const LowerPattern& p, std::span<const double> a)
{
    Dense A(p.neq);
    for (int i = 1; i <= p.neq; ++i)
        for (int k = p.ia[i]; k < p.ia[i + 1]; ++k) {
            const int j = p.ja[k];
            A(i, j) += a[k];
            if (j != i) A(j, i) += a[k];
        }
    return A;
}

void dense_condensed(const HexSystem& s, Dense& A, std::vector<double>& b)
{
    const int nn = s.grid.nn;
    const HexField& f = s.field;
    Dense K(nn);
    double e[8][8];
    for (int l = 1; l <= s.grid.ne; ++l) {
        hex_element_matrix(s.grid, l, e);
        for (int i = 0; i < 8; ++i)
            for (int j = 0; j < 8; ++j) K(s.grid.in[l][i], s.grid.in[l][j]) += e[i][j];
    }
    std::vector<int> eq(nn + 1, 0);
    int neq = 0;
    for (int n = 1; n <= nn; ++n)
        if (f.idir[n] != 1) eq[n] = ++neq;
    A = Dense(neq);
    b.assign(neq + 1, 0.0);
    for (int n = 1; n <= nn; ++n) {
        if (!eq[n]) continue;
        b[eq[n]] = f.qnode[n];
        for (int q = 1; q <= nn; ++q) {
            if (eq[q])
                A(eq[n], eq[q]) = K(n, q);
            else
                b[eq[n]] -= K(n, q) * f.fc[q];
        }
    }
}

std::vector<double> dense_matvec(const Dense& A, std::span<const double> x)
{
    std::vector<double> y(A.n + 1, 0.0);
    for (int i = 1; i <= A.n; ++i)
        for (int j = 1; j <= A.n; ++j) y[i] += A(i, j) * x[j];
    return y;
}

std::vector<double> dense_gauss_solve(Dense A, std::span<const double> b)
{
    const int n = A.n;
    std::vector<double> x(b.begin(), b.begin() + n + 1);
    for (int j = 1; j <= n; ++j) {
        int piv = j;
        for (int i = j + 1; i <= n; ++i)
            if (std::fabs(A(i, j)) > std::fabs(A(piv, j))) piv = i;
        if (A(piv, j) == 0.0) throw std::runtime_error("dense_gauss_solve: singular matrix");
        if (piv != j) {
            for (int k = 1; k <= n; ++k) std::swap(A(j, k), A(piv, k));
            std::swap(x[j], x[piv]);
        }
        for (int i = j + 1; i <= n; ++i) {
            const double f = A(i, j) / A(j, j);
            if (f == 0.0) continue;
            for (int k = j; k <= n; ++k) A(i, k) -= f * A(j, k);
            x[i] -= f * x[j];
        }
    }
    for (int i = n; i >= 1; --i) {
        for (int k = i + 1; k <= n; ++k) x[i] -= A(i, k) * x[k];
        x[i] /= A(i, i);
    }
    return x;
}
