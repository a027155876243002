#pragma once
#include <filesystem>
#include <map>
#include <ostream>
#include <string>

class TraceSink;

// A whole run in directory dir, console trace to `console`; returns the exit status.
int run_gelmor(const std::filesystem::path& dir, std::ostream& console);

// How far a run goes: to its end; through the input phases and the initial output only,
// stopping before the time loop; or that and then the records of every time interval,
// read without a step (the whole deck, as a checker needs it).
enum class RunScope { whole, input_only, deck };

// The input phases of a deck with every file in memory: `texts` holds the deck
// (gelmor.data) and any optional input file by name.  For the fuzz driver, which runs
// thousands of decks, and for the deck checker, which attaches a trace sink to the
// deck's reader.
struct InputRun {
    int status = 0;        // exit status, 2 with no deck
    bool stopped = false;  // a fatal stop (or no deck) ended the input phases
    std::string listing;
};
InputRun run_input_in_memory(const std::map<std::string, std::string>& texts, RunScope scope = RunScope::input_only,
                             TraceSink* trace = nullptr);
