#include "support/deck_run.hpp"

#include "control/run.hpp"
#include "timeloop/run_state.hpp"

#include <fstream>
#include <sstream>

DeckRun run_deck(const std::string& deck_text, const std::vector<std::pair<std::string, std::string>>& extra_files)
{
    DeckRun r;
    r.dir = std::make_unique<ScratchDir>("deck");
    r.dir->write("gelmor.data", deck_text);
    for (const auto& [name, text] : extra_files) r.dir->write(name, text);
    std::ostringstream console;
    r.status = run_gelmor(r.dir->path, console);
    r.console = console.str();
    r.listing = r.dir->read("gelmor.lst");
    return r;
}

std::string example_deck(const std::string& name)
{
    std::ifstream in(std::string(GELMOR_SOURCE_DIR) + "/examples/" + name + "/gelmor.data");
    std::ostringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

const DeckRun& example_run()
{
    static const DeckRun r = run_deck(example_deck());
    return r;
}

std::vector<std::string> split_lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) lines.push_back(l);
    return lines;
}

std::string join_lines(const std::vector<std::string>& lines)
{
    std::string s;
    for (const std::string& l : lines) s += l + "\n";
    return s;
}

std::vector<std::pair<std::size_t, std::size_t>> value_spans(const std::string& line)
{
    const std::string values = line.substr(0, line.find("   "));
    std::vector<std::pair<std::size_t, std::size_t>> spans;
    for (std::size_t p = 0; p < values.size(); ++p)
        if (values[p] != ' ' && (p == 0 || values[p - 1] == ' ')) {
            const std::size_t e = values.find(' ', p);
            spans.emplace_back(p, e == std::string::npos ? values.size() : e);
        }
    return spans;
}

const std::vector<std::string>& value_junk()
{
    static const std::vector<std::string> junk = {"abc", "-7", "2147483647", "1e300"};
    return junk;
}

bool ends_with_message(const std::string& listing)
{
    const std::string text = "\n" + listing;  // a message may open the listing
    const std::size_t end = text.find_last_not_of('\n');
    if (end == std::string::npos) return false;
    const std::size_t start = text.rfind("\n\n", end);
    return start != std::string::npos && text.compare(start + 2, 10, std::string(10, ' ')) == 0;
}

int count_of(const std::string& text, const std::string& what)
{
    int n = 0;
    for (std::size_t p = text.find(what); p != std::string::npos; p = text.find(what, p + 1)) ++n;
    return n;
}
