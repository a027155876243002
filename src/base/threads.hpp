#pragma once
#include <string>

// The threads of the parallel loops (element assembly, velocities, the formatting of the
// result files).  Every parallel loop gives the same numbers with any count: each sum
// keeps the order it has in one thread.
//
// GELMOR_THREADS, when set, chooses the count (a whole number from 1 up); otherwise
// every core of the machine is used.  Returns an empty string when the choice was
// applied, else the message that explains what is wrong with the value.
std::string choose_threads(const char* setting);

// The thread count the parallel loops use now.
int thread_count();
