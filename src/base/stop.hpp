#pragma once
#include "base/listing.hpp"

// The only way a fatal condition ends a run: stop_run writes the message block to the
// listing and throws RunStopped, which only the run frame catches.  Nothing goes to the
// console.
struct RunStopped {
    int status = 0;  // exit status: 0 for the run's own stops, 2 for the input layer
};

[[noreturn]] void stop_run(const Listing& lst, std::initializer_list<std::string> lines);
// The input layer's own stop, for a record that has no words of its own.
[[noreturn]] void stop_input(const Listing& lst, std::initializer_list<std::string> lines);
