#pragma once
#include <cstdint>
#include <span>

#include "control/options.hpp"
#include "element/tables.hpp"
#include "solver/lower_csr.hpp"
#include "transport/dispersion.hpp"

// The one discretised transport equation shared by concentration, age and heat:
//   du/dt + (1/R)(v . grad u - div(D grad u)) + decay u = agefx,
// Galerkin in space; per element  amat u(n+1) + bmat u(n) = cmat (row sums).  Advection
// stays on the old level, so the left matrix is symmetric; a symmetric augmentation
// dispersion v v dt/2 is split between both levels.  All arrays are one-based.

// Time weights of the scheme and the step.
struct TransportScheme {
    double wdisp = weight_dispersion;        // physical dispersion on the new level
    double waug = weight_augmentation;       // augmentation on the new level
    double wdisp1 = 1.0 - weight_dispersion; // ... on the old level
    double waug1 = 1.0 - weight_augmentation;
    double dtinv = 0;                        // 1/dt (1/s)
    double dthalf = 0;                       // dt/2 (s)
};

// The 15 coefficients of an element: left tensor e (exx .. eyz), right tensor r (rxx ..
// ryz), advective velocity.
struct ElementCoefficients {
    Tensor e, r;
    double ax, ay, az;
};

// EL = wdisp D + waug dthalf v v, ER = wdisp1 D + waug1 dthalf v v, a = v.
ElementCoefficients element_coefficients(const Tensor& D, double vx, double vy, double vz, const TransportScheme& s);

// Element matrices by the 2x2x2 Gauss rule (kint 1): no decay, no growth, cmat untouched.
void elmatn(const ElementCoefficients& c, double dtinv,                                   //
            std::span<const double> x, std::span<const double> y, std::span<const double> z,
            const int nodes[9], double amat[9][9], double bmat[9][9],                     // out
            double R, const GaussRules& gr);

// Element matrices of a brick dx x dy x dz from the integration tables (kint 0).  The
// coefficients are scaled in place; decay acts on amat alone, growth fills cmat.
void elmatd(ElementCoefficients& c, const ElementTables& et, double dtinv,               //
            double dx, double dy, double dz, double R, double decay, double agefx,       //
            double amat[9][9], double bmat[9][9], double cmat[9][9]);                     // out

// A line fracture along an edge of length len: coefficient Df, signed velocity vf along
// the edge from node 1 to node 2, scale wf (cross-section over the porosity).
void line_fracture_matrices(double Df, double vf, double wf, double len, double R, double decay,
                            const TransportScheme& s, double amat[3][3], double bmat[3][3]);

// The geometry and flow of a plane fracture element: in-plane velocities along the sides
// l1 and l2, asp = l2/l1, area = l1 l2.
struct PlaneFracture {
    double vx2d = 0, vy2d = 0;
    double l1 = 0, l2 = 0, asp = 0, area = 0;
    double wf = 0;  // cross-section scale
};
// al and at are the longitudinal and transverse dispersivities of the plane, dd the
// diffusion; decay on amat, growth agefx into cmat.
void plane_fracture_matrices(const PlaneFracture& pf, double al, double at, double dd, double R, double decay,
                             double agefx, const TransportScheme& s, const ElementTables& et, double amat[5][5],
                             double bmat[5][5], double cmat[5][5]);

// The field values the scatter reads: w is the old time level, held by a fixed node at
// both levels; rvec gathers the old-level products and the growth, by equation.
struct TransportTarget {
    ScatterTarget t;
    std::span<const int> idir, ncum;
    std::span<const double> w;
    std::span<double> rvec;
};

// The brick scatter with the slots found in advance for this element (64 of them, see
// ElementPositions): the same additions in the same order as scatter_transport.
void scatter_brick(const int nodes[9], const std::uint8_t* slots, const double amat[9][9], const double bmat[9][9],
                   const double cmat[9][9], TransportTarget& tt);

// Adds an element of N nodes: amat into a (lower triangle), a fixed neighbour's old value
// times amat + bmat into b, and cmat - bmat w into rvec.  cmat may be null (no growth).
void scatter_transport(int n, const int* nodes, const double* amat, const double* bmat, const double* cmat,
                       int ld, TransportTarget& tt);
