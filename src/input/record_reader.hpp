#pragma once
#include <istream>
#include <span>
#include <string>
#include <vector>

// Forward reader of the deck and of the auxiliary text files.  Two operations: a title
// line (80 characters kept) and a free-format list read that fills typed variables in
// order from as many lines as it needs.  List reads know blanks and commas as
// separators, r*c repeats, null values (",," or r*) that leave a variable as it was, and
// "/" ending the record early; when the last value is taken the rest of its line is
// dropped.  Integers take no decimal point; reals take integer, fixed or exponent text
// with an e, E, d or D exponent.
enum class ReadStatus { ok, eof, bad };

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

    const std::string& file_name() const { return name_; }
    int line_no() const { return line_no_; }       // line of the last value read (or reached)
    const std::string& problem() const { return problem_; }  // what a bad read met

private:
    bool next_line();
    ReadStatus next_item(std::string_view& text);  // the next value text, empty for a null
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
