#pragma once
#include "control/listing.hpp"
#include "input/record_reader.hpp"

struct RunState;

// The interval loop: reads each interval's records and steps through it, until an
// interval's `more` is 0 or below.
void time_loop(RunState& rs, RecordReader& rd, const Listing& lst, const Console& con);
// The closing summaries and the normal end of a run.
void end_of_run(RunState& rs, const Listing& lst, const Console& con);
