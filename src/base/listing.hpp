#pragma once
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>

// The two text channels of a run: the listing gelmor.lst and the console trace.
// Writers hand over whole records; nothing here formats numbers.
struct Listing {
    std::ostream* os = nullptr;
    void line(std::string_view s) const { if (os) { os->write(s.data(), (std::streamsize)s.size()); os->put('\n'); } }
    void blank() const { line(""); }
    void flush() const { if (os) os->flush(); }
};

struct Console {
    std::ostream* os = nullptr;
    void line(std::string_view s) const { if (os) { os->write(s.data(), (std::streamsize)s.size()); os->put('\n'); } }
    void flush() const { if (os) os->flush(); }
};

// A message block: a blank line, then each line behind 10 blanks.
void message(const Listing& lst, std::initializer_list<std::string> lines);
