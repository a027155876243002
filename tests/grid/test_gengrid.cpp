#include "base/options.hpp"
#include "base/stop.hpp"
#include "grid/gengrid.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// A box of two x sub-intervals (3 + 1 elements), one y (2), and two z (2 + 3); with
// ksat = 0 the top z sub-interval belongs to the transport grid only.
Grid graded_box()
{
    Grid g;
    g.ngx = 2; g.ngy = 1; g.ngz = 2;
    g.xg = {0, 3.0, 5.0};  g.nlx = {0, 3, 1};
    g.yg = {0, 2.0};       g.nly = {0, 2};
    g.zg = {0, 4.0, 7.0};  g.nlz = {0, 2, 3};
    return g;
}

struct Built {
    Grid g;
    std::ostringstream out;
};

void build(Built& b, int ksat)
{
    Options opt;
    opt.ksat = ksat;
    opt.unsat = (ksat == 0);
    Listing lst{&b.out};
    grid_sizes(b.g, opt, lst);
    gengrid(b.g, 0, opt.unsat, 0);
}

TEST(GenGrid, FlowGridSizesNumberingAndIncidence)
{
    Built b{graded_box(), {}};
    build(b, 1);
    const Grid& g = b.g;
    EXPECT_EQ(g.nex, 4);
    EXPECT_EQ(g.ney, 2);
    EXPECT_EQ(g.nez, 5);
    EXPECT_EQ(g.nn, 5 * 3 * 6);
    EXPECT_EQ(g.ne, 4 * 2 * 5);
    EXPECT_DOUBLE_EQ(g.zl, 7.0);
    // node (i,j,k) numbering, z fastest
    const int n = grid_node(2, 3, 4, g.ny, g.nz);
    EXPECT_EQ(n, (2 - 1) * 3 * 6 + (3 - 1) * 6 + 4);
    EXPECT_DOUBLE_EQ(g.x[n], 1.0);
    EXPECT_DOUBLE_EQ(g.y[n], 2.0);
    EXPECT_DOUBLE_EQ(g.z[n], 4.0 + 1.0);
    // element (ie,je,ke), x fastest; its node 1 is node (ie,je,ke) and node 7 the far corner
    const int e = grid_element(3, 2, 4, g.nex, g.ney);
    EXPECT_EQ(e, 3 * 4 * 2 + 1 * 4 + 3);
    EXPECT_EQ(node_at(g.in, e, 1), grid_node(3, 2, 4, g.ny, g.nz));
    EXPECT_EQ(node_at(g.in, e, 2), grid_node(4, 2, 4, g.ny, g.nz));
    EXPECT_EQ(node_at(g.in, e, 3), grid_node(4, 3, 4, g.ny, g.nz));
    EXPECT_EQ(node_at(g.in, e, 4), grid_node(3, 3, 4, g.ny, g.nz));
    EXPECT_EQ(node_at(g.in, e, 7), grid_node(4, 3, 5, g.ny, g.nz));
    // mean edge lengths: the last x element is 2 m, z elements in sub-interval 2 are 1 m
    EXPECT_DOUBLE_EQ(g.dxe[grid_element(4, 1, 1, g.nex, g.ney)], 2.0);
    EXPECT_DOUBLE_EQ(g.dye[e], 1.0);
    EXPECT_DOUBLE_EQ(g.dze[e], 1.0);
    EXPECT_DOUBLE_EQ(g.dze[1], 2.0);
    // the elements tile the box exactly
    double vol = 0;
    for (int l = 1; l <= g.ne; ++l) vol += g.dxe[l] * g.dye[l] * g.dze[l];
    EXPECT_NEAR(vol, 5.0 * 2.0 * 7.0, 1e-12);
    // saturated: nmap is the identity
    for (int m = 1; m <= g.nn; ++m) ASSERT_EQ(g.nmap[m], m);
    // face lists
    EXPECT_EQ(g.itopf[(1 - 1) * 4 + 3], grid_node(2, 2, g.nz, g.ny, g.nz));
    const int f = (2 - 1) * g.ney + 2;  // ke = 2, je = 2
    EXPECT_EQ(g.irightf[(f - 1) * 4 + 4], grid_node(g.nx, 3, 3, g.ny, g.nz));
    EXPECT_EQ(g.ileftf[(f - 1) * 4 + 1], grid_node(1, 2, 2, g.ny, g.nz));
}

TEST(GenGrid, UnsaturatedZoneExtendsOnlyTheTransportGrid)
{
    Built b{graded_box(), {}};
    build(b, 0);
    Grid& g = b.g;
    EXPECT_EQ(g.nez, 2);
    EXPECT_EQ(g.nz, 3);
    EXPECT_DOUBLE_EQ(g.zl, 4.0);
    const std::vector<int> flow_in = g.in;
    // nmap skips the unsaturated layers of every column above it
    EXPECT_EQ(g.nmap[1], 1);
    EXPECT_EQ(g.nmap[g.nz], g.nz);
    EXPECT_EQ(g.nmap[g.nz + 1], g.nz + 1 + 3);
    g.nnt = g.nx * g.ny * g.nzt;
    gengrid(g, 1, true, 0);
    EXPECT_EQ(g.nzt, 6);
    EXPECT_EQ(g.nezt, 5);
    EXPECT_EQ(g.nnt, 5 * 3 * 6);
    EXPECT_EQ(g.net, 4 * 2 * 5);
    // a flow node and its transport image sit at the same point
    for (int n = 1; n <= g.nn; ++n) {
        const int i = (n - 1) / (g.ny * g.nz) + 1, j = ((n - 1) / g.nz) % g.ny + 1, k = (n - 1) % g.nz + 1;
        ASSERT_EQ(g.nmap[n], grid_node(i, j, k, g.ny, g.nzt)) << n;
    }
    // the flow incidence stays; the transport incidence maps through nmap for flow elements
    EXPECT_EQ(g.in, flow_in);
    for (int e = 1; e <= g.ne; ++e)
        for (int a = 1; a <= 8; ++a) ASSERT_EQ(node_at(transport_incidence(g), e, a), g.nmap[node_at(g.in, e, a)]);
    EXPECT_DOUBLE_EQ(g.z[grid_node(1, 1, 6, g.ny, g.nzt)], 7.0);
    for (int n = 1; n <= g.nnt; ++n) ASSERT_EQ(g.kzt[n], (n - 1) % g.nzt + 1);
}

// (ne > maxne and the unsaturated zone without a second z sub-interval: test_deck_errors.cpp)
TEST(GenGrid, TooManyColumnsStop)
{
    std::ostringstream out;
    Options opt;
    opt.ksat = 1;
    Grid g;
    g.ngx = 1; g.ngy = 1; g.ngz = 1;
    g.xg = {0, 1.0}; g.nlx = {0, 600};
    g.yg = {0, 1.0}; g.nly = {0, 600};
    g.zg = {0, 1.0}; g.nlz = {0, 1};
    EXPECT_THROW(grid_sizes(g, opt, Listing{&out}), RunStopped);
    EXPECT_NE(out.str().find("          error, nxy>nf, check dimensions"), std::string::npos);
    EXPECT_NE(out.str().find("total nodes in flow grid         722402"), std::string::npos) << out.str();  // 601 * 601 * 2
}

}  // namespace
