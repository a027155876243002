#pragma once
#include <string>
#include <string_view>

// Fixed-width number fields as the listing and the result files need them.  Every
// field is right-justified in w columns and turns into w asterisks when it does not fit.

// Ew.d: "[-]0.ddddE+xx"; a three-digit exponent drops the E ("0.1234-119").
std::string fmt_e(double v, int w, int d);
// The same field appended to out, without a temporary string.
void append_e(std::string& out, double v, int w, int d);
// Fw.d: "[-]ddd.dddd"; the leading zero of |v| < 1 goes first when space is short.
std::string fmt_f(double v, int w, int d);
// Iw: a plain integer.
std::string fmt_i(long long v, int w);
// Aw: text cut or blank-padded on the left to w columns.
std::string fmt_a(std::string_view s, int w);

// Free-format (list-directed) echo of values: a record starts with one blank, which
// also separates a leading number; every later number is preceded by a blank.
// Integers take 11 columns and doubles a 25-column field with 17 significant digits ("   1.0000000000000000     ",
// "   1.0000000000000001E-005"); text stands as it is.
class FreeLine {
public:
    FreeLine& operator<<(std::string_view s);
    FreeLine& operator<<(const char* s) { return *this << std::string_view(s); }
    FreeLine& operator<<(const std::string& s) { return *this << std::string_view(s); }
    FreeLine& operator<<(int v);
    FreeLine& operator<<(long long v);
    FreeLine& operator<<(double v);
    FreeLine& operator<<(bool v);
    const std::string& str() const { return s_; }
    operator const std::string&() const { return s_; }

private:
    std::string s_;
    bool after_number_ = false;  // text after a number is set off by a blank
};

// One free-format record of any mix of text and numbers.
template <typename... Ts>
std::string free_line(const Ts&... items)
{
    FreeLine fl;
    (fl << ... << items);
    return fl.str();
}
// The same values without the record's leading blank, for use inside a message line.
template <typename... Ts>
std::string free_items(const Ts&... items)
{
    return free_line(items...).substr(1);
}
// The list-directed form of one double, without the separating blank (25 columns).
std::string fmt_free_real(double v);
