#pragma once
#include "control/listing.hpp"

// The only way a fatal condition ends a run: stop_run writes the message block to the
// listing and throws RunStopped, which only the run frame catches.  Nothing goes to the
// console.  `falls_out` marks the one message that ends the program by running off its
// end instead of through a stop; the frame treats both alike.
struct RunStopped {
    bool falls_out = false;
};

[[noreturn]] void stop_run(const Listing& lst, std::initializer_list<std::string> lines);
