#include "support/deck_run.hpp"

#include "control/run_state.hpp"

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
