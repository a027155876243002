#include "output/fortran_format.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {
std::string fit(const std::string& s, int w)
{
    if ((int)s.size() > w) return std::string(w, '*');
    return std::string(w - s.size(), ' ') + s;
}
}  // namespace

void append_e(std::string& out, double v, int w, int d)
{
    // The field is built in a stack buffer and appended once: the plot files write
    // millions of these, and no temporary string is made.
    char field[128];
    int len = 0;
    if (std::isnan(v) || std::isinf(v) || w <= 0 || w > 100 || d > 60) {
        out += fit(std::isnan(v) ? "NaN" : (v < 0 ? "-Infinity" : "Infinity"), std::max(w, 0));
        return;
    }
    const bool neg = std::signbit(v);
    char buf[96];
    int e = 0;
    const char* digits = "";
    int ndig = 0;
    if (d <= 0) {
        std::snprintf(buf, sizeof buf, "%.0E", std::fabs(v));
        e = (v == 0.0) ? 0 : std::atoi(std::strchr(buf, 'E') + 1) + 1;
    } else {
        // One rounding to d significant digits: 9.99999995 in E15.6 becomes 1.000000E+01,
        // and the shift to the 0.d... form carries the exponent to +02.
        const auto res = std::to_chars(buf, buf + sizeof buf, std::fabs(v), std::chars_format::scientific, d - 1);
        *res.ptr = '\0';
        if (d > 1) buf[1] = buf[0];  // the digits run on without the point
        digits = (d > 1) ? buf + 1 : buf;
        ndig = d;
        e = (v == 0.0) ? 0 : std::atoi(std::strchr(buf, 'e') + 1) + 1;
    }
    if (std::abs(e) > 999) {
        out.append(w, '*');
        return;
    }
    if (neg) field[len++] = '-';
    field[len++] = '0';
    field[len++] = '.';
    std::memcpy(field + len, digits, ndig);
    len += ndig;
    // three exponent digits drop the E
    len += std::snprintf(field + len, sizeof field - len, std::abs(e) <= 99 ? "E%+03d" : "%+04d", e);
    if (len > w) {
        out.append(w, '*');
        return;
    }
    out.append(w - len, ' ');
    out.append(field, len);
}

std::string fmt_e(double v, int w, int d)
{
    std::string s;
    append_e(s, v, w, d);
    return s;
}

std::string fmt_f(double v, int w, int d)
{
    if (std::isnan(v)) return fit("NaN", w);
    if (std::isinf(v)) return fit(v < 0 ? "-Infinity" : "Infinity", w);
    char buf[400];
    std::snprintf(buf, sizeof buf, "%.*f", d, v);
    std::string s = buf;
    if ((int)s.size() > w) {
        // the zero before the point is optional in a fixed field
        const std::size_t z = (s[0] == '-') ? 1 : 0;
        if (s.size() > z + 1 && s[z] == '0' && s[z + 1] == '.') s.erase(z, 1);
    }
    return fit(s, w);
}

std::string fmt_i(long long v, int w)
{
    return fit(std::to_string(v), w);
}

std::string fmt_a(std::string_view s, int w)
{
    if ((int)s.size() >= w) return std::string(s.substr(0, w));
    return std::string(w - s.size(), ' ') + std::string(s);
}

std::string fmt_free_real(double v)
{
    // 17 significant digits; fixed form for 0.1 <= |v| < 1e17 and for zero, with five
    // trailing blanks where the exponent would stand, else E form with a 3-digit exponent.
    const double a = std::fabs(v);
    char buf[128];
    if (std::isnan(v) || std::isinf(v)) {
        std::snprintf(buf, sizeof buf, "%s", std::isnan(v) ? "NaN" : (v < 0 ? "-Infinity" : "Infinity"));
        return fit(buf, 25);
    }
    if (a == 0.0) return fit(std::signbit(v) ? "-0.0000000000000000" : "0.0000000000000000", 20) + "     ";
    std::snprintf(buf, sizeof buf, "%.16E", a);
    int e = std::atoi(std::strchr(buf, 'E') + 1);  // a = m * 10^e after rounding, 1 <= m < 10
    if (e >= -1 && e < 17) {
        // digits after the point so that 17 significant digits show
        const int dec = 16 - e;
        std::snprintf(buf, sizeof buf, "%s%.*f", std::signbit(v) ? "-" : "", dec, a);
        std::string s = buf;
        if (dec == 0) s += ".";
        return fit(s, 20) + "     ";
    }
    std::string mant(buf, std::strchr(buf, 'E'));
    char ex[16];
    std::snprintf(ex, sizeof ex, "E%+04d", e);
    return fit((std::signbit(v) ? "-" : "") + mant + ex, 25);
}

FreeLine& FreeLine::operator<<(std::string_view s)
{
    if (after_number_ || s_.empty()) s_ += ' ';
    after_number_ = false;
    s_.append(s);
    return *this;
}

FreeLine& FreeLine::operator<<(int v)
{
    after_number_ = true;
    s_ += ' ';  // the separator, or the blank that starts the record
    s_ += fmt_i(v, 11);
    return *this;
}

FreeLine& FreeLine::operator<<(long long v)
{
    after_number_ = true;
    s_ += ' ';  // the separator, or the blank that starts the record
    s_ += fmt_i(v, 20);
    return *this;
}

FreeLine& FreeLine::operator<<(double v)
{
    after_number_ = true;
    s_ += ' ';  // the separator, or the blank that starts the record
    s_ += fmt_free_real(v);
    return *this;
}

FreeLine& FreeLine::operator<<(bool v)
{
    after_number_ = true;
    s_ += ' ';  // the separator, or the blank that starts the record
    s_ += v ? 'T' : 'F';
    return *this;
}
