#include "input/record_reader.hpp"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {
// A value as a message shows it: control bytes (a NUL among them) escaped, so that the
// listing stays text.
std::string shown(std::string_view v)
{
    std::string out;
    for (const char ch : v) {
        const unsigned char c = static_cast<unsigned char>(ch);
        if (c >= 32 && c != 127) {
            out.push_back(ch);
            continue;
        }
        static const char hex[] = "0123456789abcdef";
        out += c == 0 ? std::string("\\0") : std::string("\\x") + hex[c >> 4] + hex[c & 15];
    }
    return out;
}
}  // namespace

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
    if (trace_) {
        taken_.clear();
        first_line_ = 0;
    }
    if (!next_line()) {
        problem_ = "end of file";
        if (trace_) report(ReadStatus::eof, true);
        return ReadStatus::eof;
    }
    text = line_.substr(0, 80);
    if (trace_) {
        take(text);
        report(ReadStatus::ok, true);
    }
    return ReadStatus::ok;
}

void RecordReader::take(std::string_view text)
{
    if (first_line_ == 0) first_line_ = line_no_;
    taken_.emplace_back(text);
}

void RecordReader::report(ReadStatus st, bool title)
{
    std::string_view rest;
    if (!title && st == ReadStatus::ok && line_open_) {
        const std::size_t from = pos_ + (slashed_ ? 1 : 0);  // past the "/" that ended the list
        if (from < line_.size()) rest = std::string_view(line_).substr(from);
    }
    const ReadTrace r{label_, title, first_line_, line_no_, taken_, rest, st,
                      st == ReadStatus::ok ? std::string_view() : std::string_view(problem_)};
    trace_->read(r);
    label_.clear();
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

void RecordReader::begin_list()
{
    problem_.clear();
    line_open_ = false;
    slashed_ = false;
    repeat_left_ = 0;
    if (trace_) {
        taken_.clear();
        first_line_ = 0;
        by_value_ = true;
    }
}

void RecordReader::end_list()
{
    if (trace_ && by_value_) report(ReadStatus::ok, false);
    line_open_ = false;  // the rest of the line is a remark
}

ReadStatus RecordReader::next_item(std::string_view& text)
{
    if (repeat_left_ > 0) {
        --repeat_left_;
        text = repeat_text_;
        return ReadStatus::ok;
    }
    for (;;) {
        if (!line_open_) {
            if (!next_line()) {
                problem_ = "end of file";
                return ReadStatus::eof;
            }
            line_open_ = true;
            pos_ = 0;
            value_since_comma_ = false;
        }
        const std::size_t len = line_.size();
        while (pos_ < len && (line_[pos_] == ' ' || line_[pos_] == '\t')) ++pos_;
        if (pos_ >= len) {
            line_open_ = false;  // the list goes on at the next line
            continue;
        }
        const char c = line_[pos_];
        if (c == '/') {
            slashed_ = true;
            return ReadStatus::ok;
        }
        if (c == ',') {
            ++pos_;
            if (!value_since_comma_) {  // ",," : a null value keeps the variable
                text = {};
                return ReadStatus::ok;
            }
            value_since_comma_ = false;
            continue;
        }
        std::size_t e = pos_;
        while (e < len && line_[e] != ' ' && line_[e] != '\t' && line_[e] != ',' && line_[e] != '/') ++e;
        const std::string_view item(line_.data() + pos_, e - pos_);
        pos_ = e;
        value_since_comma_ = true;
        const auto star = item.find('*');
        if (star == std::string_view::npos) {
            text = item;
            return ReadStatus::ok;
        }
        int repeat = 0;
        if (!parse_int(item.substr(0, star), repeat) || repeat < 1) {
            problem_ = "bad repeat count in \"" + shown(item) + "\"";
            return ReadStatus::bad;
        }
        repeat_text_ = std::string(item.substr(star + 1));
        repeat_left_ = repeat - 1;
        text = repeat_text_;
        return ReadStatus::ok;
    }
}

ReadStatus RecordReader::value(const Slot& s)
{
    if (slashed_) return ReadStatus::ok;
    std::string_view text;
    ReadStatus st = next_item(text);
    if (trace_ && st == ReadStatus::ok) take(slashed_ ? std::string_view("/") : text);
    if (st == ReadStatus::ok && !slashed_ && !text.empty() && !(s.i ? parse_int(text, *s.i) : parse_real(text, *s.d))) {
        problem_ = std::string(s.i ? "expected an integer" : "expected a number") + ", found \"" + shown(text) + "\"";
        st = ReadStatus::bad;
    }
    if (trace_ && by_value_ && st != ReadStatus::ok) {
        report(st, false);
        by_value_ = false;  // reported once, whether or not the caller ends the list
    }
    return st;
}

ReadStatus RecordReader::list(std::span<const Slot> slots)
{
    begin_list();
    by_value_ = false;
    const ReadStatus st = list_values(slots);
    if (trace_) report(st, false);
    if (st == ReadStatus::ok) line_open_ = false;  // the rest of the line is a remark
    return st;
}

ReadStatus RecordReader::list_values(std::span<const Slot> slots)
{
    if (slots.empty()) {
        if (!next_line()) { problem_ = "end of file"; return ReadStatus::eof; }
        return ReadStatus::ok;
    }
    for (const Slot& s : slots) {
        const ReadStatus st = value(s);
        if (st != ReadStatus::ok) return st;
    }
    return ReadStatus::ok;
}
