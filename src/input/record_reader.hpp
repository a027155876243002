#pragma once
#include <istream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Forward reader of the deck and of the auxiliary text files.  Two operations: a title
// line (80 characters kept) and a free-format list read that fills typed variables in
// order from as many lines as it needs.  List reads know blanks and commas as
// separators, r*c repeats, null values (",," or r*) that leave a variable as it was, and
// "/" ending the record early; when the last value is taken the rest of its line is
// dropped.  Integers take no decimal point; reals take integer, fixed or exponent text
// with an e, E, d or D exponent.
enum class ReadStatus { ok, eof, bad };

// One read as a trace sink sees it: the record it belongs to, the lines it took its values
// from, the value texts in order (a null as "", an early end as "/") and how it ended.
struct ReadTrace {
    std::string_view record;          // the label set before the read, "" if none
    bool title = false;               // a title line rather than a list
    int first_line = 0;               // 0 when the read met no value
    int last_line = 0;                // line of the last value taken or reached
    const std::vector<std::string>& values;
    std::string_view rest;            // what the list read dropped of its last line
    ReadStatus status = ReadStatus::ok;
    std::string_view problem;         // what a failed read met
};

// Receiver of a reader's trace, for a tool that shows a deck record by record.  A reader
// without one (the simulator's case) keeps no trace at all.
class TraceSink {
public:
    virtual void read(const ReadTrace& r) = 0;
    virtual void note(std::string_view text) = 0;  // why a record or section is there or not

protected:
    ~TraceSink() = default;
};

// One variable of a list read.
struct Slot {
    int* i = nullptr;
    double* d = nullptr;
    Slot(int& v) : i(&v) {}
    Slot(double& v) : d(&v) {}
};

class RecordReader {
public:
    RecordReader(std::istream& in, std::string file_name);

    ReadStatus title(std::string& text);
    ReadStatus list(std::span<const Slot> slots);

    // One list read taken value by value, for lists whose length is known only while
    // they are read (a count inside the list) or too long to name in advance.
    void begin_list();
    ReadStatus value(const Slot& slot);
    void end_list();
    template <typename... Ts>
    ReadStatus read(Ts&... vars)
    {
        const Slot slots[] = {Slot(vars)...};
        return list(slots);
    }

    // Tracing: with a sink attached, every title and list read reports to it.  `label`
    // names the record of the next read; `note` passes a remark on.  Without a sink both
    // do nothing.
    void set_trace(TraceSink* sink) { trace_ = sink; }
    bool tracing() const { return trace_ != nullptr; }
    void label(std::string_view record)
    {
        if (trace_) label_ = record;
    }
    void note(std::string_view text) const
    {
        if (trace_) trace_->note(text);
    }

    const std::string& file_name() const { return name_; }
    int line_no() const { return line_no_; }       // line of the last value read (or reached)
    const std::string& problem() const { return problem_; }  // what a bad read met

private:
    bool next_line();
    ReadStatus next_item(std::string_view& text);  // the next value text, empty for a null
    ReadStatus list_values(std::span<const Slot> slots);
    void take(std::string_view text);               // a value text for the trace
    void report(ReadStatus st, bool title);         // the read just ended, to the trace
    std::istream& in_;
    std::string name_;
    std::string line_;
    int line_no_ = 0;
    std::string problem_;
    // position inside a list read
    bool line_open_ = false;        // a line of the list is being taken apart
    std::size_t pos_ = 0;           // next character of line_
    bool value_since_comma_ = false;
    bool slashed_ = false;          // "/" ended the list: the rest keeps its values
    int repeat_left_ = 0;           // values still due from an r*c item
    std::string repeat_text_;       // c of that item, empty for r* nulls
    // trace of the read in hand, kept only with a sink
    TraceSink* trace_ = nullptr;
    std::string label_;
    std::vector<std::string> taken_;
    int first_line_ = 0;
    bool by_value_ = false;         // a list taken value by value (begin_list)
};

// Slots for a one-based array segment v[first..last].
template <typename T>
std::vector<Slot> slots_of(std::vector<T>& v, int first, int last)
{
    std::vector<Slot> s;
    for (int k = first; k <= last; ++k) s.emplace_back(v[k]);
    return s;
}

// Conversion of one list item; false when the text is not a number of that kind.
bool parse_int(std::string_view text, int& v);
bool parse_real(std::string_view text, double& v);
