#pragma once
#include "input/record_reader.hpp"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

// The deck checker: runs the program's own input phases and then every interval's
// records, in memory and without a step, with a trace sink on the deck's reader, and
// tells record by record what was read, and where and why the run would stop.

// One event of the trace: a read or a note.
struct TraceEntry {
    bool is_note = false;
    std::string text;                  // the note, or the record's label
    bool title = false;
    int first_line = 0, last_line = 0; // first_line 0: the read met no value
    std::vector<std::string> values;   // value texts as taken
    std::string rest;                  // what the read dropped of its last line
    ReadStatus status = ReadStatus::ok;
    std::string problem;
};

struct DeckCheck {
    std::vector<TraceEntry> trace;
    bool stopped = false;              // the program stops on this deck
    int status = 0;                    // its exit status
    std::vector<std::string> message;  // the stop lines of the listing, as written
    std::string listing;
};

// The deck at `deck` as "gelmor.data", and the optional input files of its directory by
// name; false when the deck cannot be read.
bool read_deck_files(const std::filesystem::path& deck, std::map<std::string, std::string>& texts);

// `texts`: the deck as "gelmor.data" and any optional input file by its name.
DeckCheck check_deck(const std::map<std::string, std::string>& texts);

// The names of a record's values, from its label: the checker's own table, or the names
// in the label's parentheses ("record 10 (nwtl datum gammac)"), or one array name
// ("record 4 (xg)" gives xg(1), xg(2), ...).  Empty when unknown.
std::vector<std::string> value_names(const std::string& label, std::size_t count);

// One line on where the deck breaks: the line, the record, the value and what was wrong
// with it; or on the record after which a check stopped the run.  Empty if it does not stop.
std::string stop_summary(const DeckCheck& c);

// The whole report: every record with its lines and values, the notes, warnings on
// dropped text that looks like values, and the end (or the stop with the program's message).
std::string deck_report(const DeckCheck& c, const std::string& deck_text);
