#include "input/deck_io.hpp"

#include "base/stop.hpp"

void input_failure(const RecordReader& rd, const Listing& lst, std::string_view what, ReadStatus st)
{
    const std::string rec(what);
    if (st == ReadStatus::eof)
        stop_input(lst, {"input error: end of file " + rd.file_name() + " after line " + std::to_string(rd.line_no()),
                         "while reading " + rec, "program stopping ..."});
    stop_input(lst, {"input error: " + rd.file_name() + " line " + std::to_string(rd.line_no()) + ", reading " + rec,
                     rd.problem(), "program stopping ..."});
}

void read_record(RecordReader& rd, const Listing& lst, std::string_view what, std::span<const Slot> slots)
{
    rd.label(what);
    const ReadStatus st = rd.list(slots);
    if (st != ReadStatus::ok) input_failure(rd, lst, what, st);
}

void read_record(RecordReader& rd, const Listing& lst, std::string_view what,
                 std::initializer_list<std::string> words, std::span<const Slot> slots)
{
    rd.label(what);
    const ReadStatus st = rd.list(slots);
    if (st == ReadStatus::bad) stop_run(lst, words);
    if (st == ReadStatus::eof) input_failure(rd, lst, what, st);
}

void read_record_eof(RecordReader& rd, const Listing& lst, std::string_view what,
                     std::initializer_list<std::string> words, std::span<const Slot> slots)
{
    rd.label(what);
    if (rd.list(slots) != ReadStatus::ok) stop_run(lst, words);
}

void trace_section(RecordReader& rd, std::string_view section, bool present, std::string_view option, int value)
{
    if (!rd.tracing()) return;
    rd.note(std::string(section) + (present ? ": present, " : ": absent, ") + std::string(option) + " = " +
            std::to_string(value));
}

void trace_file(RecordReader& rd, std::string_view file, bool read, std::string_view option, int value)
{
    if (!rd.tracing()) return;
    rd.note(std::string(file) + (read ? ": read here, " : ": not read, ") + std::string(option) + " = " +
            std::to_string(value));
}

void trace_face(RecordReader& rd, int face, int code)
{
    if (!rd.tracing()) return;
    static const char* const where[] = {"", "x = 0", "x end", "y = 0", "y end", "bottom", "top", "interior"};
    std::string what;
    switch (code) {
    case 0: what = "no records (no-flow)"; break;
    case 2: what = "Neumann patch records i1 i2 j1 j2 value more follow"; break;
    case 3: what = "no records (free exit)"; break;
    case 4: what = "no records (thermally leaky top)"; break;
    case 5: what = "internal fixed block records icx1 icx2 icy icy2 icz1 icz2 value more follow"; break;
    case 6: what = "cosine watertable records follow"; break;
    default: what = "Dirichlet patch records i1 i2 j1 j2 value more follow"; break;
    }
    rd.note("face " + std::to_string(face) + " (" + where[face] + "): kb(" + std::to_string(face) +
            ") = " + std::to_string(code) + ", " + what);
}
