#include "flow/mindex.hpp"
#include "flow/type_change.hpp"
#include "support/box_grid.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// A transport grid of 2 x 1 x 1 bricks (3 x 2 x 2 nodes) with its heat and mass indexes.
struct SwitchCase {
    Grid g = box_grid(2, 1, 1, 1.0, 1.0, 1.0);
    FieldIndex heat, mass;
    FaceScratch fs;
    CosineHead wt;
    Fields f;
    Velocities v;
    std::ostringstream out;
    Listing lst{&out};

    SwitchCase(const std::string& heat_bc, const std::string& mass_bc)
    {
        for (auto [fi, text, kt] : {std::tuple{&heat, heat_bc, 1}, std::tuple{&mass, mass_bc, 2}}) {
            std::istringstream in(text);
            RecordReader rd(in, "boundary");
            mindex(rd, lst, kt, g.nnt, g.net, g.nx, g.ny, g.nzt, transport_incidence(g), g.x, g.y, g.z, 15, *fi, fs, wt);
        }
        size_fields(f, g.nn, g.nnt);
        for (auto* a : {&v.vx, &v.vy, &v.vz}) a->assign(g.net + 1, 0.0);
        out.str("");
    }
    int top(int ix, int iy) const { return grid_node(ix, iy, g.nzt, g.ny, g.nzt); }
};

// The pattern a fresh build gives for the same fixed flags.
LowerPattern fresh_pattern(const Grid& g, const FieldIndex& fi)
{
    FieldIndex copy;
    copy.nn = fi.nn;
    copy.idir = fi.idir;
    count_fixed(copy);
    build_pattern(Listing{}, transport_incidence(g), g.net, 15, copy);
    return copy.pat;
}

TEST(TypeChange, TopNodesFollowTheSignOfVz)
{
    // heat held at 7 C on the whole top, solute at 1 on the top of the first x column;
    // water leaves through the first brick's top and enters through the second's
    SwitchCase c("0 0 0 0 0 1 0\n1 3 1 2 7.0 0\n", "0 0 0 0 0 1 0\n1 1 1 2 1.0 0\n");
    c.heat.fc[c.top(2, 1)] = 7.0;
    c.v.vz[1] = 1e-6;
    c.v.vz[2] = -1e-6;
    for (int n = 1; n <= c.g.nnt; ++n) c.f.t1[n] = c.f.t10[n] = 3.0;
    ASSERT_TRUE(top_face_switch(c.g, c.v, c.heat, c.mass, c.f, c.lst));
    const std::string s = c.out.str();
    // brick 1: nodes 1 and 4 of its top, the columns (1,1) and (1,2), open; brick 2: the
    // columns (2,1) and (2,2) close, taking their boundary values as the starting values
    for (int iy : {1, 2}) {
        EXPECT_EQ(c.mass.idir[c.top(1, iy)], 0);
        EXPECT_EQ(c.heat.idir[c.top(1, iy)], 0);
        EXPECT_EQ(c.mass.idir[c.top(2, iy)], 1);
        EXPECT_EQ(c.heat.idir[c.top(2, iy)], 1);
        EXPECT_EQ(c.f.t1[c.top(2, iy)], c.heat.fc[c.top(2, iy)]);
        EXPECT_EQ(c.f.t2[c.top(2, iy)], c.mass.fc[c.top(2, iy)]);
    }
    EXPECT_EQ(c.heat.idir[c.top(3, 1)], 1) << "the far column is no brick's node 1 or 4";
    EXPECT_NE(s.find("type change 1-0 +vzTOP; l2d,j,3dnode,ie3d,x,y,z,vz:      1      1      2      1        0.00"
                     "        0.00        1.00    0.10E-05\n"),
              std::string::npos)
        << s;
    EXPECT_NE(s.find("type change 0-1 -vzTOP; l2d,j,3dnode,ie3d,x,y,z,vz:      2      4      "), std::string::npos);
    EXPECT_NE(s.find("converting:\ntop face node switches: 1-0 and 0-1:     2    2\n"
                     "rt  face node switches: 1-0 and 0-1:     0    0\n"
                     "recondensing: new # dirichlet nodes:     4; new # degrees of freedom:         8\n"),
              std::string::npos)
        << s;
    for (const FieldIndex* fi : {&c.heat, &c.mass}) {
        const LowerPattern p = fresh_pattern(c.g, *fi);
        EXPECT_EQ(fi->pat.ia, p.ia);
        EXPECT_EQ(fi->pat.ja, p.ja);
        EXPECT_EQ(fi->pat.neq, fi->neq);
    }
    // the same flow once more switches nothing and says nothing
    c.out.str("");
    EXPECT_FALSE(top_face_switch(c.g, c.v, c.heat, c.mass, c.f, c.lst));
    EXPECT_EQ(c.out.str(), "");
}

TEST(TypeChange, AgeExitConversionFreesHeatNodesAndRenumbersMass)
{
    // a hand-built heat index holding the top of brick 2, where water leaves
    SwitchCase c("0 0 0 0 0 0 0\n", "0 0 0 0 0 0 0\n");
    for (int iy : {1, 2})
        for (int ix : {2, 3}) c.heat.idir[c.top(ix, iy)] = 1;
    c.v.vz[1] = -1e-6;
    c.v.vz[2] = 2e-6;
    ASSERT_TRUE(age_exit_conversion(c.g, c.v, c.heat, c.mass, c.lst));
    const std::string s = c.out.str();
    for (int iy : {1, 2})
        for (int ix : {2, 3}) EXPECT_EQ(c.heat.idir[c.top(ix, iy)], 0);
    EXPECT_NE(s.find(" found vz>0 "), std::string::npos);
    EXPECT_NE(s.find("converting    4 t-1 age nodes on exit boundaries ...\n"
                     "recondensing: new # dirichlet nodes:     0; new # degrees of freedom:        12\n"),
              std::string::npos)
        << s;
    // no heat node fixed under outflow any more: nothing to convert
    c.out.str("");
    EXPECT_FALSE(age_exit_conversion(c.g, c.v, c.heat, c.mass, c.lst));
    EXPECT_EQ(c.out.str(), "");
}

}  // namespace
