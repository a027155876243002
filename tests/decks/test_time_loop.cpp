#include "support/deck_run.hpp"
#include "support/small_deck.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

std::vector<double> step_times(const std::string& console)
{
    std::vector<double> t;
    std::istringstream in(console);
    const std::string key = "beginning solution for time=";
    for (std::string l; std::getline(in, l);) {
        const std::size_t p = l.find(key);
        if (p != std::string::npos) t.push_back(std::stod(l.substr(p + key.size())));
    }
    return t;
}

TEST(TimeLoop, IntervalsWithAGapAnOverlapAndAnOvershoot)
{
    const std::string none = "0.0 1.0 0.0 1.0\n0 0 0 0 0.0 0\n0 0 0 0 0 0 0.0 0.0 0.0 0\n0 0 0 0 0.0 0.0 0.0 0";
    // equal heads on both faces: the heads never change and each step solves flow once
    const DeckRun r = run_deck(small_deck({{"[flow face 2]", "1 2 1 3 10.0 0"},
                                           {"[T1]", "0.0 2.5 1.0 1 1 1 1 1"},
                                           {"[T2]", ""},
                                           {"[T3]", ""},
                                           {"[T4]", ""},
                                           {"[T5]", none + "\n5.0 6.0 0.5 1 1 1 1 1\n" + none +
                                                        "\n5.5 6.5 1.0 1 1 1 1 0\n" + none}}));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    // 2.5 days in steps of 1 overshoot to 3; the next interval restarts the clock at its
    // own t1 (a gap), and the last one at 5.5 (an overlap)
    const std::vector<double> want = {1, 2, 3, 5.5, 6, 6.5};
    EXPECT_EQ(step_times(r.console), want);
    EXPECT_TRUE(r.has(" time step #           6 time =    6.5000000000000000       days\n"));
    EXPECT_TRUE(r.has(" # time steps numit ...            6\n"));
    EXPECT_TRUE(r.has(" time interval from   5.0000000000000000       to    6.0000000000000000     \n"));
    // every step of these intervals solves the flow (kflowfreq 1)
    EXPECT_TRUE(r.has(" total iterations performed:            6\n"));
    // the console holds the banner, one line a step and the end
    EXPECT_EQ(r.console.find("time interval"), std::string::npos);
}

TEST(TimeLoop, FlowIsSolvedOnTheFirstTwoStepsAndThenByItsFrequency)
{
    const DeckRun r = run_deck(small_deck({{"[flow face 2]", "1 2 1 3 10.0 0"}, {"[T1]", "0.0 6.0 1.0 1 3 1 1 0"}}));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    // steps 1, 2 (the first two of an interval), 3 and 6 (kflowfreq 3)
    EXPECT_TRUE(r.has(" total iterations performed:            4\n"));
}

TEST(TimeLoop, MaxitOfZeroReportsTheLimitEvenWhenConverged)
{
    DeckRun r = run_deck(small_deck({{"[cc]", "1.0e-4 1.0e-3 1.0e-2 1.0e-3 0 3"}}));
    EXPECT_TRUE(r.has(" thermal/concentration iteration limit reached at this time step\n")) << r.listing;
    EXPECT_FALSE(r.has("thermal solution has converged in"));
    // the default: the heads start at 10 everywhere against 10 and 9 m on the x faces, so
    // the first pass moves them and the second solves again and finds them settled
    r = run_deck(small_deck());
    EXPECT_TRUE(r.has(" thermal solution has converged in           0  iterations\n")) << r.listing;
    const std::size_t s1 = r.listing.find(" time step #           1");
    const std::string step1 = r.listing.substr(s1, r.listing.find(" time step #           2") - s1);
    EXPECT_NE(step1.find(" non-linear iteration # (kit):            1\n -----------------------------------\n"
                         " flow solution complete \n"),
              std::string::npos)
        << step1;
    EXPECT_NE(step1.find(" thermal solution has converged in           1  iterations"), std::string::npos);
}

TEST(Sources, HeatersOfOneAndFourColumnsWithTheirTotals)
{
    // two element rows in y so that a four-column heater fits
    const DeckRun r = run_deck(small_deck({{"[yg]", "2.0"},
                                           {"[nly]", "2"},
                                           {"[ranges]", "1 12 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0"},
                                           {"[T4]", "2 2 1 1 1 2 10.0 0.0 0.0 1\n1 2 1 2 1 1 10.0 0.0 0.0 0"}}));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    // one column of two 1 m bricks heated on all four sides (8 m2, 80 W over 2 m), and
    // four columns of one brick with two of their four sides outside (8 m2, 80 W over 1 m)
    EXPECT_TRUE(r.has(" total surface area of this heater column ..    8.0000000000000000     \n"
                      " total volume of this heater column ........    2.0000000000000000     \n"
                      " average heat flux per m length (W/m) ......    40.000000000000000     \n"))
        << r.listing;
    EXPECT_TRUE(r.has(" average heat flux per m length (W/m) ......    80.000000000000000     \n"));
    EXPECT_TRUE(r.has(" total number of heater columns ....            2\n"
                      " cumulative # of elements in all heater columns:            6\n"
                      " total surface area of all heater columns ...    16.000000000000000     \n"
                      " total volume of all heater columns .........    6.0000000000000000     \n"
                      " total heat flux over all columns (W) .......    160.00000000000000     \n"
                      " total flux/m length for all columns (W/m) ..    120.00000000000000     \n"));
}

TEST(Sources, SourceRangesAreCheckedAgainstTheFlowGrid)
{
    DeckRun r = run_deck(small_deck({{"[T5]", "1 1 1 3 1.0e-6 10.0 0.5 1\n4 2 1 3 0.0 0.0 0.0 1\n1 1 2 1 1.0 0.0 0.0 0"}}));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has(" revised source/sink nodes            1  to            3\n"
                      " source/sink strength:          9.9999999999999995E-007\n"));
    EXPECT_TRUE(r.has(" revised source/sink nodes           22  to           24\n"));
}

TEST(Patches, SurfacePatchesMarkTopNodes)
{
    const DeckRun r = run_deck(small_deck({{"[T3]", "1 2 1 1 -2.0 1\n4 4 2 2 3.0 0"}}));
    ASSERT_TRUE(r.has("**** normal exit ****")) << r.listing;
    EXPECT_TRUE(r.has(" boundary patch node at i,j:            1           1 is Dirichlet\n"));
    const DeckRun bad = run_deck(small_deck({{"[T3]", "1 5 1 1 -2.0 0"}}));
    EXPECT_TRUE(bad.has_message("warning - surface temp patch i,j,node            5           1")) << bad.listing;
    EXPECT_TRUE(bad.has_message("is not valid"));
}

struct Fault {
    std::vector<std::pair<std::string, std::string>> records;
    const char* words;
};

// Interval, heater and source records that stop the run, each with its own words.
TEST(TimeLoop, FaultsOfTheStepRecordsStop)
{
    const Fault faults[] = {
        {{{"[T1]", "0.0 2.0 0.0 1 1 1 1 0"}}, "error detected in time step data"},
        {{{"[T1]", ""}, {"[T2]", ""}, {"[T3]", ""}, {"[T4]", ""}, {"[T5]", ""}}, "error reading time step data ..."},
        {{{"[T1]", "0.0 1.0e6 1.0 1000 1000 1000 1000 0"}}, "error ... #time steps (     200001) > maxit (     200000)"},
        {{{"[T4]", "1 4 1 1 1 1 10.0 0.0 0.0 0"}}, "error defining internal heat source element range"},
        {{{"[options]", "0 0 0 0 0 0 1 0 0 0 0 2 0 0"}, {"[mass kb]", ""}, {"[cinit]", ""},
          {"[T4]", "1 3 1 1 1 1 10.0 0.0 0.0 0"}},
         "check for 1- or 4-column heater, i2.le.nex etc. ..."},
        {{{"[T4]", "1 1 1 1 1 1 10.0 5.0 0.0 0"}}, "error... should not have both fluxin1 & fluxin2 > 0"},
        {{{"[T5]", "4 2 1 4 1.0 0.0 0.0 0"}}, "error in source/sink nodal range ... "},
    };
    for (const Fault& f : faults) {
        const DeckRun r = run_deck(small_deck(f.records));
        EXPECT_EQ(r.status, 0) << f.words;
        EXPECT_TRUE(r.has_message(f.words)) << f.words << "\n" << r.listing;
        EXPECT_FALSE(r.has("normal exit")) << f.words;
    }
}

}  // namespace
