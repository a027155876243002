#include "control/run.hpp"
#include "timeloop/run_state.hpp"
#include "support/deck_run.hpp"
#include "support/small_deck.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <sstream>

// Decks that once crashed, stopped without need, or ran on with a failure passing as
// success.

namespace {

// The small deck with one transport-only layer of 1 m above its flow grid (ksat 0).
std::vector<std::pair<std::string, std::string>> unsat_deck(const std::string& options, const std::string& ranges)
{
    return {{"[options]", options},
            {"[ngx]", "1 1 2"},
            {"[zg]", "2.0 3.0"},
            {"[nlz]", "2 1"},
            {"[ranges]", ranges},
            {"[heat bottom]", "1 4 1 2 8.0 0"},
            {"[tinit]", "1 4 1 2 1 4 8.0 5.0 0"},
            {"[cinit]", "1 4 1 2 1 4 0.0 0.0 0"}};
}

TEST(Corrections, ExternalGridWithUnsaturatedLayers)
{
    // kgo 4 reads every node of the transport grid from grid3d.plt, x stretched by 1.5
    std::ostringstream grid;
    grid << "external grid\nfour levels\nzone i=       4, j=       2, k=       4\n";
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 2; ++j)
            for (int k = 1; k <= 4; ++k) grid << 1.5 * (i - 1) << " " << (j - 1) << " " << (k - 1) << " 0\n";
    const DeckRun r = run_deck(small_deck(unsat_deck("0 0 0 0 0 4 0 3 0 0 0 1 0 0",
                                                     "1 9 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0")),
                               {{"grid3d.plt", grid.str()}});
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has(" unsat check with grid3d.plt ..."));
    const std::string f = r.dir->read("tc3d1_gelmor.out");
    EXPECT_NE(f.find("\n   0.450000E+01   0.100000E+01   0.300000E+01"), std::string::npos) << f;
}

TEST(Corrections, UnsaturatedRangesAndBlocksReachingAboveTheGridAreTaken)
{
    // 9 transport elements: a range and a block past them warn and store what exists
    const DeckRun r = run_deck(small_deck(unsat_deck(
        "0 0 0 0 0 0 0 3 0 0 0 1 0 0",
        "1 20 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0")) /* range past net */);
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has_message("!! warning !! K above wt. will not be used"));
    auto blocks = unsat_deck("0 0 0 0 0 0 0 3 0 0 0 1 0 0", "1 9 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0");
    blocks.push_back({"[blocks]", "1 3 1 1 3 7 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.25 1.0 0"});
    const DeckRun b = run_deck(small_deck(blocks));
    ASSERT_TRUE(b.has("**** normal exit ****")) << b.listing;
}

TEST(Corrections, ElementVolumesAfterEveryStepThatSolvedFlow)
{
    const DeckRun r = run_deck(small_deck());
    ASSERT_TRUE(r.has("**** normal exit ****"));
    EXPECT_EQ(count_of(r.listing, "total domain volume"), 3) << "setup and the two steps";
}

TEST(Corrections, ExactLayoutsOfTwoMessages)
{
    // a Dirichlet node past the grid: ten blanks and 32-bit fields on the second line
    const DeckRun d = run_deck(small_deck({{"[heat top]", "1 9 1 2 5.0 0"}}));
    EXPECT_TRUE(d.has_message("Error in Dirichlet b.c.: iglobal_node <0 or >nn)")) << d.listing;
    EXPECT_TRUE(d.has("\n          iglobal_node,nn =          "));
    EXPECT_FALSE(d.has("\n           iglobal_node"));
    // a run stopped at T2 shows the T1 echo first
    const DeckRun t = run_deck(small_deck({{"[T2]", "a b c d"}}));
    EXPECT_TRUE(t.has(" moment/tpeak frequency =            1\n")) << t.listing;
    EXPECT_TRUE(t.has_message("error reading hinc,rinc,rtdiff"));
}

TEST(Corrections, StepThatCannotAdvanceTheClockStopsAtOnce)
{
    for (const char* dt : {"1.0e-320", "1.0e-18"}) {
        const DeckRun r = run_deck(small_deck({{"[T1]", std::string("1.0e6 1.1e6 ") + dt + " 1 1 1 1 0"},
                                               {"[print times]", "0.0 0.0 0.0 0.0 0.0"}}));
        EXPECT_TRUE(r.has_message("error, time step dt too small to advance the clock")) << dt << r.listing;
        EXPECT_FALSE(r.has("time step #"));
    }
}

TEST(Corrections, NoSilentNaN)
{
    // a fracture aperture of 1e308 spoils the flow system: the first solve that is not
    // finite stops the run, naming its field and node
    const DeckRun r = run_deck(small_deck({{"[fractures]", "1 3 1 1 1 2 2 1 1.0e308 0"}}));
    EXPECT_TRUE(r.has("\n          error, the flow solution is not a finite number\n          first at node")) << r.listing;
    EXPECT_FALSE(r.has("normal exit"));
    // an unknown element option builds no matrix: the solver refuses it at once
    const DeckRun k = run_deck(small_deck({{"[options]", "0 0 0 3 0 0 1 3 0 0 0 1 0 0"}}));
    EXPECT_TRUE(k.has("pcg has been assigned a matrix with")) << k.listing;
    EXPECT_FALSE(k.has("normal exit"));
}

// A run of the small deck in a directory prepared by `prepare`, its standard error caught.
struct PreparedRun {
    ScratchDir dir{"prepared"};
    int status = -1;
    std::string err, listing;
    template <class F>
    explicit PreparedRun(F&& prepare, bool with_deck = true)
    {
        if (with_deck) dir.write("gelmor.data", small_deck());
        prepare(dir.path);
        std::ostringstream console, cerr_text;
        std::streambuf* old = std::cerr.rdbuf(cerr_text.rdbuf());
        status = run_gelmor(dir.path, console);
        std::cerr.rdbuf(old);
        err = cerr_text.str();
        listing = dir.read("gelmor.lst");
    }
};

TEST(Corrections, NothingIsLostSilently)
{
    namespace fs = std::filesystem;
    const PreparedRun deck_dir([](const fs::path& p) { fs::create_directory(p / "gelmor.data"); }, false);
    EXPECT_EQ(deck_dir.status, 2);
    EXPECT_NE(deck_dir.err.find("gelmor.data in " + deck_dir.dir.path.string() + " is not a file"), std::string::npos)
        << deck_dir.err;

    const PreparedRun lst_dir([](const fs::path& p) { fs::create_directory(p / "gelmor.lst"); });
    EXPECT_EQ(lst_dir.status, 2);
    EXPECT_NE(lst_dir.err.find("cannot write gelmor.lst"), std::string::npos) << lst_dir.err;

    const PreparedRun plot_dir([](const fs::path& p) { fs::create_directory(p / "gelmor_txz.plt"); });
    EXPECT_EQ(plot_dir.status, 2);
    EXPECT_NE(plot_dir.err.find("cannot create result file gelmor_txz.plt"), std::string::npos) << plot_dir.err;
    EXPECT_NE(plot_dir.listing.find("cannot create result file gelmor_txz.plt"), std::string::npos);

    // a file on a full disk: its writes fail, and only the final flush can tell
    const PreparedRun full([](const fs::path& p) { fs::create_symlink("/dev/full", p / "gelmor_hxz.plt"); });
    EXPECT_EQ(full.status, 2);
    EXPECT_NE(full.err.find("writing gelmor_hxz.plt in"), std::string::npos) << full.err;

    // a directory in place of an optional input is a missing input
    const PreparedRun hbdy([](const fs::path& p) { fs::create_directory(p / "hbdy.data"); });
    EXPECT_EQ(hbdy.status, 0);
    EXPECT_NE(hbdy.listing.find("no hbdy.data file found ... continuing"), std::string::npos);
    EXPECT_NE(hbdy.listing.find("**** normal exit ****"), std::string::npos);
}

TEST(Corrections, ControlBytesInAValueAreShownEscaped)
{
    const DeckRun r = run_deck(small_deck({{"[init]", "0 " + std::string("1.0\x01", 4) + std::string(1, '\0') + "4"}}));
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.has("found \"1.0\\x01\\04\"")) << r.listing;
}

}  // namespace
