#pragma once
#include <array>
#include <functional>
#include <span>
#include <vector>

#include "solver/pattern.hpp"

// Test systems on structured hexahedral grids: the grid, a fixed-node index, the lower
// pattern of the condensed matrix, a diffusion-plus-mass operator assembled into it, and
// dense tools (reconstruction, independent assembly, Cholesky) to check them against.

// Node (i,j,k) of an nx*ny*nz grid, z fastest, all one-based.
inline int node_id(int i, int j, int k, int ny, int nz) { return (i - 1) * ny * nz + (j - 1) * nz + k; }

struct HexGrid {
    int nx = 0, ny = 0, nz = 0, nn = 0, ne = 0;
    double dx = 1.0, dy = 1.0, dz = 1.0;  // element lengths
    // in[l][0..7], l = 1..ne: nodes 1-4 the lower face counter-clockwise from
    // (low x, low y), 5-8 the same above.  Element (i,j,k) = (k-1)*nex*ney + (j-1)*nex + i.
    std::vector<std::array<int, 8>> in;
};
HexGrid hex_grid(int nx, int ny, int nz, double dx = 1.0, double dy = 0.8, double dz = 0.5);

// Fixed-node index of one field, one-based over the nodes.
struct HexField {
    std::vector<int> idir;      // 1 = fixed
    std::vector<int> ncum;      // fixed nodes up to and including node i
    std::vector<double> fc;     // fixed values (set on every node, used on fixed ones)
    std::vector<double> qnode;  // nodal fluxes (set on every node)
    int neq = 0;
};
using FixedMask = std::function<bool(int i, int j, int k)>;
// fixed may be empty: no node fixed.  fc and qnode get smooth made-up values.
HexField hex_field(const HexGrid& g, const FixedMask& fixed);

// Element l's diffusion-plus-mass matrix, 2x2x2 Gauss: anisotropic conductivity and a
// mass coefficient that both vary from element to element.
void hex_element_matrix(const HexGrid& g, int l, double e[8][8]);

struct HexSystem {
    HexGrid grid;
    HexField field;
    LowerPattern pat;
    std::vector<double> a;  // nvec + 1
    std::vector<double> b;  // nn + 1: by equation over 1..neq
};
// The assembled system, through clear_values, fill_rhs and scatter_element.
HexSystem hex_grid_system(int nx, int ny, int nz, const FixedMask& fixed = {});

// Dense n x n matrix with one-based (i, j).
struct Dense {
    int n = 0;
    std::vector<double> v;
    explicit Dense(int n_) : n(n_), v(std::size_t(n_) * n_, 0.0) {}
    double& operator()(int i, int j) { return v[std::size_t(i - 1) * n + (j - 1)]; }
    double operator()(int i, int j) const { return v[std::size_t(i - 1) * n + (j - 1)]; }
};
// The full symmetric matrix that a lower pattern and its values stand for.
Dense to_dense(const LowerPattern& p, std::span<const double> a);
// Independent condensed assembly: the full nodal matrix summed from the element matrices,
// free rows and columns kept, fixed columns moved to the right-hand side with fc.
// Equations are numbered by counting free nodes.  b is one-based, length neq + 1.
void dense_condensed(const HexSystem& s, Dense& A, std::vector<double>& b);
// y = A x, one-based vectors.
std::vector<double> dense_matvec(const Dense& A, std::span<const double> x);
// x = A^-1 b by Gauss elimination with partial pivoting (any regular A), one-based vectors.
std::vector<double> dense_gauss_solve(Dense A, std::span<const double> b);
