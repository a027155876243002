#pragma once

// Integration templates of the 8-node brick and the 4-node fracture rectangle, and the
// Gauss rules.  All tables are one-based: t[i][j] is row i (test function N_i) and
// column j (trial function N_j), i, j = 1..8 (1..4 for fractures); index 0 is unused.
//
// Local node order of the brick, with (xi, eta, zeta) in [-1, 1]^3:
//   1 (-,-,-)  2 (+,-,-)  3 (+,+,-)  4 (-,+,-)  5 (-,-,+)  6 (+,-,+)  7 (+,+,+)  8 (-,+,+)
// and of the fracture rectangle, (a, b) in [-1, 1]^2: 1 (-,-)  2 (+,-)  3 (+,+)  4 (-,+).

// The 2-, 3- and 4-point Gauss-Legendre rules packed one after the other.  The values
// are single-precision constants widened to double, so each abscissa is the float
// nearest the exact one; integrals carry that rounding (about 1e-8 relative).
struct GaussRules {
    double xg[10] = {};  // abscissae: 2-point rule at 1..2, 3-point at 3..5, 4-point at 6..9
    double wg[10] = {};  // weights, same packing
};

// First index of the n-point rule in the packed tables (n = 2, 3, 4).
constexpr int gauss_first(int n) { return n == 2 ? 1 : (n == 3 ? 3 : 6); }

// The double forms of the direct-integration tables.  Each is the exact integral over a
// rectangular brick of sides dx, dy, dz (rectangle l1, l2) divided by the scale given.
struct ElementTables {
    double sxx[9][9];     // int Nx_i Nx_j                 = sxx * dy dz/(36 dx)
    double syy[9][9];     // int Ny_i Ny_j                 = syy * dx dz/(36 dy)
    double szz[9][9];     // int Nz_i Nz_j                 = szz * dx dy/(36 dz)
    double sxy[9][9];     // int (Nx_i Ny_j + Ny_i Nx_j)   = sxy * dz/12
    double sxz[9][9];     // int (Nx_i Nz_j + Nz_i Nx_j)   = sxz * dy/12
    double syz[9][9];     // int (Ny_i Nz_j + Nz_i Ny_j)   = syz * dx/12
    double cx[9][9];      // int N_i Nx_j                  = cx * dy dz/72
    double cy[9][9];      // int N_i Ny_j                  = cy * dx dz/72
    double cz[9][9];      // int N_i Nz_j                  = cz * dx dy/72
    double amcons[9][9];  // consistent mass int N_i N_j   = amcons * dx dy dz/216
    double amlump[9][9];  // lumped mass: 27 on the diagonal, times dx dy dz/216 = V/8
    double fxx[5][5];     // int Na_i Na_j                 = fxx * l2/(6 l1)
    double fyy[5][5];     // int Nb_i Nb_j                 = fyy * l1/(6 l2)
    double fxy[5][5];     // int (Na_i Nb_j + Nb_i Na_j)   = fxy * 1/2
    double fm[5][5];      // int M_i M_j                   = fm * l1 l2/36
    double fcx[5][5];     // int M_i Na_j                  = fcx * l2/12
    double fcy[5][5];     // int M_i Nb_j                  = fcy * l1/12
    double sx[9];         // xi of each local node:   -1, 1, 1,-1,-1, 1, 1,-1
    double sy[9];         // eta of each local node:  -1,-1, 1, 1,-1,-1, 1, 1
    double sz[9];         // zeta of each local node: -1,-1,-1,-1, 1, 1, 1, 1
    double sf[5];         // b of each fracture node: -1,-1, 1, 1
    GaussRules gauss;     // the packed Gauss rules
};

// Fills every table once at start of the run and clears cmat, the growth matrix of
// direct transport integration (written later only by that path, so it must start at 0).
void fill_element_tables(ElementTables& et, double cmat[9][9]);

// Fills the packed Gauss rules.
void fill_gauss_rules(GaussRules& g);
