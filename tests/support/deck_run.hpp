#pragma once
#include "support/scratch.hpp"

#include <memory>
#include <string>
#include <vector>

// A whole run of a deck in its own scratch directory, in this process.
struct DeckRun {
    std::unique_ptr<ScratchDir> dir;
    int status = -1;
    std::string listing;
    std::string console;
    bool has(const std::string& text) const { return listing.find(text) != std::string::npos; }
    // a message line: 10 blanks and then the words
    bool has_message(const std::string& words) const { return has("\n          " + words); }
};

DeckRun run_deck(const std::string& deck_text, const std::vector<std::pair<std::string, std::string>>& extra_files = {});

// The bundled example deck, as text, and its one run shared by all tests.
std::string example_deck(const std::string& name = "valley_section");
const DeckRun& example_run();
std::vector<std::string> split_lines(const std::string& text);
// How many times `what` stands in `text`.
int count_of(const std::string& text, const std::string& what);
std::string join_lines(const std::vector<std::string>& lines);

// The values of a deck line as [start, end) spans; they stop where the line's remark
// starts, at the first run of three blanks.
std::vector<std::pair<std::size_t, std::size_t>> value_spans(const std::string& line);
// The junk the robustness tests put in place of a value.
const std::vector<std::string>& value_junk();
// Whether the last words of a listing are a message: a blank line, then lines behind 10
// blanks.  Every run that stops must end so.
bool ends_with_message(const std::string& listing);
