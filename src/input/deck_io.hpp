#pragma once
#include "base/listing.hpp"
#include "input/record_reader.hpp"

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

// Record reads with the run's failure rules.  `what` names the record for the input
// layer's own messages ("record 3 (ngx ngy ngz)").
//
// A record without words of its own: end of file or a bad value ends the run in the
// input layer, naming the record, the file and the line.
void read_record(RecordReader& rd, const Listing& lst, std::string_view what, std::span<const Slot> slots);
// A record with its own words: a bad value prints them and stops; end of file is the
// input layer's, as above.
void read_record(RecordReader& rd, const Listing& lst, std::string_view what,
                 std::initializer_list<std::string> words, std::span<const Slot> slots);
// A record whose own words cover end of file as well.
void read_record_eof(RecordReader& rd, const Listing& lst, std::string_view what,
                     std::initializer_list<std::string> words, std::span<const Slot> slots);

// Notes for a reader's trace, which cost nothing without one: whether a section or an
// input file is there at all, by the option that decides it ("record 13h (boundary
// section, heat): present, kmass = 3"), and what a boundary code of a face asks for.
void trace_section(RecordReader& rd, std::string_view section, bool present, std::string_view option, int value);
void trace_file(RecordReader& rd, std::string_view file, bool read, std::string_view option, int value);
void trace_face(RecordReader& rd, int face, int code);

// The input layer's stop for a read that went wrong.
[[noreturn]] void input_failure(const RecordReader& rd, const Listing& lst, std::string_view what, ReadStatus st);

template <typename... Ts>
void read_plain(RecordReader& rd, const Listing& lst, std::string_view what, Ts&... vars)
{
    const Slot slots[] = {Slot(vars)...};
    read_record(rd, lst, what, slots);
}
template <typename... Ts>
void read_worded(RecordReader& rd, const Listing& lst, std::string_view what, std::initializer_list<std::string> words,
                 Ts&... vars)
{
    const Slot slots[] = {Slot(vars)...};
    read_record(rd, lst, what, words, slots);
}
