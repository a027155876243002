#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <vector>

#include "element/fracture_geometry.hpp"
#include "element/hex.hpp"
#include "element/incidence.hpp"
#include "element/tables.hpp"
#include "output/fortran_format.hpp"

// Shape-function kernel, flow element matrices, element volumes and the fracture
// face/edge lookup, on bricks, distorted elements and small graded grids.

namespace {

// A structured grid in the run's numbering: node (i,j,k) = (i-1)*ny*nz + (j-1)*nz + k,
// element (ie,je,ke) = (ke-1)*nex*ney + (je-1)*nex + ie, local nodes from the corner b
// as b, b+nyz, b+nyz+nz, b+nz and the same plus 1 above.
struct Grid {
    int nx, ny, nz, nex, ney, nez, ne;
    std::vector<double> x, y, z, dxe, dye, dze;
    std::vector<int> in;
    Grid(const std::vector<double>& xp, const std::vector<double>& yp,
         const std::vector<double>& zp)
        : nx((int)xp.size()), ny((int)yp.size()), nz((int)zp.size()),
          nex(nx - 1), ney(ny - 1), nez(nz - 1), ne(nex * ney * nez)
    {
        const int nn = nx * ny * nz;
        x.assign(nn + 1, 0.0);
        y.assign(nn + 1, 0.0);
        z.assign(nn + 1, 0.0);
        for (int i = 1; i <= nx; ++i)
            for (int j = 1; j <= ny; ++j)
                for (int k = 1; k <= nz; ++k) {
                    const int n = (i - 1) * ny * nz + (j - 1) * nz + k;
                    x[n] = xp[i - 1];
                    y[n] = yp[j - 1];
                    z[n] = zp[k - 1];
                }
        in.assign(ne * 8 + 1, 0);
        const int nyz = ny * nz;
        for (int ke = 1; ke <= nez; ++ke)
            for (int je = 1; je <= ney; ++je)
                for (int ie = 1; ie <= nex; ++ie) {
                    const int l = (ke - 1) * nex * ney + (je - 1) * nex + ie;
                    const int b = (ie - 1) * nyz + (je - 1) * nz + ke;
                    const int loc[9] = {0, b, b + nyz, b + nyz + nz, b + nz,
                                        b + 1, b + nyz + 1, b + nyz + nz + 1, b + nz + 1};
                    for (int i = 1; i <= 8; ++i) in[incidence_index(l, i)] = loc[i];
                }
        sizes();
    }
    // Mean edge lengths of each brick, as the grid keeps them.
    void sizes()
    {
        dxe.assign(ne + 1, 0.0);
        dye.assign(ne + 1, 0.0);
        dze.assign(ne + 1, 0.0);
        for (int l = 1; l <= ne; ++l) {
            double a[9], b[9], c[9];
            for (int i = 1; i <= 8; ++i) {
                const int n = node_of(in, l, i);
                a[i] = x[n];
                b[i] = y[n];
                c[i] = z[n];
            }
            dxe[l] = 0.25 * (a[2] - a[1] + a[3] - a[4] - a[5] + a[6] + a[7] - a[8]);
            dye[l] = 0.25 * (b[3] + b[4] - b[1] - b[2] - b[5] - b[6] + b[7] + b[8]);
            dze[l] = 0.25 * (c[5] + c[6] + c[7] + c[8] - c[1] - c[2] - c[3] - c[4]);
        }
    }
};

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

TEST(HexShape, BrickDeterminantAndCentreDerivatives)
{
    Grid g({1.0, 3.0}, {5.0, 5.5}, {-2.0, 2.0});  // dx 2, dy 0.5, dz 4
    int nodes[9];
    element_nodes(g.in, 1, nodes);
    double det, nx[9], ny[9], nz[9], n[9];
    hex_shape(g.x, g.y, g.z, nodes, 0.0, 0.0, 0.0, det, nx, ny, nz, n);
    EXPECT_DOUBLE_EQ(det, 2.0 * 0.5 * 4.0 / 8.0);
    const double sx[9] = {0, -1, 1, 1, -1, -1, 1, 1, -1};
    const double sy[9] = {0, -1, -1, 1, 1, -1, -1, 1, 1};
    const double sz[9] = {0, -1, -1, -1, -1, 1, 1, 1, 1};
    for (int i = 1; i <= 8; ++i) {
        EXPECT_DOUBLE_EQ(n[i], 0.125);
        EXPECT_DOUBLE_EQ(nx[i], sx[i] / (4.0 * 2.0));  // xi_i/(4 dx) at the centre
        EXPECT_DOUBLE_EQ(ny[i], sy[i] / (4.0 * 0.5));
        EXPECT_DOUBLE_EQ(nz[i], sz[i] / (4.0 * 4.0));
    }
    // at a corner the shape function of that node is 1, the others 0
    hex_shape(g.x, g.y, g.z, nodes, 1.0, 1.0, -1.0, det, nx, ny, nz, n);
    for (int i = 1; i <= 8; ++i) EXPECT_EQ(n[i], i == 3 ? 1.0 : 0.0);
    EXPECT_DOUBLE_EQ(det, 0.5);
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

TEST(FlowElement, BrickMatchesDirectTables)
{
    TablesFixture s;
    const ElementTables& e = s.et;
    const double dx = 3.0, dy = 1.5, dz = 0.25;
    Grid g({0.0, dx}, {2.0, 2.0 + dy}, {7.0, 7.0 + dz});
    int nodes[9];
    element_nodes(g.in, 1, nodes);
    const double kx = 2e-5, ky = 7e-6, kz = 1e-6, st = 1e-4, dtinv = 1.0 / 86400.0;
    double sk[9][9], sm[9][9], gz[9];
    flow_element_gauss(kx, ky, kz, g.x, g.y, g.z, nodes, sk, sm, st, dtinv, gz, e.gauss);
    const double cx = kx * dy * dz / dx / 36.0, cy = ky * dx * dz / dy / 36.0,
                 cz = kz * dx * dy / dz / 36.0;
    const double v = dx * dy * dz;
    for (int i = 1; i <= 8; ++i) {
        double rs = 0.0;
        for (int j = 1; j <= 8; ++j) {
            const double d = cx * e.sxx[i][j] + cy * e.syy[i][j] + cz * e.szz[i][j];
            EXPECT_NEAR(sk[i][j], d, 1e-7 * std::fabs(cz * 16.0)) << i << "," << j;
            EXPECT_EQ(sk[i][j], sk[j][i]);
            if (i != j) {
                EXPECT_EQ(sm[i][j], 0.0);
            }
            rs += sk[i][j];
        }
        EXPECT_NEAR(rs, 0.0, 1e-12 * cz);
        // lumped storage: one eighth of the element, 27 V/216
        EXPECT_NEAR(sm[i][i], st * dtinv * 27.0 * v / 216.0, 1e-7 * st * dtinv * v);
        // buoyancy vector: int Nz_i = sz_i dx dy/4
        EXPECT_NEAR(gz[i], e.sz[i] * dx * dy * 0.25, 1e-12);
    }
}

TEST(FlowElement, DistortedElementInvariants)
{
    TablesFixture s;
    std::vector<double> x, y, z;
    distorted(x, y, z);
    const int nodes[9] = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    double sk[9][9], sm[9][9], gz[9], vol[2];
    flow_element_gauss(1.0, 2.0, 0.5, x, y, z, nodes, sk, sm, 2.0, 0.5, gz, s.et.gauss);
    std::vector<int> in(9);
    for (int i = 1; i <= 8; ++i) in[i] = i;
    Listing quiet;
    double voltot = 0.0;
    elvol(x, y, z, s.et.gauss, in, vol, 1, voltot, 1, x, x, x, quiet);
    double msum = 0.0, gsum = 0.0;
    for (int i = 1; i <= 8; ++i) {
        double rs = 0.0;
        for (int j = 1; j <= 8; ++j) {
            rs += sk[i][j];
            EXPECT_EQ(sk[i][j], sk[j][i]);
        }
        EXPECT_NEAR(rs, 0.0, 1e-13);  // a constant head drives no flow
        EXPECT_GT(sk[i][i], 0.0);
        msum += sm[i][i];
        gsum += gz[i];
    }
    EXPECT_NEAR(msum, 2.0 * 0.5 * voltot, 1e-13);  // shape functions sum to one
    EXPECT_NEAR(gsum, 0.0, 1e-13);
    // a linear head h = z gives flux kz: sum_j sk(i,j) z_j = kz * gz(i)
    for (int i = 1; i <= 8; ++i) {
        double f = 0.0;
        for (int j = 1; j <= 8; ++j) f += sk[i][j] * z[j];
        EXPECT_NEAR(f, 0.5 * gz[i], 1e-12) << i;
    }
}

TEST(Elvol, GradedGridVolumeIsTheBox)
{
    TablesFixture s;
    Grid g({0.0, 1.0, 3.0, 6.0}, {0.0, 2.0, 2.5}, {0.0, 0.5, 1.5, 4.0});
    std::vector<double> vol(g.ne + 1, -1.0);
    std::ostringstream os;
    Listing lst{&os};
    for (int kint : {0, 1}) {
        double voltot = -1.0;
        elvol(g.x, g.y, g.z, s.et.gauss, g.in, vol, g.ne, voltot, kint, g.dxe, g.dye, g.dze, lst);
        EXPECT_NEAR(voltot, 6.0 * 2.5 * 4.0, 1e-12) << kint;
        // element (2,1,3): 2 x 2 x 2.5
        EXPECT_NEAR(vol[2 * 3 * 2 + 2], 10.0, 1e-12) << kint;
    }
    EXPECT_EQ(os.str(), "total domain volume ...                 0.600E+02\n"
                        "total domain volume ...                 0.600E+02\n");
}

TEST(Elvol, SlopingTopFollowedByBothPaths)
{
    TablesFixture s;
    Grid g({0.0, 2.0, 6.0}, {0.0, 1.0}, {0.0, 1.0, 4.0});
    // top nodes rise with x, z = 4 + 0.1 x: the volume is int_0^6 (4 + 0.1 x) dx = 25.8
    for (int n = 1; n < (int)g.z.size(); ++n)
        if (g.z[n] == 4.0) g.z[n] = 4.0 + 0.1 * g.x[n];
    g.sizes();
    std::vector<double> vol(g.ne + 1);
    Listing quiet;
    double v0 = 0.0, v1 = 0.0;
    elvol(g.x, g.y, g.z, s.et.gauss, g.in, vol, g.ne, v0, 0, g.dxe, g.dye, g.dze, quiet);
    elvol(g.x, g.y, g.z, s.et.gauss, g.in, vol, g.ne, v1, 1, g.dxe, g.dye, g.dze, quiet);
    EXPECT_NEAR(v0, 25.8, 1e-12);
    EXPECT_NEAR(v1, 25.8, 1e-12);
}

TEST(Elvol, NoElementsGivesZero)
{
    TablesFixture s;
    std::vector<double> none(1), vol(1);
    std::vector<int> in(1);
    std::ostringstream os;
    Listing lst{&os};
    double voltot = 5.0;
    elvol(none, none, none, s.et.gauss, in, vol, 0, voltot, 1, none, none, none, lst);
    EXPECT_EQ(voltot, 0.0);
    EXPECT_EQ(os.str(), "total domain volume ...                 0.000E+00\n");
}

// Each face's nodes go round the rectangle: (-,-), (+,-), (+,+), (-,+) along (l1, l2).
TEST(FractureGeometry, FacesRunRoundTheRectangle)
{
    Grid g({0.0, 2.0, 5.0}, {0.0, 4.0}, {0.0, 1.0, 1.5});
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

TEST(FractureGeometry, UnknownCodeLeavesOutputs)
{
    Grid g({0.0, 1.0}, {0.0, 1.0}, {0.0, 1.0});
    for (int code : {0, 7, -2}) {
        std::vector<int> lvert = {0, code};
        int fn[5] = {0, 11, 12, 13, 14};
        double l1 = -1, l2 = -2, asp = -3, area = -4, l = -5;
        facegeo(lvert, fn, g.in, 1, 1, l1, l2, g.dxe, g.dye, g.dze, asp, area);
        EXPECT_EQ(fn[1], 11);
        EXPECT_EQ(fn[4], 14);
        EXPECT_TRUE(l1 == -1 && l2 == -2 && asp == -3 && area == -4);
        edgegeo(lvert, fn, g.in, 1, 1, l, g.dxe, g.dye, g.dze);
        EXPECT_EQ(fn[1], 11);
        EXPECT_EQ(fn[2], 12);
        EXPECT_EQ(l, -5);
    }
}

TEST(FractureGeometry, Edges)
{
    Grid g({0.0, 2.0}, {0.0, 3.0}, {0.0, 0.5});
    const int loc[7][3] = {{0, 0, 0}, {0, 1, 5}, {0, 1, 2}, {0, 1, 4},
                           {0, 4, 8}, {0, 4, 3}, {0, 2, 3}};
    const double want[7] = {0, 0.5, 2.0, 3.0, 0.5, 2.0, 3.0};
    for (int code = 1; code <= 6; ++code) {
        std::vector<int> lvert = {0, code};
        int fn[3];
        double l = 0.0;
        edgegeo(lvert, fn, g.in, 1, 1, l, g.dxe, g.dye, g.dze);
        EXPECT_EQ(fn[1], node_of(g.in, 1, loc[code][1]));
        EXPECT_EQ(fn[2], node_of(g.in, 1, loc[code][2]));
        // the edge length is the distance between its two nodes
        const double d = std::hypot(g.x[fn[2]] - g.x[fn[1]], g.y[fn[2]] - g.y[fn[1]],
                                    g.z[fn[2]] - g.z[fn[1]]);
        EXPECT_DOUBLE_EQ(l, want[code]);
        EXPECT_DOUBLE_EQ(l, d);
    }
}
