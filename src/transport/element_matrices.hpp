#pragma once
#include <cstdint>
#include <span>

#include "base/options.hpp"
#include "element/layers.hpp"
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

// EL = wdisp D + waug dthalf cw v v, ER = wdisp1 D + waug1 dthalf cw v v, a = cw v: cw is
// 1 per unit of pore fluid, the heat capacity of the liquid water in heat units.
ElementCoefficients element_coefficients(const Tensor& D, double vx, double vy, double vz, const TransportScheme& s,
                                         double cw = 1.0);

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

// The terms of a line fracture element of length len along an edge: dl and dr the
// dispersion of both levels over the length, adv the advection, m the storage, lam the decay.
struct LineTerms {
    double dl = 0, dr = 0, adv = 0, m = 0, lam = 0;
};
// dl and dr from the coefficient Df and the signed velocity vf along the edge (node 1 to
// node 2), scale wf (cross-section over the porosity); the augmentation carries no capacity.
void line_dispersion(double Df, double vf, double wf, double len, const TransportScheme& s, LineTerms& t);
// The 2x2 matrices; R divides dispersion and advection.  The storage stands on every
// entry of amat but on the diagonal of bmat only, and the decay is neither halved nor
// retarded: a line keeps these as its own weights.
void line_fracture_matrices(const LineTerms& t, double R, double amat[3][3], double bmat[3][3]);

// The geometry and flow of a plane fracture element: in-plane velocities along the sides
// l1 and l2, asp = l2/l1, area = l1 l2.
struct PlaneFracture {
    double vx2d = 0, vy2d = 0;
    double l1 = 0, l2 = 0, asp = 0, area = 0;
    double wf = 0;  // cross-section scale
};
// al and at are the longitudinal and transverse dispersivities of the plane, dd the
// diffusion.  cap multiplies dispersion and advection and storage the mass term (both 1
// per unit of pore fluid; heat capacities in heat units); R divides all but the mass
// term's own 1/R and the decay; growth agefx fills cmat.
struct PlaneCoefficients {
    double al = 0, at = 0, dd = 0;
    double cap = 1, storage = 1, R = 1;
    double decay = 0, agefx = 0;
};
void plane_fracture_matrices(const PlaneFracture& pf, const PlaneCoefficients& pc, const TransportScheme& s,
                             const ElementTables& et, double amat[5][5], double bmat[5][5], double cmat[5][5]);

// The field values the scatter reads: w is the old time level, held by a fixed node at
// both levels; rvec gathers the old-level products and the growth, by equation.
struct TransportTarget {
    ScatterTarget t;
    std::span<const int> idir, ncum;
    std::span<const double> w;
    std::span<double> rvec;
};

// The brick scatter with the slots found in advance for this element (see
// ElementPositions): the same additions in the same order as scatter_transport; `share`
// as for_each_element_in_order hands it.
void scatter_brick(const int nodes[9], const std::uint8_t* slots, const double amat[9][9], const double bmat[9][9],
                   const double cmat[9][9], TransportTarget& tt,
                   Share share = Share::all);

// Adds an element of N nodes: amat into a (lower triangle), a fixed neighbour's old value
// times amat + bmat into b, and cmat - bmat w into rvec.  cmat may be null (no growth).
void scatter_transport(int n, const int* nodes, const double* amat, const double* bmat, const double* cmat,
                       int ld, TransportTarget& tt);
