#include "element/fracture_geometry.hpp"

namespace {
// Local nodes of each face, round the rectangle from its (-,-) corner, first along the
// side named l1.  Row 0 unused.
constexpr int kface[7][5] = {{0, 0, 0, 0, 0},
                             {0, 1, 4, 8, 5},   // x-min: y then z
                             {0, 2, 3, 7, 6},   // x-max: y then z
                             {0, 1, 2, 6, 5},   // y-min: x then z
                             {0, 4, 3, 7, 8},   // y-max: x then z
                             {0, 1, 2, 3, 4},   // lower: x then y
                             {0, 5, 6, 7, 8}};  // upper: x then y

// Local end nodes of each edge.
constexpr int kedge[7][3] = {{0, 0, 0}, {0, 1, 5}, {0, 1, 2}, {0, 1, 4},
                             {0, 4, 8}, {0, 4, 3}, {0, 2, 3}};
}  // namespace

void facegeo(std::span<const int> lvert, int fnodes[5], std::span<const int> in, int ifr,
             int ie, double& l1, double& l2, std::span<const double> dxe,
             std::span<const double> dye, std::span<const double> dze, double& asp,
             double& area)
{
    const int lv = lvert[ifr];
    if (lv < 1 || lv > 6) return;
    for (int k = 1; k <= 4; ++k) fnodes[k] = in[(ie - 1) * 8 + kface[lv][k]];
    // sides: the face normal to x spans y, z; normal to y spans x, z; normal to z spans x, y
    if (lv <= 2) {
        l1 = dye[ie];
        l2 = dze[ie];
    } else if (lv <= 4) {
        l1 = dxe[ie];
        l2 = dze[ie];
    } else {
        l1 = dxe[ie];
        l2 = dye[ie];
    }
    asp = l2 / l1;
    area = l1 * l2;
}

void edgegeo(std::span<const int> lvert, int fnodes[3], std::span<const int> in, int ifr,
             int ie, double& l, std::span<const double> dxe, std::span<const double> dye,
             std::span<const double> dze)
{
    const int lv = lvert[ifr];
    if (lv < 1 || lv > 6) return;
    fnodes[1] = in[(ie - 1) * 8 + kedge[lv][1]];
    fnodes[2] = in[(ie - 1) * 8 + kedge[lv][2]];
    if (lv == 1 || lv == 4)
        l = dze[ie];
    else if (lv == 2 || lv == 5)
        l = dxe[ie];
    else
        l = dye[ie];
}
