// Element loops on threads: every destination receives its elements in element order.
#include "element/layers.hpp"
#include "support/box_grid.hpp"

#include <gtest/gtest.h>
#include <omp.h>

#include <vector>

namespace {

// The elements that add to each node's right-hand side, and to the entry between each
// node and the one above it, in the order they add; with any thread count the lists must
// be those of one thread.
struct Order {
    std::vector<std::vector<int>> rhs, vertical;
};

Order record(const Grid& g, int threads)
{
    Order o{std::vector<std::vector<int>>(g.nn + 1), std::vector<std::vector<int>>(g.nn + 1)};
    const int before = omp_get_max_threads();
    omp_set_num_threads(threads);
    for_each_element_in_order(g.ne, g.nexy, [&](int l, Share share) {
        for (int i = 1; i <= 8; ++i) {
            const int n = node_at(g.in, l, i);
            if (adds_to(share, i, i)) o.rhs[n].push_back(l);
            // the pair of local nodes i and i+4 (one above the other) is never on one plane
            if (i <= 4 && adds_to(share, i, i + 4)) o.vertical[n].push_back(l);
        }
    });
    omp_set_num_threads(before);
    return o;
}

TEST(ElementLayers, EveryDestinationSeesItsElementsInOrderWithAnyThreadCount)
{
    for (const auto& [nex, nez] : std::vector<std::pair<int, int>>{{3, 9}, {2, 4}, {5, 17}}) {
        const Grid g = box_grid(nex, 2, nez, 1.0, 1.0, 1.0);
        const Order one = record(g, 1);
        for (int n = 1; n <= g.nn; ++n)
            ASSERT_TRUE(std::is_sorted(one.rhs[n].begin(), one.rhs[n].end()));
        for (int threads : {2, 3, 4, 8}) {
            const Order many = record(g, threads);
            EXPECT_EQ(many.rhs, one.rhs) << threads << " threads, " << nez << " layers";
            EXPECT_EQ(many.vertical, one.vertical) << threads << " threads, " << nez << " layers";
        }
    }
}

TEST(ElementLayers, RunsAreWholeLayersOfAtLeastTwo)
{
    EXPECT_EQ(layer_runs(40, 10, 2), (std::vector<int>{1, 21, 41}));
    EXPECT_EQ(layer_runs(40, 10, 8), (std::vector<int>{1, 21, 41}));  // 4 layers: two runs
    EXPECT_EQ(layer_runs(30, 10, 2), (std::vector<int>{1, 31}));      // 3 layers: one run
    EXPECT_EQ(layer_runs(45, 10, 2), (std::vector<int>{1, 46}));      // not whole layers: one run
    EXPECT_EQ(layer_runs(90, 10, 3), (std::vector<int>{1, 31, 61, 91}));
}

}  // namespace
