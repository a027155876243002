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
    const ReadStatus st = rd.list(slots);
    if (st != ReadStatus::ok) input_failure(rd, lst, what, st);
}

void read_record(RecordReader& rd, const Listing& lst, std::string_view what,
                 std::initializer_list<std::string> words, std::span<const Slot> slots)
{
    const ReadStatus st = rd.list(slots);
    if (st == ReadStatus::bad) stop_run(lst, words);
    if (st == ReadStatus::eof) input_failure(rd, lst, what, st);
}

void read_record_eof(RecordReader& rd, const Listing& lst, std::initializer_list<std::string> words,
                     std::span<const Slot> slots)
{
    if (rd.list(slots) != ReadStatus::ok) stop_run(lst, words);
}
