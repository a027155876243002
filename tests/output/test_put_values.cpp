// Rows of values formatted on threads read exactly as one value at a time.
#include "output/plot_rows.hpp"

#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <sstream>

namespace {

// `open` values first, one at a time, so that the run starts inside a record; then
// `count` values through put_values; then the end of the rows.
std::string rows_text(int threads, int per_row, int open, long long count)
{
    const int before = omp_get_max_threads();
    omp_set_num_threads(threads);
    std::ostringstream os;
    std::string b = "header\n";
    Rows r = begin_rows(os, b, per_row, 15, 6);
    for (int k = 0; k < open; ++k) put(r, -k - 0.5);
    put_values(r, count, [](long long k) { return std::sin(0.001 * (double)k) * std::pow(10.0, (double)(k % 40 - 20)); });
    end_rows(r);
    omp_set_num_threads(before);
    return os.str();
}

TEST(PutValues, ThreadsWriteTheTextOfOneValueAtATime)
{
    for (const auto& [per_row, open, count] :
         std::vector<std::tuple<int, int, long long>>{{5, 0, 50000}, {5, 2, 61237}, {6, 0, 6 * 4913}, {6, 4, 7}}) {
        const std::string one = rows_text(1, per_row, open, count);
        for (int threads : {2, 3, 5})
            EXPECT_TRUE(one == rows_text(threads, per_row, open, count))
                << threads << " threads, " << per_row << " a record, " << open << " open, " << count << " values";
        // every record full but the last
        const std::size_t records = (std::size_t)((open + count + per_row - 1) / per_row);
        EXPECT_EQ(std::count(one.begin(), one.end(), '\n'), (long)records + 1);
    }
}

}  // namespace
