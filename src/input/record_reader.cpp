#include "input/record_reader.hpp"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>

RecordReader::RecordReader(std::istream& in, std::string file_name) : in_(in), name_(std::move(file_name)) {}

bool RecordReader::next_line()
{
    if (!std::getline(in_, line_)) return false;
    if (!line_.empty() && line_.back() == '\r') line_.pop_back();
    ++line_no_;
    return true;
}

ReadStatus RecordReader::title(std::string& text)
{
    if (!next_line()) {
        problem_ = "end of file";
        return ReadStatus::eof;
    }
    text = line_.substr(0, 80);
    return ReadStatus::ok;
}

bool parse_int(std::string_view t, int& v)
{
    std::size_t p = 0;
    if (p < t.size() && (t[p] == '+' || t[p] == '-')) ++p;
    if (p == t.size()) return false;
    for (std::size_t k = p; k < t.size(); ++k)
        if (t[k] < '0' || t[k] > '9') return false;
    const std::string s(t);
    errno = 0;
    const long long x = std::strtoll(s.c_str(), nullptr, 10);
    if (errno == ERANGE || x > std::numeric_limits<int>::max() || x < std::numeric_limits<int>::min())
        return false;
    v = static_cast<int>(x);
    return true;
}

bool parse_real(std::string_view t, double& v)
{
    // [sign] digits [. digits] [(e|d) [sign] digits], with at least one mantissa digit;
    // a sign directly after the mantissa also starts an exponent ("1.0-3").
    std::string s;
    std::size_t p = 0;
    if (p < t.size() && (t[p] == '+' || t[p] == '-')) s += t[p++];
    int mant = 0;
    while (p < t.size() && t[p] >= '0' && t[p] <= '9') { s += t[p++]; ++mant; }
    if (p < t.size() && t[p] == '.') {
        s += t[p++];
        while (p < t.size() && t[p] >= '0' && t[p] <= '9') { s += t[p++]; ++mant; }
    }
    if (mant == 0) return false;
    if (p < t.size()) {
        const char c = t[p];
        if (c == 'e' || c == 'E' || c == 'd' || c == 'D') ++p;
        else if (c != '+' && c != '-') return false;
        s += 'e';
        if (p < t.size() && (t[p] == '+' || t[p] == '-')) s += t[p++];
        int ed = 0;
        while (p < t.size() && t[p] >= '0' && t[p] <= '9') { s += t[p++]; ++ed; }
        if (ed == 0 || p != t.size()) return false;
    }
    errno = 0;
    const double x = std::strtod(s.c_str(), nullptr);
    if (!std::isfinite(x)) return false;
    v = x;
    return true;
}

ReadStatus RecordReader::list(std::span<const Slot> slots)
{
    problem_.clear();
    std::size_t n = 0;                 // slots filled or skipped so far
    if (slots.empty()) {
        if (!next_line()) { problem_ = "end of file"; return ReadStatus::eof; }
        return ReadStatus::ok;
    }
    while (n < slots.size()) {
        if (!next_line()) {
            problem_ = "end of file";
            return ReadStatus::eof;
        }
        std::size_t p = 0;
        const std::size_t len = line_.size();
        bool value_since_comma = false;  // a comma after a value is only a separator
        while (n < slots.size()) {
            while (p < len && (line_[p] == ' ' || line_[p] == '\t')) ++p;
            if (p >= len) break;       // the list goes on at the next line
            const char c = line_[p];
            if (c == '/') return ReadStatus::ok;
            if (c == ',') {
                if (!value_since_comma) ++n;  // ",," : a null value keeps the variable
                value_since_comma = false;
                ++p;
                continue;
            }
            std::size_t e = p;
            while (e < len && line_[e] != ' ' && line_[e] != '\t' && line_[e] != ',' && line_[e] != '/') ++e;
            std::string_view item(line_.data() + p, e - p);
            p = e;
            value_since_comma = true;
            int repeat = 1;
            std::string_view text = item;
            if (const auto star = item.find('*'); star != std::string_view::npos) {
                if (!parse_int(item.substr(0, star), repeat) || repeat < 1) {
                    problem_ = "bad repeat count in \"" + std::string(item) + "\"";
                    return ReadStatus::bad;
                }
                text = item.substr(star + 1);
            }
            for (int r = 0; r < repeat && n < slots.size(); ++r, ++n) {
                if (text.empty()) continue;  // r* : r null values
                const Slot& s = slots[n];
                bool good = s.i ? parse_int(text, *s.i) : parse_real(text, *s.d);
                if (!good) {
                    problem_ = std::string(s.i ? "expected an integer" : "expected a number") + ", found \"" +
                               std::string(text) + "\"";
                    return ReadStatus::bad;
                }
            }
        }
    }
    return ReadStatus::ok;
}
