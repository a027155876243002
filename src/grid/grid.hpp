#pragma once
#include <vector>

// The structured brick grid.  Two grids share one set of coordinates: the flow grid
// (nx, ny, nz) on which heads are solved, and the transport grid (nx, ny, nzt), which adds
// the unsaturated top sub-interval when ksat = 0.  Node (i,j,k) is
// (i-1)*ny*nzg + (j-1)*nzg + k (z fastest); element (ie,je,ke) is
// (ke-1)*nex*ney + (je-1)*nex + ie (x fastest).  All arrays are one-based.
struct Grid {
    // definition from the deck
    int ngx = 0, ngy = 0, ngz = 0;        // sub-intervals in x, y, z
    std::vector<double> xg, yg, zg;       // upper end of each sub-interval (m)
    std::vector<int> nlx, nly, nlz;       // elements per sub-interval

    // flow grid sizes
    int nex = 0, ney = 0, nez = 0, nx = 0, ny = 0, nz = 0;
    int nxy = 0, nyz = 0, nn = 0, ne = 0, nexy = 0;
    // transport grid sizes
    int nzt = 0, nezt = 0, nnt = 0, net = 0, nyzt = 0;
    int nb = 15, nbb = 15;                // stored entries reserved per row, flow and transport
    double xl = 0, yl = 0, zl = 0;        // box lengths (m)

    std::vector<double> x, y, z;          // coordinates by node of the last pass (transport after both)
    std::vector<int> in;                  // flow incidence, in[(e-1)*8 + i], i = 1..8
    std::vector<int> int8;                // transport incidence, same layout; empty when it is `in`
                                          // (read it through transport_incidence)
    std::vector<double> dxe, dye, dze;    // mean edge lengths of each element (m)
    std::vector<int> itopf;               // top face nodes of each column face, [(f-1)*4 + c]
    std::vector<int> ileftf, irightf;     // nodes of each x = 0 and x = xl face, [(f-1)*4 + c]
    std::vector<int> nmap;                // flow node -> the same point in transport numbering
    std::vector<int> kzt;                 // vertical index 1..nzt of a transport node
};

inline int grid_node(int i, int j, int k, int ny, int nzg) { return (i - 1) * ny * nzg + (j - 1) * nzg + k; }
inline int grid_element(int ie, int je, int ke, int nex, int ney) { return (ke - 1) * nex * ney + (je - 1) * nex + ie; }
inline int& node_at(std::vector<int>& inc, int e, int i) { return inc[(e - 1) * 8 + i]; }
inline int node_at(const std::vector<int>& inc, int e, int i) { return inc[(e - 1) * 8 + i]; }

// The transport incidence: int8, or the flow incidence when the two grids are one.
inline const std::vector<int>& transport_incidence(const Grid& g) { return g.int8.empty() ? g.in : g.int8; }
