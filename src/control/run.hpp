#pragma once
#include <filesystem>
#include <map>
#include <ostream>
#include <string>

// A whole run in directory dir, console trace to `console`; returns the exit status.
int run_gelmor(const std::filesystem::path& dir, std::ostream& console);

// How far a run goes: to its end, or through the input phases and the initial output
// only, stopping before the time loop.
enum class RunScope { whole, input_only };

// The input phases of a deck with every file in memory: `texts` holds the deck
// (gelmor.data) and any optional input file by name.  For the fuzz driver, which runs
// thousands of decks.
struct InputRun {
    int status = 0;        // exit status, 2 with no deck
    bool stopped = false;  // a fatal stop (or no deck) ended the input phases
    std::string listing;
};
InputRun run_input_in_memory(const std::map<std::string, std::string>& texts);
