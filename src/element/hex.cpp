#include "element/hex.hpp"

#include "output/fortran_format.hpp"

namespace {
// Local coordinates of the eight nodes (the node order of the element).
constexpr double kxi[9] = {0.0, -1.0, 1.0, 1.0, -1.0, -1.0, 1.0, 1.0, -1.0};
constexpr double keta[9] = {0.0, -1.0, -1.0, 1.0, 1.0, -1.0, -1.0, 1.0, 1.0};
constexpr double kzeta[9] = {0.0, -1.0, -1.0, -1.0, -1.0, 1.0, 1.0, 1.0, 1.0};
}  // namespace

void hex_shape(std::span<const double> x, std::span<const double> y, std::span<const double> z,
               const int nodes[9], double xi, double eta, double zeta, double& det,
               double dndx[9], double dndy[9], double dndz[9], double shp[9])
{
    // N_i = (1 + xi_i xi)(1 + eta_i eta)(1 + zeta_i zeta)/8 and its local derivatives
    double dxi[9], deta[9], dzeta[9];
    for (int i = 1; i <= 8; ++i) {
        const double a = 1.0 + kxi[i] * xi;
        const double b = 1.0 + keta[i] * eta;
        const double c = 1.0 + kzeta[i] * zeta;
        shp[i] = 0.125 * a * b * c;
        dxi[i] = 0.125 * kxi[i] * b * c;
        deta[i] = 0.125 * keta[i] * a * c;
        dzeta[i] = 0.125 * kzeta[i] * a * b;
    }

    // Jacobian: row 1 d(x,y,z)/dxi, row 2 d/deta, row 3 d/dzeta
    double j11 = 0.0, j12 = 0.0, j13 = 0.0;
    double j21 = 0.0, j22 = 0.0, j23 = 0.0;
    double j31 = 0.0, j32 = 0.0, j33 = 0.0;
    for (int i = 1; i <= 8; ++i) {
        const int n = nodes[i];
        const double xn = x[n], yn = y[n], zn = z[n];
        j11 += dxi[i] * xn;
        j12 += dxi[i] * yn;
        j13 += dxi[i] * zn;
        j21 += deta[i] * xn;
        j22 += deta[i] * yn;
        j23 += deta[i] * zn;
        j31 += dzeta[i] * xn;
        j32 += dzeta[i] * yn;
        j33 += dzeta[i] * zn;
    }

    // cofactors of J; the inverse is their transpose over det
    const double c11 = j22 * j33 - j23 * j32;
    const double c12 = j23 * j31 - j21 * j33;
    const double c13 = j21 * j32 - j22 * j31;
    const double c21 = j13 * j32 - j12 * j33;
    const double c22 = j11 * j33 - j13 * j31;
    const double c23 = j12 * j31 - j11 * j32;
    const double c31 = j12 * j23 - j13 * j22;
    const double c32 = j13 * j21 - j11 * j23;
    const double c33 = j11 * j22 - j12 * j21;
    det = j11 * c11 + j12 * c12 + j13 * c13;
    const double r = 1.0 / det;
    const double i11 = c11 * r, i12 = c21 * r, i13 = c31 * r;
    const double i21 = c12 * r, i22 = c22 * r, i23 = c32 * r;
    const double i31 = c13 * r, i32 = c23 * r, i33 = c33 * r;

    // global derivatives: (Nx, Ny, Nz) = J^-1 (N_xi, N_eta, N_zeta)
    for (int i = 1; i <= 8; ++i) {
        dndx[i] = i11 * dxi[i] + i12 * deta[i] + i13 * dzeta[i];
        dndy[i] = i21 * dxi[i] + i22 * deta[i] + i23 * dzeta[i];
        dndz[i] = i31 * dxi[i] + i32 * deta[i] + i33 * dzeta[i];
    }
}

void elvol(std::span<const double> x, std::span<const double> y, std::span<const double> z,
           const GaussRules& gr, std::span<const int> in, std::span<double> vol, int ne,
           double& voltot, int kint, std::span<const double> dxe, std::span<const double> dye,
           std::span<const double> dze, const Listing& lst)
{
    int nodes[9];
    double dndx[9], dndy[9], dndz[9], shp[9];
    voltot = 0.0;
    for (int e = 1; e <= ne; ++e) {
        if (kint == 0) {
            vol[e] = dxe[e] * dye[e] * dze[e];
        } else {
            for (int i = 1; i <= 8; ++i) nodes[i] = in[(e - 1) * 8 + i];
            double v = 0.0;
            for (int g = 1; g <= 8; ++g) {
                double xi, eta, zeta, w, det;
                gauss_point_2x2x2(gr, g, xi, eta, zeta, w);
                hex_shape(x, y, z, nodes, xi, eta, zeta, det, dndx, dndy, dndz, shp);
                v += det * w;
            }
            vol[e] = v;
        }
        voltot += vol[e];
    }
    lst.line(std::string("total domain volume ...              ") + fmt_e(voltot, 12, 3));
}

void flow_element_gauss(double kx, double ky, double kz, std::span<const double> x,
                        std::span<const double> y, std::span<const double> z,
                        const int nodes[9], double sk[9][9], double sm[9][9], double st,
                        double dtinv, double gz[9], const GaussRules& gr)
{
    double dndx[9], dndy[9], dndz[9], shp[9];
    double msum[9];
    for (int i = 1; i <= 8; ++i) {
        for (int j = 1; j <= 8; ++j) {
            sk[i][j] = 0.0;
            sm[i][j] = 0.0;
        }
        msum[i] = 0.0;
        gz[i] = 0.0;
    }
    for (int g = 1; g <= 8; ++g) {
        double xi, eta, zeta, w, det;
        gauss_point_2x2x2(gr, g, xi, eta, zeta, w);
        hex_shape(x, y, z, nodes, xi, eta, zeta, det, dndx, dndy, dndz, shp);
        const double wd = det * w;
        // upper triangle only; the matrix is symmetric by construction
        for (int i = 1; i <= 8; ++i) {
            for (int j = i; j <= 8; ++j)
                sk[i][j] += (kx * dndx[i] * dndx[j] + ky * dndy[i] * dndy[j] +
                             kz * dndz[i] * dndz[j]) * wd;
            msum[i] += shp[i] * wd;
            gz[i] += dndz[i] * wd;
        }
    }
    for (int i = 1; i <= 8; ++i) {
        for (int j = i + 1; j <= 8; ++j) sk[j][i] = sk[i][j];
        sm[i][i] = st * dtinv * msum[i];
    }
}
