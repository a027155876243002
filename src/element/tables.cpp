#include "element/tables.hpp"

namespace {

// Local coordinates of the brick nodes and of the fracture rectangle nodes.
constexpr int kxi[9] = {0, -1, 1, 1, -1, -1, 1, 1, -1};
constexpr int keta[9] = {0, -1, -1, 1, 1, -1, -1, 1, 1};
constexpr int kzeta[9] = {0, -1, -1, -1, -1, 1, 1, 1, 1};
constexpr int ka[5] = {0, -1, 1, 1, -1};
constexpr int kb[5] = {0, -1, -1, 1, 1};

// The integer templates.  Each comes from products of 1-D integrals over [-1, 1]:
// int (1 + s_i t)(1 + s_j t) dt = (2/3)(3 + s_i s_j) and int s_i s_j/4 dt = s_i s_j/2,
// which is where the factors (3 + s_i s_j) come from.  Every division here is exact:
// (3 +- 1) is 2 or 4.
constexpr int isxx(int i, int j)
{
    return kxi[i] * kxi[j] * (3 + keta[i] * keta[j]) * (3 + kzeta[i] * kzeta[j]) / 4;
}
constexpr int isyy(int i, int j)
{
    return keta[i] * keta[j] * (3 + kxi[i] * kxi[j]) * (3 + kzeta[i] * kzeta[j]) / 4;
}
constexpr int iszz(int i, int j)
{
    return kzeta[i] * kzeta[j] * (3 + kxi[i] * kxi[j]) * (3 + keta[i] * keta[j]) / 4;
}
constexpr int isxy(int i, int j)
{
    return (kxi[i] * keta[j] + keta[i] * kxi[j]) * (3 + kzeta[i] * kzeta[j]) / 4;
}
constexpr int isxz(int i, int j)
{
    return (kxi[i] * kzeta[j] + kzeta[i] * kxi[j]) * (3 + keta[i] * keta[j]) / 4;
}
constexpr int isyz(int i, int j)
{
    return (keta[i] * kzeta[j] + kzeta[i] * keta[j]) * (3 + kxi[i] * kxi[j]) / 4;
}
constexpr int icx(int i, int j)
{
    return kxi[j] * (3 + keta[i] * keta[j]) * (3 + kzeta[i] * kzeta[j]) / 4;
}
constexpr int icy(int i, int j)
{
    return keta[j] * (3 + kxi[i] * kxi[j]) * (3 + kzeta[i] * kzeta[j]) / 4;
}
constexpr int icz(int i, int j)
{
    return kzeta[j] * (3 + kxi[i] * kxi[j]) * (3 + keta[i] * keta[j]) / 4;
}
constexpr int iamcons(int i, int j)
{
    return (3 + kxi[i] * kxi[j]) * (3 + keta[i] * keta[j]) * (3 + kzeta[i] * kzeta[j]) / 8;
}
constexpr int iamlump(int i, int j) { return i == j ? 27 : 0; }

constexpr int ifxx(int i, int j) { return ka[i] * ka[j] * (3 + kb[i] * kb[j]) / 2; }
constexpr int ifyy(int i, int j) { return kb[i] * kb[j] * (3 + ka[i] * ka[j]) / 2; }
constexpr int ifxy(int i, int j) { return (ka[i] * kb[j] + kb[i] * ka[j]) / 2; }
constexpr int ifm(int i, int j) { return (3 + ka[i] * ka[j]) * (3 + kb[i] * kb[j]) / 4; }
constexpr int ifcx(int i, int j) { return ka[j] * (3 + kb[i] * kb[j]) / 2; }
constexpr int ifcy(int i, int j) { return kb[j] * (3 + ka[i] * ka[j]) / 2; }

// The tables stand as integers until the run starts; these are their fixed values.
template <int N>
struct IntTable {
    int v[N + 1][N + 1] = {};
    constexpr explicit IntTable(int (*f)(int, int))
    {
        for (int i = 1; i <= N; ++i)
            for (int j = 1; j <= N; ++j) v[i][j] = f(i, j);
    }
};

template <int N>
void to_double(const IntTable<N>& t, double d[N + 1][N + 1])
{
    for (int i = 0; i <= N; ++i)
        for (int j = 0; j <= N; ++j) d[i][j] = (double)t.v[i][j];
}

constexpr IntTable<8> tsxx{isxx}, tsyy{isyy}, tszz{iszz}, tsxy{isxy}, tsxz{isxz}, tsyz{isyz};
constexpr IntTable<8> tcx{icx}, tcy{icy}, tcz{icz}, tamcons{iamcons}, tamlump{iamlump};
constexpr IntTable<4> tfxx{ifxx}, tfyy{ifyy}, tfxy{ifxy}, tfm{ifm}, tfcx{ifcx}, tfcy{ifcy};

// The samples that fix the sign conventions, checked when this file compiles.
static_assert(tsxx.v[1][1] == 4 && tsxx.v[1][2] == -4 && tsxx.v[1][7] == -1);
static_assert(tsxy.v[1][1] == 2 && tsxy.v[1][3] == -2 && tsxy.v[1][5] == 1);
static_assert(tcx.v[1][1] == -4 && tcx.v[2][1] == -4 && tcx.v[1][2] == 4);
static_assert(tamcons.v[1][1] == 8 && tamcons.v[1][2] == 4 && tamcons.v[1][7] == 1);

}  // namespace

void fill_gauss_rules(GaussRules& g)
{
    // single-precision Gauss-Legendre values, widened
    const double x[10] = {0.0,
                          -0.5773502588272095, 0.5773502588272095,
                          -0.7745966911315918, 0.0, 0.7745966911315918,
                          -0.8611363172531128, -0.3399810492992401,
                          0.3399810492992401, 0.8611363172531128};
    const double w[10] = {0.0,
                          1.0, 1.0,
                          0.5555555820465088, 0.8888888955116272, 0.5555555820465088,
                          0.3478548526763916, 0.6521451473236084,
                          0.6521451473236084, 0.3478548526763916};
    for (int k = 0; k <= 9; ++k) {
        g.xg[k] = x[k];
        g.wg[k] = w[k];
    }
}

void fill_element_tables(ElementTables& et, double cmat[9][9])
{
    to_double(tsxx, et.sxx);
    to_double(tsyy, et.syy);
    to_double(tszz, et.szz);
    to_double(tsxy, et.sxy);
    to_double(tsxz, et.sxz);
    to_double(tsyz, et.syz);
    to_double(tcx, et.cx);
    to_double(tcy, et.cy);
    to_double(tcz, et.cz);
    to_double(tamcons, et.amcons);
    to_double(tamlump, et.amlump);
    to_double(tfxx, et.fxx);
    to_double(tfyy, et.fyy);
    to_double(tfxy, et.fxy);
    to_double(tfm, et.fm);
    to_double(tfcx, et.fcx);
    to_double(tfcy, et.fcy);
    for (int i = 0; i <= 8; ++i) {
        et.sx[i] = (double)kxi[i];
        et.sy[i] = (double)keta[i];
        et.sz[i] = (double)kzeta[i];
    }
    for (int i = 0; i <= 4; ++i) et.sf[i] = (double)kb[i];
    fill_gauss_rules(et.gauss);
    for (int i = 0; i <= 8; ++i)
        for (int j = 0; j <= 8; ++j) cmat[i][j] = 0.0;
}
