#pragma once
#include <span>

#include "base/listing.hpp"
#include "element/tables.hpp"

// The trilinear 8-node hexahedron: shape functions and Jacobian at a local point, the
// 2x2x2 Gauss rule, element volumes and the flow element matrices by quadrature.
// Coordinates x, y, z are one-based by global node; nodes[1..8] are an element's nodes.

// Point g = 1..8 of the 2x2x2 rule, g = i + 2(j-1) + 4(k-1) with abscissa i for xi,
// j for eta, k for zeta (xi fastest).  w is the product of the three 1-D weights; the
// integration weight of the point is det * w.
inline void gauss_point_2x2x2(const GaussRules& gr, int g, double& xi, double& eta,
                              double& zeta, double& w)
{
    const int i = (g - 1) % 2 + 1;
    const int j = ((g - 1) / 2) % 2 + 1;
    const int k = (g - 1) / 4 + 1;
    xi = gr.xg[i];
    eta = gr.xg[j];
    zeta = gr.xg[k];
    w = gr.wg[i] * gr.wg[j] * gr.wg[k];
}

// Shape functions shp[1..8], their global derivatives dndx, dndy, dndz [1..8] and the
// Jacobian determinant det at (xi, eta, zeta).  The Jacobian row r holds the derivatives
// of x, y, z along local coordinate r.  No check of det: a folded element gives det <= 0
// and derivatives to match, and the caller integrates them as they are.
void hex_shape(std::span<const double> x, std::span<const double> y, std::span<const double> z,
               const int nodes[9], double xi, double eta, double zeta, double& det,
               double dndx[9], double dndy[9], double dndz[9], double shp[9]);

// Element volumes vol[1..ne] of the elements in incidence `in`, and their sum voltot:
// the brick product dxe*dye*dze for kint = 0, the 2x2x2 integral of det otherwise, so a
// deformed top is followed through dze or through the Jacobian.  Writes the total to the
// listing.  ne < 1 gives voltot = 0.
void elvol(std::span<const double> x, std::span<const double> y, std::span<const double> z,
           const GaussRules& gr, std::span<const int> in, std::span<double> vol, int ne,
           double& voltot, int kint, std::span<const double> dxe, std::span<const double> dye,
           std::span<const double> dze, const Listing& lst);

// Flow element matrices of one hexahedron by the 2x2x2 rule:
//   sk(i,j) = sum W (kx Nx_i Nx_j + ky Ny_i Ny_j + kz Nz_i Nz_j), symmetric;
//   sm(i,i) = st * dtinv * sum W N_i (storage, lumped: off-diagonals 0);
//   gz(i)   = sum W Nz_i, the buoyancy vector.   W = det * w of each point.
void flow_element_gauss(double kx, double ky, double kz,        // conductivities
                        std::span<const double> x, std::span<const double> y,
                        std::span<const double> z, const int nodes[9],
                        double sk[9][9], double sm[9][9],        // out
                        double st, double dtinv,                 // storage coefficient st*dtinv
                        double gz[9],                            // out
                        const GaussRules& gr);
