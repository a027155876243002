#include "base/files.hpp"
#include "control/run.hpp"
#include "timeloop/run_state.hpp"
#include "support/deck_run.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

TEST(ExampleDeck, ReadsThroughWithEveryEcho)
{
    const DeckRun& r = example_run();
    ASSERT_EQ(r.status, 0) << r.listing;
    const std::string stars = std::string(10, ' ') + std::string(60, '*');
    // banner, to the listing and then to the console
    EXPECT_EQ(r.listing.rfind(stars + "\n\n          caldrift/gelmor\n", 0), 0u);
    EXPECT_TRUE(r.has("\n          Valley section: groundwater flow beneath a river valley, heat and solute\n\n"
                      "          A vertical 2-D section"));
    EXPECT_EQ(r.console.rfind(stars, 0), 0u);
    EXPECT_TRUE(r.has(" run-time options ...\n kprt,kcntrl,kwt,kint,kintv,kgo,ksat,kmass,ktair,\n"
                      " krk,kdz,ksubtr,kr1top,kfreec\n  0  0  0  0  0  0  1  3  0  0  0  2  0  0\n"
                      " heat & mass transport option in effect\n conjugate gradient solver for flow\n"
                      " direct integration for element matrices\n"));
    // grid: 21 x 2 x 11 nodes, 20 x 1 x 10 elements
    EXPECT_TRUE(r.has(" flow grid size, nx,ny,nz:          21           2          11\n"));
    EXPECT_TRUE(r.has(" total number of nodes in transport grid:   (nnt) =          462\n"));
    // gk at 0 C for a heat and mass run: 10*999.89362176/(160/86400); k = gk*(1e-4)^2/12
    EXPECT_TRUE(r.has(" face (1 = left face)            ...            2\n"
                      " hyd. conductivity (m/s@ 0C) ...    4.4995212979"))
        << r.listing;
    // the ten x-max faces of column 10, bricks 10, 30, ..., 190, in both lists
    std::string rows;
    for (int l = 1; l <= 10; ++l) {
        const std::string e = std::to_string(20 * l - 10);
        rows += std::string(10 - std::to_string(l).size(), ' ') + " " + std::to_string(l) +
                "  0.4500E-02  0.1000E-03        2" + std::string(9 - e.size(), ' ') + e + "        2\n";
    }
    EXPECT_TRUE(r.has("        (m/s)    (m^2)       (face)   (3D #)       \n" + rows +
                      " summary: listing of last 100 fracture elements:\n" + rows + " mindex routine"));
    // the plane is drawn at x = 50 m over the full depth; no xy trace for face 2
    EXPECT_EQ(r.dir->read("gelmor_fracgeo_xz.plt"), "geometry x=0,y=0,t=line,c=black,cs=grid,lt=0.2\n1\n2\n"
                                                     "    50.000     0.000\n    50.000    20.000\n");
    EXPECT_EQ(r.dir->read("gelmor_fracgeo_xy.plt"), "");
    // three boundary index blocks; the two x faces fix 2 x 22 heads, the top 42
    // temperatures, the inflow face 22 concentrations
    const std::size_t f = r.listing.find(" mindex routine ... flow boundary arrays ...");
    const std::size_t h = r.listing.find(" mindex  ... heat transport boundary arrays ...");
    const std::size_t m = r.listing.find(" mindex  ... mass transport boundary arrays ...");
    ASSERT_TRUE(f < h && h < m && m != std::string::npos);
    EXPECT_NE(r.listing.find("number of dirichlet nodes:    44\nnumber of degrees of freedom:       418\n", f), std::string::npos);
    EXPECT_NE(r.listing.find("number of dirichlet nodes:    42\n", h), std::string::npos);
    EXPECT_NE(r.listing.find("number of dirichlet nodes:    22\n", m), std::string::npos);
    // the range zone, then the lower layer as an indexed block, then the checks
    EXPECT_TRUE(r.has(" indexed hydraulic k:\n"
                      "           1          20           1           1           1           3\n"
                      "   1.0000000000000000E-004   1.0000000000000000E-004   1.0000000000000001E-005"));
    EXPECT_TRUE(r.has(" hydraulic conductivities are all positive ... \n continuing ... \n"
                      " porosities all positive, continuing ... \n storage term ... "));
    // 100 x 1 x 20 m, after the mass boundary index
    EXPECT_GT(r.listing.find("total domain volume ...                 0.200E+04\n"), m);
    EXPECT_EQ(split_lines(r.dir->read("gelmor_den_visc_T.plt")).size(), 502u);
    // normal end, in the listing and on the console
    const std::string tail = "\n\n\n          **** normal exit ****\n\n\n";
    EXPECT_TRUE(r.listing.ends_with(tail));
    EXPECT_TRUE(r.console.ends_with(tail));
    // every file of the table exists afterwards
    for (const FileEntry& e : file_table()) {
        if (e.mode == OpenAs::create) {
            EXPECT_TRUE(r.dir->exists(e.name)) << e.name;
        }
    }
    EXPECT_EQ(r.dir->read("zdat.out"), "");
}

TEST(ExampleDeck, RandomFieldsFromFgen)
{
    std::vector<std::string> lines = split_lines(example_deck());
    lines[3] = "0 0 0 0 0 0 1 3 0 2 0 2 0 0   krk = 2";
    // ln K = -11.5 everywhere, then ln porosity = ln 0.25
    std::string fgen = "K field\n20 1 10\n";
    for (int e = 1; e <= 200; ++e) fgen += "-11.5\n";
    fgen += "porosity\n 20 1 10\n";
    for (int e = 1; e <= 200; ++e) fgen += "-1.3862943611198906\n";
    const DeckRun r = run_deck(join_lines(lines), {{"fgen92.asc", fgen}});
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has(" cmax m/s...    1.0130093598630711E-005\n"
                      "   cmin m/s...    1.0130093598630711E-005\n"));
    EXPECT_TRUE(r.has(" pormax...   0.25000000000000000     \n   pormin...   0.25000000000000000     \n"));
}

TEST(ExampleDeck, MissingDeckCreatesNothing)
{
    ScratchDir dir("nodeck");
    std::ostringstream console;
    EXPECT_NE(run_gelmor(dir.path, console), 0);
    EXPECT_FALSE(dir.exists("gelmor.lst"));
}

// Any run that does not reach its normal end must leave a message as the last words of
// the listing.
void expect_clean_stop(const DeckRun& r, const std::string& what)
{
    if (r.has("**** normal exit ****")) return;
    EXPECT_TRUE(ends_with_message(r.listing)) << what << "\n" << r.listing;
    EXPECT_NE(r.status, -1);
}

// The example deck with its interval cut to two steps, so that the many runs below
// spend their time on the input, which is what they probe.
std::vector<std::string> short_example()
{
    std::vector<std::string> lines = split_lines(example_deck());
    for (std::string& l : lines)
        if (l.find("interval: t1 t2 dt") != std::string::npos) l = "0.0 2.0 1.0 10 1 30 1 0   two steps";
    return lines;
}

TEST(Robustness, DeckCutAfterEveryLineStopsWithAMessage)
{
    const std::vector<std::string> lines = short_example();
    for (std::size_t n = 0; n < lines.size(); ++n) {
        const std::vector<std::string> head(lines.begin(), lines.begin() + n);
        const DeckRun r = run_deck(join_lines(head));
        EXPECT_FALSE(r.has("**** normal exit ****")) << n;
        expect_clean_stop(r, "cut after line " + std::to_string(n));
    }
}

// A sample of the junk test: every third value of the deck, with each junk in turn.  The
// fuzz driver (tests/fuzz) puts every junk in place of every value of every seed deck.
TEST(Robustness, JunkInPlaceOfASampleOfValues)
{
    const std::vector<std::string> lines = short_example();
    const std::vector<std::string>& junk = value_junk();
    int count = 0;
    for (std::size_t n = 3; n < lines.size(); ++n) {
        for (const auto& [s, e] : value_spans(lines[n])) {
            if (count++ % 3 != 0) continue;
            const std::string& j = junk[(count / 3) % junk.size()];
            // a huge interval end is a sound deck that steps to the step limit; that
            // run has a test of its own
            const bool interval_end = lines[n].find("two steps") != std::string::npos && s > 0 && s < 5;
            if (interval_end && j[0] != 'a' && j[0] != '-') continue;
            std::vector<std::string> mutated = lines;
            mutated[n] = lines[n].substr(0, s) + j + lines[n].substr(e);
            const DeckRun r = run_deck(join_lines(mutated));
            expect_clean_stop(r, "line " + std::to_string(n + 1) + ": " + mutated[n]);
        }
    }
}

TEST(ExampleDeck, InputInMemoryIsTheHeadOfAWholeRun)
{
    const InputRun in = run_input_in_memory({{"gelmor.data", example_deck()}});
    ASSERT_FALSE(in.stopped) << in.listing;
    EXPECT_EQ(in.status, 0);
    const DeckRun& r = example_run();
    EXPECT_GT(in.listing.size(), 1000u);
    EXPECT_LT(in.listing.size(), r.listing.size());
    EXPECT_EQ(r.listing.compare(0, in.listing.size(), in.listing), 0);
    const InputRun none = run_input_in_memory({});
    EXPECT_TRUE(none.stopped);
    EXPECT_EQ(none.status, 2);
}

#if !defined(__SANITIZE_ADDRESS__)
// Storage follows the deck: the example's ~500 nodes run inside a 64 MB address space,
// while arrays sized by the compiled limits would need hundreds of MB.
TEST(Robustness, SmallDeckRunsInFewMegabytes)
{
    ScratchDir dir("rss");
    dir.write("gelmor.data", example_deck());
    const std::string cmd =
        "cd '" + dir.path.string() + "' && ulimit -v 65536 && exec '" GELMOR_EXE "' > /dev/null 2>&1";
    ASSERT_EQ(std::system(cmd.c_str()), 0);
    EXPECT_NE(dir.read("gelmor.lst").find("**** normal exit ****"), std::string::npos);
}
#endif

}  // namespace
