#include "base/stop.hpp"

void message(const Listing& lst, std::initializer_list<std::string> lines)
{
    lst.blank();
    for (const std::string& l : lines) lst.line(std::string(10, ' ').append(l));
}

void stop_run(const Listing& lst, std::initializer_list<std::string> lines)
{
    message(lst, lines);
    lst.flush();
    throw RunStopped{};
}

void stop_input(const Listing& lst, std::initializer_list<std::string> lines)
{
    message(lst, lines);
    lst.flush();
    throw RunStopped{2};
}
