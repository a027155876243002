// The thread count changes no result: a 3-D run with flow, heat and solute on one
// thread and on two writes the same files, byte for byte, with either element path.
#include "base/threads.hpp"
#include "support/deck_run.hpp"

#include <gtest/gtest.h>
#include <omp.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace {

namespace fs = std::filesystem;

// 16 x 16 x 16 bricks of 1 m: heads 10 and 9 m on the x faces, C = 1 held at x = 0,
// temperatures 4 to 8 C from the base up; field files at 1 and 3 days, a movie frame and
// the sections every step.  Large enough that every parallel loop splits (8 layers a
// thread, over 24 000 values in each 3-D file).
const char* const box_deck =
    "Flow box\n"
    "bench\n"
    "box\n"
    "0 0 0 0 0 0 1 3 0 0 0 1 0 0\n"
    "1 1 1\n"
    "16.0\n"
    "16.0\n"
    "16.0\n"
    "16\n"
    "16\n"
    "16\n"
    "0 0.0 0.0\n"
    "0 0 0 0 0\n"
    "0 0 0 0 0 0 0 0 0.0 0\n"
    "1 1 0 0 0 0 0\n"
    "1 17 1 17 10.0 0\n"
    "1 17 1 17 9.0 0\n"
    "1 4096 1.0e-5 1.0e-5 1.0e-6 2.0 800.0 2650.0 0.3 1.0 0\n"
    "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
    "1.0e-4\n"
    "0 9.5\n"
    "0 0 0 0 0 0 0\n"
    "1 0 0 0 0 0 0\n"
    "1 17 1 17 1.0 0\n"
    "2.0 0.3 1.0\n"
    "1 289 5.0 0.0 365.0 0.0 -50.0 0.0 0.0 -1\n"
    "0.1 0.0 365.0 0.0 0.0 0.0 0.0\n"
    "1.0 0.0 365.0 0.0 0.0 0.0 0.0\n"
    "0.0 0.0 1.0 0.0 0.0 0.0 0.0\n"
    "0 0.0 0.0 0.0 1\n"
    "0.5 0.0 0.1 0.01 0.0 1.0 0.0 0.0 0\n"
    "4186.0 1000.0 2100.0 917.0 0.58 2.24 334000.0\n"
    "0.05 1.0 -1.0 1.0 0 0\n"
    "0.05 1.0 -1.0 1.0 0 0\n"
    "1 17 1 17 1 17 4.0 8.0 0\n"
    "1 17 1 17 1 17 0.0 0.0 0\n"
    "1.0e-6 1.0e-3 1.0e-2 1.0e-3 3 3\n"
    "0.0 0.0 5.0\n"
    "8 0 0 0 0\n"
    "8 0 0 0 0\n"
    "8 0 0 0 0\n"
    "1.0 3.0 0.0 0.0 0.0\n"
    "0.0 3.0 1.0 1 1 1 20 0\n"
    "0.0 1.0 0.0 1.0\n"
    "0 0 0 0 0.0 0\n"
    "0 0 0 0 0 0 0.0 0.0 0.0 0\n"
    "0 0 0 0 0.0 0.0 0.0 0\n";

std::map<std::string, std::string> files_of(const DeckRun& r)
{
    std::map<std::string, std::string> out;
    for (const auto& entry : fs::directory_iterator(r.dir->path)) {
        std::ifstream in(entry.path(), std::ios::binary);
        std::ostringstream s;
        s << in.rdbuf();
        out[entry.path().filename().string()] = s.str();
    }
    return out;
}

DeckRun run_with(const std::string& deck, int threads)
{
    const int before = omp_get_max_threads();
    omp_set_num_threads(threads);
    DeckRun r = run_deck(deck);
    omp_set_num_threads(before);
    return r;
}

TEST(Threads, OneAndTwoThreadsWriteTheSameFiles)
{
    // both element paths: the tables (kint 0) and the Gauss points (kint 1)
    for (const char* options : {"0 0 0 0 0 0 1 3 0 0 0 1 0 0", "0 0 0 1 1 0 1 3 0 0 0 1 0 0"}) {
        std::string deck = box_deck;
        deck.replace(deck.find("0 0 0 0 0 0 1 3 0 0 0 1 0 0"), 27, options);
        const DeckRun one = run_with(deck, 1), two = run_with(deck, 2);
        ASSERT_TRUE(one.has("**** normal exit ****")) << one.listing;
        const auto a = files_of(one), b = files_of(two);
        ASSERT_EQ(a.size(), b.size());
        for (const auto& [name, text] : a) {
            ASSERT_TRUE(b.count(name)) << name;
            EXPECT_TRUE(text == b.at(name)) << name << " differs between one thread and two, options " << options;
        }
        EXPECT_GT(a.at("tc3d1_gelmor.out").size(), 6u * 4913u * 15u);  // the 3-D files were written
        EXPECT_GT(a.at("tc3d_gelmormovie.out").size(), 0u);
    }
}

TEST(Threads, TheCountIsAWholeNumberFromOne)
{
    const int before = omp_get_max_threads();
    EXPECT_EQ(choose_threads(nullptr), "");
    EXPECT_EQ(choose_threads(""), "");
    EXPECT_EQ(choose_threads("3"), "");
    EXPECT_EQ(thread_count(), 3);
    for (const char* bad : {"0", "-2", "two", "2.5", "4097", "99999999999999999999"})
        EXPECT_EQ(choose_threads(bad),
                  std::string("GELMOR_THREADS must be a whole number from 1 to 4096, not \"") + bad + "\"");
    EXPECT_EQ(thread_count(), 3);  // a bad value changes nothing
    omp_set_num_threads(before);
}

}  // namespace
