// gelmor-deck: reads a deck as gelmor reads it and tells record by record what it took.
//
//   gelmor-deck [path/to/gelmor.data]     (default ./gelmor.data)
//
// The optional input files are taken from the deck's directory.  Exit status 0 when the
// deck reads to its end, 1 when the program would stop on it, 2 when it cannot be read.
#include "deck_check.hpp"

#include <iostream>

int main(int argc, char** argv)
{
    const std::string arg = argc == 2 ? argv[1] : "";
    if (argc > 2 || arg == "-h" || arg == "--help") {
        std::cout << "usage: gelmor-deck [deck]   (default ./gelmor.data; input files are taken from its directory)\n";
        return argc > 2 ? 2 : 0;
    }
    const std::filesystem::path deck = arg.empty() ? "gelmor.data" : arg;
    std::map<std::string, std::string> texts;
    if (!read_deck_files(deck, texts)) {
        std::cerr << "gelmor-deck: cannot read " << deck.string() << "\n";
        return 2;
    }
    std::cout << "deck " << deck.string() << "\ninput files beside it:";
    for (const auto& [name, text] : texts)
        if (name != "gelmor.data") std::cout << " " << name;
    std::cout << (texts.size() == 1 ? " none\n\n" : "\n\n");
    const DeckCheck c = check_deck(texts);
    std::cout << deck_report(c, texts["gelmor.data"]);
    return c.stopped ? 1 : 0;
}
