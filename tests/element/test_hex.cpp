#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <vector>

#include "element/fracture_geometry.hpp"
#include "element/hex.hpp"
#include "element/incidence.hpp"
#include "element/tables.hpp"
#include "output/fortran_format.hpp"
#include "support/box_grid.hpp"

// Shape-function kernel, flow element matrices, element volumes and the fracture
// face/edge lookup, on bricks, distorted elements and small graded grids.

namespace {

struct TablesFixture {
    ElementTables et;
    double cmat[9][9];
    TablesFixture() { fill_element_tables(et, cmat); }
};

// One element with its corners moved off the brick, all coordinates one-based.
void distorted(std::vector<double>& x, std::vector<double>& y, std::vector<double>& z)
{
    const double px[9] = {0, 0.0, 2.1, 2.4, 0.2, -0.1, 1.9, 2.6, 0.3};
    const double py[9] = {0, 0.0, 0.1, 1.7, 1.5, 0.2, -0.2, 1.6, 1.9};
    const double pz[9] = {0, 0.0, 0.3, 0.2, -0.1, 1.2, 1.6, 1.1, 1.4};
    x.assign(px, px + 9);
    y.assign(py, py + 9);
    z.assign(pz, pz + 9);
}

}  // namespace

// Gauss integration over a brick of each bilinear form must reproduce the direct table
// times its scale, up to the single-precision abscissae; so must the flow element.
TEST(HexShape, DirectTablesAgreeWithGaussOnABrick)
{
    TablesFixture s;
    const ElementTables& e = s.et;
    const double dx = 2.0, dy = 3.0, dz = 0.5;
    Grid b = plane_grid({0.0, dx}, {0.0, dy}, {0.0, dz});
    int nodes[9];
    element_nodes(b.in, 1, nodes);
    double kxx[9][9] = {}, kyy[9][9] = {}, kzz[9][9] = {}, kxy[9][9] = {}, kxz[9][9] = {}, kyz[9][9] = {},
           ncx[9][9] = {}, ncy[9][9] = {}, ncz[9][9] = {}, nm[9][9] = {};
    for (int g = 1; g <= 8; ++g) {
        double xi, eta, zeta, w, det, nx[9], ny[9], nz[9], n[9];
        gauss_point_2x2x2(e.gauss, g, xi, eta, zeta, w);
        hex_shape(b.x, b.y, b.z, nodes, xi, eta, zeta, det, nx, ny, nz, n);
        EXPECT_NEAR(det, dx * dy * dz / 8.0, 1e-14);
        const double wd = det * w;
        for (int i = 1; i <= 8; ++i)
            for (int j = 1; j <= 8; ++j) {
                kxx[i][j] += nx[i] * nx[j] * wd;
                kyy[i][j] += ny[i] * ny[j] * wd;
                kzz[i][j] += nz[i] * nz[j] * wd;
                kxy[i][j] += (nx[i] * ny[j] + ny[i] * nx[j]) * wd;
                kxz[i][j] += (nx[i] * nz[j] + nz[i] * nx[j]) * wd;
                kyz[i][j] += (ny[i] * nz[j] + nz[i] * ny[j]) * wd;
                ncx[i][j] += n[i] * nx[j] * wd;
                ncy[i][j] += n[i] * ny[j] * wd;
                ncz[i][j] += n[i] * nz[j] * wd;
                nm[i][j] += n[i] * n[j] * wd;
            }
    }
    const double tol = 1e-7;
    for (int i = 1; i <= 8; ++i)
        for (int j = 1; j <= 8; ++j) {
            EXPECT_NEAR(kxx[i][j], e.sxx[i][j] * dy * dz / (36.0 * dx), tol);
            EXPECT_NEAR(kyy[i][j], e.syy[i][j] * dx * dz / (36.0 * dy), tol);
            EXPECT_NEAR(kzz[i][j], e.szz[i][j] * dx * dy / (36.0 * dz), tol);
            EXPECT_NEAR(kxy[i][j], e.sxy[i][j] * dz / 12.0, tol);
            EXPECT_NEAR(kxz[i][j], e.sxz[i][j] * dy / 12.0, tol);
            EXPECT_NEAR(kyz[i][j], e.syz[i][j] * dx / 12.0, tol);
            EXPECT_NEAR(ncx[i][j], e.cx[i][j] * dy * dz / 72.0, tol);
            EXPECT_NEAR(ncy[i][j], e.cy[i][j] * dx * dz / 72.0, tol);
            EXPECT_NEAR(ncz[i][j], e.cz[i][j] * dx * dy / 72.0, tol);
            EXPECT_NEAR(nm[i][j], e.amcons[i][j] * dx * dy * dz / 216.0, tol);
        }
    // the flow element on the same brick: anisotropic conductance, lumped storage of
    // 27 V/216 a node, buoyancy int Nz_i = sz_i dx dy/4
    const double kx = 2e-5, ky = 7e-6, kz = 1e-6, st = 1e-4, dtinv = 1.0 / 86400.0;
    double sk[9][9], sm[9][9], gz[9];
    flow_element_gauss(kx, ky, kz, b.x, b.y, b.z, nodes, sk, sm, st, dtinv, gz, e.gauss);
    for (int i = 1; i <= 8; ++i) {
        for (int j = 1; j <= 8; ++j) {
            const double d = (kx * e.sxx[i][j] / (dx * dx) + ky * e.syy[i][j] / (dy * dy) +
                              kz * e.szz[i][j] / (dz * dz)) * dx * dy * dz / 36.0;
            EXPECT_NEAR(sk[i][j], d, 1e-7 * kz * dx * dy / dz) << i << "," << j;
            EXPECT_TRUE(i == j || sm[i][j] == 0.0) << i << "," << j;  // lumped
        }
        EXPECT_NEAR(sm[i][i], st * dtinv * 27.0 * dx * dy * dz / 216.0, 1e-7 * st * dtinv * dx * dy * dz);
        EXPECT_NEAR(gz[i], e.sz[i] * dx * dy * 0.25, 1e-12);
    }
}

// A trilinear element reproduces any linear field exactly, whatever its shape.
TEST(HexShape, DistortedElementReproducesLinearFields)
{
    std::vector<double> x, y, z;
    distorted(x, y, z);
    const int nodes[9] = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    double f[9];
    for (int i = 1; i <= 8; ++i) f[i] = 3.0 + 0.7 * x[i] - 1.3 * y[i] + 2.2 * z[i];
    for (double xi : {-0.8, 0.1, 0.6})
        for (double eta : {-0.3, 0.9})
            for (double zeta : {-1.0, 0.4}) {
                double det, nx[9], ny[9], nz[9], n[9];
                hex_shape(x, y, z, nodes, xi, eta, zeta, det, nx, ny, nz, n);
                EXPECT_GT(det, 0.0);
                double s = 0, gx = 0, gy = 0, gz = 0, sx = 0;
                for (int i = 1; i <= 8; ++i) {
                    s += n[i];
                    sx += nx[i];
                    gx += nx[i] * f[i];
                    gy += ny[i] * f[i];
                    gz += nz[i] * f[i];
                }
                EXPECT_NEAR(s, 1.0, 1e-15);
                EXPECT_NEAR(sx, 0.0, 1e-14);
                EXPECT_NEAR(gx, 0.7, 1e-13);
                EXPECT_NEAR(gy, -1.3, 1e-13);
                EXPECT_NEAR(gz, 2.2, 1e-13);
            }
}

TEST(Elvol, GradedAndSlopingGridsByBothPaths)
{
    TablesFixture s;
    Grid g = plane_grid({0.0, 1.0, 3.0, 6.0}, {0.0, 2.0, 2.5}, {0.0, 0.5, 1.5, 4.0});
    std::vector<double> vol(g.ne + 1, -1.0);
    std::ostringstream os;
    Listing lst{&os};
    for (int kint : {0, 1}) {
        double voltot = -1.0;
        elvol(g.x, g.y, g.z, s.et.gauss, g.in, vol, g.ne, voltot, kint, g.dxe, g.dye, g.dze, lst);
        EXPECT_NEAR(voltot, 6.0 * 2.5 * 4.0, 1e-12) << kint;
        EXPECT_NEAR(vol[2 * 3 * 2 + 2], 10.0, 1e-12) << kint;  // element (2,1,3): 2 x 2 x 2.5
    }
    EXPECT_EQ(os.str(), "total domain volume ...                 0.600E+02\n"
                        "total domain volume ...                 0.600E+02\n");
    // top nodes rise with x, z = 4 + 0.1 x: the volume is int_0^6 2.5 (4 + 0.1 x) dx
    for (int n = 1; n < (int)g.z.size(); ++n)
        if (g.z[n] == 4.0) g.z[n] = 4.0 + 0.1 * g.x[n];
    for (int l = 1; l <= g.ne; ++l) {  // the mean vertical edge, as the grid keeps it
        g.dze[l] = 0.0;
        for (int i = 1; i <= 4; ++i) g.dze[l] += 0.25 * (g.z[node_of(g.in, l, i + 4)] - g.z[node_of(g.in, l, i)]);
    }
    for (int kint : {0, 1}) {
        double voltot = -1.0;
        elvol(g.x, g.y, g.z, s.et.gauss, g.in, vol, g.ne, voltot, kint, g.dxe, g.dye, g.dze, lst);
        EXPECT_NEAR(voltot, 2.5 * 25.8, 1e-12) << kint;
    }
}

// Each face's nodes go round the rectangle: (-,-), (+,-), (+,+), (-,+) along (l1, l2).
TEST(FractureGeometry, FacesRunRoundTheRectangle)
{
    Grid g = plane_grid({0.0, 2.0, 5.0}, {0.0, 4.0}, {0.0, 1.0, 1.5});
    const int ie = 4;  // (2,1,2): x 2..5, y 0..4, z 1..1.5
    // side directions per code: 1 = x, 2 = y, 3 = z
    const int dir1[7] = {0, 2, 2, 1, 1, 1, 1}, dir2[7] = {0, 3, 3, 3, 3, 2, 2};
    const double lo[4] = {0, 2.0, 0.0, 1.0};
    const double len[4] = {0, 3.0, 4.0, 0.5};
    const double as[5] = {0, -1, 1, 1, -1}, bs[5] = {0, -1, -1, 1, 1};
    for (int code = 1; code <= 6; ++code) {
        std::vector<int> lvert = {0, 0, code};
        int fn[5] = {};
        double l1 = 0, l2 = 0, asp = 0, area = 0;
        facegeo(lvert, fn, g.in, 2, ie, l1, l2, g.dxe, g.dye, g.dze, asp, area);
        EXPECT_DOUBLE_EQ(l1, len[dir1[code]]) << code;
        EXPECT_DOUBLE_EQ(l2, len[dir2[code]]) << code;
        EXPECT_DOUBLE_EQ(asp, l2 / l1);
        EXPECT_DOUBLE_EQ(area, l1 * l2);
        for (int k = 1; k <= 4; ++k) {
            const double c[4] = {0, g.x[fn[k]], g.y[fn[k]], g.z[fn[k]]};
            EXPECT_DOUBLE_EQ(c[dir1[code]], lo[dir1[code]] + (as[k] > 0 ? len[dir1[code]] : 0.0));
            EXPECT_DOUBLE_EQ(c[dir2[code]], lo[dir2[code]] + (bs[k] > 0 ? len[dir2[code]] : 0.0));
        }
    }
    // the upper face in upper-face order, area dxe*dye
    std::vector<int> lvert = {0, 6};
    int fn[5];
    double l1, l2, asp, area;
    facegeo(lvert, fn, g.in, 1, ie, l1, l2, g.dxe, g.dye, g.dze, asp, area);
    for (int k = 1; k <= 4; ++k) EXPECT_EQ(fn[k], node_of(g.in, ie, 4 + k));
    EXPECT_DOUBLE_EQ(area, g.dxe[ie] * g.dye[ie]);
}
