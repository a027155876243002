#pragma once
#include "base/listing.hpp"
#include "input/record_reader.hpp"
#include "timeloop/intervals.hpp"

struct RunState;

// Clock, counters and triggers of the time loop.
struct LoopState {
    IntervalRecord iv;            // the interval in hand (times in seconds once read)
    long long numit = 0;          // steps of the whole run
    int istep = 0;                // steps of the current interval
    double tsec = 0, tdays = 0;   // time in seconds and days
    double dtinv = 0, dthalf = 0; // 1/dt and dt/2 of the interval (dt in seconds)
    int kit = 0;                  // non-linear pass, 0 on the first
    int kwtit = 0;                // water-table pass of one flow sequence
    long long nflow = 0;          // flow solves of the run
    double dumx = 0, dtmx = 0, dcmx = 0;  // largest changes of head, temperature, concentration
    bool ldoflow = false;         // this pass solves the flow problem
    bool last_pass_flow = false;  // the step's last pass solved the flow problem
    bool lplot2d = false, lflow = false, lmom = false, lprint3d = false, lpeclet = false, lmovie = false;
    bool can_freeze = false;      // a set, initial or boundary temperature below 0
    double dzmin = 0, dzmax = 0;  // extremes of the pass's column deformation
};

// The interval loop: reads each interval's records and steps through it, until an
// interval's `more` is 0 or below.
void time_loop(RunState& rs, RecordReader& rd, const Listing& lst, const Console& con);
// Every interval's records T1..T5 with their checks and echoes, read as the interval
// loop reads them but without a step: the rest of the deck, for a deck checker.
void read_intervals(RunState& rs, RecordReader& rd, const Listing& lst);
// The closing summaries and the normal end of a run.
void end_of_run(RunState& rs, const Listing& lst, const Console& con);
