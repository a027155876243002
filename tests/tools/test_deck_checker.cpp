// The deck checker against the program: on every deck of the repository (and a cut copy
// of each) it must stop where the program stops, with the program's words, or read to the
// end; and on broken decks its one-line diagnosis must name line, record and value.

#include "control/run.hpp"
#include "deck_check.hpp"
#include "support/deck_run.hpp"
#include "support/scratch.hpp"
#include "support/small_deck.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;

struct NamedDeck {
    std::string name;
    std::map<std::string, std::string> texts;
};

// Every gelmor.data of examples/, tests/ and verification/, each with the input files of
// its folder, and the small test deck.
std::vector<NamedDeck> all_decks()
{
    std::vector<NamedDeck> decks;
    for (const char* top : {"examples", "tests", "verification"}) {
        const fs::path root = fs::path(GELMOR_SOURCE_DIR) / top;
        if (!fs::is_directory(root)) continue;
        for (const auto& f : fs::recursive_directory_iterator(root))
            if (f.is_regular_file() && f.path().filename() == "gelmor.data") {
                NamedDeck d{fs::relative(f.path(), GELMOR_SOURCE_DIR).string(), {}};
                if (read_deck_files(f.path(), d.texts)) decks.push_back(std::move(d));
            }
    }
    decks.push_back({"small_deck()", {{"gelmor.data", small_deck()}}});
    return decks;
}

// The deck cut after its first `keep` lines.
std::string cut(const std::string& text, int keep)
{
    std::vector<std::string> lines = split_lines(text);
    lines.resize(std::min<std::size_t>(lines.size(), keep));
    return join_lines(lines);
}

int line_count(const std::string& text) { return (int)split_lines(text).size(); }

// The first line (1-based) that holds `tag`.
int line_of(const std::string& text, const std::string& tag)
{
    const std::vector<std::string> lines = split_lines(text);
    for (std::size_t k = 0; k < lines.size(); ++k)
        if (lines[k].find(tag) != std::string::npos) return (int)k + 1;
    return 0;
}

bool blank(const std::string& l) { return l.find_first_not_of(" \t\r") == std::string::npos; }

// The checker and the program on one deck: the same listing to the last line, the same
// stop lines, the program's input phase a prefix of it; a trace of reads in line order
// that takes every non-blank line up to its last read.
void expect_agreement(const std::string& name, const std::map<std::string, std::string>& texts)
{
    SCOPED_TRACE(name);
    const DeckCheck c = check_deck(texts);
    const InputRun untraced = run_input_in_memory(texts, RunScope::deck);
    EXPECT_EQ(c.listing, untraced.listing);
    EXPECT_EQ(c.stopped, untraced.stopped);
    EXPECT_EQ(c.status, untraced.status);
    const InputRun input = run_input_in_memory(texts);
    EXPECT_EQ(c.listing.compare(0, input.listing.size(), input.listing), 0);
    if (input.stopped) {
        EXPECT_EQ(c.listing, input.listing);
    }
    if (c.stopped) {
        ASSERT_TRUE(ends_with_message(c.listing));
        ASSERT_FALSE(c.message.empty());
        EXPECT_NE(c.listing.find("\n\n" + c.message.front()), std::string::npos);
        EXPECT_FALSE(stop_summary(c).empty());
    }

    const std::vector<std::string> lines = split_lines(texts.at("gelmor.data"));
    std::vector<int> taken(lines.size() + 2, 0);
    int last = 0;
    for (const TraceEntry& e : c.trace) {
        if (e.is_note || e.first_line == 0) continue;
        EXPECT_GT(e.first_line, last) << e.text;  // a read starts on a new line
        EXPECT_FALSE(e.text.empty()) << "an unnamed read at line " << e.first_line;
        for (int l = e.first_line; l <= e.last_line && l <= (int)lines.size(); ++l) ++taken[l];
        last = e.last_line;
    }
    for (int l = 1; l <= last && l <= (int)lines.size(); ++l)
        EXPECT_EQ(taken[l], blank(lines[l - 1]) ? 0 : 1) << "line " << l;
    if (!c.stopped) {
        // a deck that reads through ends with the sources of its last interval
        const TraceEntry* end = nullptr;
        for (const TraceEntry& e : c.trace)
            if (!e.is_note) end = &e;
        ASSERT_NE(end, nullptr);
        EXPECT_TRUE(end->text.starts_with("record T5")) << end->text;
    }
}

TEST(DeckChecker, AgreesWithTheProgramOnEveryDeckAndItsCutCopy)
{
    const std::vector<NamedDeck> decks = all_decks();
    ASSERT_GE(decks.size(), 4u);  // three examples and the small deck at least
    for (const NamedDeck& d : decks) {
        expect_agreement(d.name, d.texts);
        const DeckCheck whole = check_deck(d.texts);
        if (whole.stopped) continue;
        // cut at two thirds: the program runs out of deck inside the record in hand
        std::map<std::string, std::string> texts = d.texts;
        const int keep = line_count(texts["gelmor.data"]) * 2 / 3;
        texts["gelmor.data"] = cut(texts["gelmor.data"], keep);
        expect_agreement(d.name + " cut after line " + std::to_string(keep), texts);
        const DeckCheck c = check_deck(texts);
        EXPECT_TRUE(c.stopped);
        EXPECT_NE(stop_summary(c).find("the deck ends after line " + std::to_string(keep) + " inside record"),
                  std::string::npos)
            << stop_summary(c);
    }
}

std::string with_line(const std::string& deck, int n, const std::string& text)
{
    std::vector<std::string> lines = split_lines(deck);
    lines.at(n - 1) = text;
    return join_lines(lines);
}

TEST(DeckChecker, NamesLineRecordAndValueOfABrokenDeck)
{
    // kmass 3 -> 0 in the example: the mass boundary section vanishes, record 15c takes the
    // mass codes of line 24 and record 16 runs from line 25 into its remark
    const std::string valley = example_deck();
    std::string deck = with_line(valley, 4, "0 0 0 0 0 0 1 0 0 0 0 2 0 0");
    DeckCheck c = check_deck({{"gelmor.data", deck}});
    ASSERT_TRUE(c.stopped);
    EXPECT_EQ(stop_summary(c), "line 25, record 16 (surface air temperature set), value 7 (cutoff): expected a number, "
                               "found \"x\"");
    EXPECT_EQ(c.message.front(), "          error reading surfat terms (tair,bz,sat or tide)...");
    const std::string report = deck_report(c, deck);
    EXPECT_NE(report.find("record 13m (boundary section, mass): absent, kmass = 0"), std::string::npos);
    EXPECT_NE(report.find("line 24     record 15c (tcon porsurf satsurf): tcon=1 porsurf=0 satsurf=0"),
              std::string::npos);
    EXPECT_NE(report.find("!! the rest of line 24 is dropped"), std::string::npos);

    // a value that is no number: the thermal constants of the small deck
    deck = small_deck({{"[thermal]", "4186.0 1000.0 2100.0 917.0 0.58 2.2.4 334000.0   [thermal]"}});
    const std::string line = std::to_string(line_of(deck, "[thermal]"));
    c = check_deck({{"gelmor.data", deck}});
    ASSERT_TRUE(c.stopped);
    EXPECT_EQ(stop_summary(c), "line " + line + ", record 22 (cf pf ci rhoi tclw tcli wlh), value 6 (tcli): expected a "
                               "number, found \"2.2.4\"");
    EXPECT_EQ(c.message.front(), "          error reading cf,pf ... etc.");
    // a comma for a decimal point makes two values of one, and the last is dropped
    deck = small_deck({{"[thermal]", "4186.0 1000.0 2100.0 917.0 0.58 2,24 334000.0   [thermal]"}});
    const std::string report2 = deck_report(check_deck({{"gelmor.data", deck}}), deck);
    EXPECT_NE(report2.find("!! the rest of line " + line + " is dropped"), std::string::npos);

    // a cut deck: it ends where record 20 should stand
    c = check_deck({{"gelmor.data", cut(valley, 30)}});
    ASSERT_TRUE(c.stopped);
    EXPECT_EQ(stop_summary(c), "the deck ends after line 30 inside record 20 (ivel vx0 vy0 vz0 iflipv): 0 value(s) "
                               "taken, more expected");
    EXPECT_EQ(c.message.front(), "          input error: end of file gelmor.data after line 30");
    // inside a boundary section the summary names the section and the face
    c = check_deck({{"gelmor.data", cut(valley, 22)}});
    EXPECT_EQ(stop_summary(c), "the deck ends after line 22 inside record 13h (boundary section, heat), face 6 (top): "
                               "a Dirichlet patch (i1 i2 j1 j2 value more): 0 value(s) taken, more expected");

    // a check after a sound read: the record and its values
    c = check_deck({{"gelmor.data", with_line(valley, 31, "0 0.0 0.0 0.0 0")}});
    ASSERT_TRUE(c.stopped);
    EXPECT_EQ(stop_summary(c), "the run stops after record 20 (ivel vx0 vy0 vz0 iflipv) (line 31): ivel=0 vx0=0.0 "
                               "vy0=0.0 vz0=0.0 iflipv=0");
    EXPECT_EQ(c.message, std::vector<std::string>{"          error, iflipv=0, stopping ..."});

    // an input file the options ask for and the folder lacks
    c = check_deck({{"gelmor.data", with_line(valley, 4, "0 0 0 0 0 0 1 3 1 0 0 2 0 0")}});
    ASSERT_TRUE(c.stopped);
    EXPECT_EQ(stop_summary(c), "the run stops in the input file tair.data, read after record 19 (tide) (line 30)");
    EXPECT_EQ(c.message.front(), "          error... you are trying to read tair.data");
}

TEST(DeckChecker, CommandLineReportsAndExitStatus)
{
    ScratchDir dir("deckcheck");
    dir.write("gelmor.data", with_line(example_deck(), 4, "0 0 0 0 0 0 1 0 0 0 0 2 0 0"));
    const std::string out = (dir.path / "out.txt").string();
    const auto run = [&](const std::string& deck) {
        const int rc = std::system((std::string(GELMOR_DECK_EXE) + " " + deck + " > " + out + " 2>&1").c_str());
        return WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
    };
    EXPECT_EQ(run((dir.path / "gelmor.data").string()), 1);
    EXPECT_NE(dir.read("out.txt").find("STOP: line 25, record 16"), std::string::npos);
    dir.write("gelmor.data", example_deck("solute_column"));
    EXPECT_EQ(run((dir.path / "gelmor.data").string()), 0);
    EXPECT_NE(dir.read("out.txt").find("the deck reads to its end at line 46"), std::string::npos);
    EXPECT_EQ(run((dir.path / "no_such.data").string()), 2);
}

}  // namespace
