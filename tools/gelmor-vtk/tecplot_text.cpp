#include "tecplot_text.hpp"

#include <cctype>
#include <charconv>
#include <cstring>

namespace gvtk {

namespace {

std::string place(const std::string& file, long line)
{
    return line > 0 ? file + ":" + std::to_string(line) : file;
}

bool starts_with_word(std::string_view s, std::string_view word)
{
    if (s.size() < word.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i)
        if (std::tolower((unsigned char)s[i]) != word[i]) return false;
    return true;
}

std::string_view trim(std::string_view s)
{
    const std::size_t a = s.find_first_not_of(" \t\r");
    if (a == std::string_view::npos) return {};
    const std::size_t b = s.find_last_not_of(" \t\r");
    return s.substr(a, b - a + 1);
}

// The line with every quoted text blanked out, lower case: the keys of a zone line
// without the words of its title.
std::string keys_only(std::string_view s)
{
    std::string out(s);
    bool quoted = false;
    for (char& c : out) {
        const bool quote = c == '"';
        if (quoted || quote) c = ' ';
        else c = (char)std::tolower((unsigned char)c);
        if (quote) quoted = !quoted;
    }
    return out;
}

// The value of a count key such as "j=" in a keys-only zone line; false if absent.
bool zone_count(const LineReader& r, const std::string& keys, char key, long long& n)
{
    for (std::size_t p = keys.find(key); p != std::string::npos; p = keys.find(key, p + 1)) {
        if (p > 0 && (std::isalnum((unsigned char)keys[p - 1]) || keys[p - 1] == '_')) continue;
        std::size_t q = keys.find_first_not_of(' ', p + 1);
        if (q == std::string::npos || keys[q] != '=') continue;
        q = keys.find_first_not_of(' ', q + 1);
        const char* b = keys.data() + (q == std::string::npos ? keys.size() : q);
        const auto res = std::from_chars(b, keys.data() + keys.size(), n);
        if (res.ec != std::errc()) r.fail(std::string("zone line without a count after ") + key + "=");
        if (n < 1) r.fail(std::string("zone line with a count below 1 after ") + key + "=");
        return true;
    }
    return false;
}

}  // namespace

InputError::InputError(const std::string& file, long line, const std::string& what)
    : std::runtime_error(place(file, line) + ": " + what)
{
}

LineReader::LineReader(const std::filesystem::path& path) : name_(path.filename().string())
{
    f_ = std::fopen(path.c_str(), "rb");
    if (!f_) throw InputError(name_, 0, "cannot be opened");
    std::setvbuf(f_, nullptr, _IOFBF, 1 << 20);
}

LineReader::~LineReader()
{
    if (f_) std::fclose(f_);
}

bool LineReader::next()
{
    if (held_) {
        held_ = false;
        return true;
    }
    line_.clear();
    char buf[4096];
    bool any = false;
    while (std::fgets(buf, sizeof buf, f_)) {
        any = true;
        const std::size_t len = std::strlen(buf);
        if (len > 0 && buf[len - 1] == '\n') {
            line_.append(buf, len - 1);
            break;
        }
        line_.append(buf, len);
    }
    if (!any) return false;
    if (!line_.empty() && line_.back() == '\r') line_.pop_back();
    ++number_;
    return true;
}

LineKind kind_of(std::string_view line)
{
    const std::string_view s = trim(line);
    if (s.empty()) return LineKind::blank;
    if (starts_with_word(s, "title")) return LineKind::title;
    if (starts_with_word(s, "variables")) return LineKind::variables;
    if (starts_with_word(s, "zone")) return LineKind::zone;
    if (starts_with_word(s, "text")) return LineKind::text;
    if (starts_with_word(s, "number of print times")) return LineKind::count;
    return LineKind::data;
}

std::vector<std::string> quoted_names(std::string_view line)
{
    std::vector<std::string> names;
    for (std::size_t p = line.find('"'); p != std::string_view::npos;) {
        const std::size_t e = line.find('"', p + 1);
        if (e == std::string_view::npos) break;
        names.emplace_back(trim(line.substr(p + 1, e - p - 1)));
        p = line.find('"', e + 1);
    }
    return names;
}

bool read_header(LineReader& r, Header& h)
{
    bool any = false, names = false;
    while (r.next()) {
        any = true;
        const LineKind k = kind_of(r.line());
        if (k == LineKind::title) {
            const std::vector<std::string> q = quoted_names(r.line());
            h.title = q.empty() ? r.line() : q.front();
        } else if (k == LineKind::variables) {
            h.names = quoted_names(r.line());
            if (h.names.empty()) r.fail("variables line without names");
            names = true;
        } else if (k != LineKind::blank) {
            if (!names) r.fail("no variables line before the first zone or record");
            r.put_back();
            return true;
        }
    }
    if (any && !names) r.fail("no variables line");
    return any;
}

Zone parse_zone(const LineReader& r)
{
    const std::string& s = r.line();
    const std::string keys = keys_only(s);
    Zone z;
    zone_count(r, keys, 'i', z.i);
    zone_count(r, keys, 'j', z.j);
    zone_count(r, keys, 'k', z.k);
    // the title: the quoted text after "t="
    for (std::size_t p = keys.find('t'); p != std::string::npos; p = keys.find('t', p + 1)) {
        if (p > 0 && std::isalnum((unsigned char)keys[p - 1])) continue;
        const std::size_t q = keys.find_first_not_of(' ', p + 1);
        if (q == std::string::npos || keys[q] != '=') continue;
        const std::size_t open = s.find('"', q);
        const std::size_t close = open == std::string::npos ? open : s.find('"', open + 1);
        if (close == std::string::npos) r.fail("zone title without its closing quote");
        z.title = s.substr(open + 1, close - open - 1);
        break;
    }
    for (std::size_t p = keys.find('d'); p != std::string::npos; p = keys.find('d', p + 1)) {
        if (p > 0 && std::isalnum((unsigned char)keys[p - 1])) continue;
        const std::size_t q = keys.find_first_not_of(' ', p + 1);
        if (q != std::string::npos && keys[q] == '=') z.shared = true;
    }
    return z;
}

bool parse_field(std::string_view s, double& v)
{
    if (!s.empty() && s[0] == '+') s.remove_prefix(1);
    if (s.empty()) return false;
    const char* b = s.data();
    const char* e = b + s.size();
    auto res = std::from_chars(b, e, v);
    if (res.ec != std::errc()) return false;
    if (res.ptr == e) return true;
    // "0.1234-119": a mantissa without exponent, then a signed exponent of three digits
    if (*res.ptr != '-' && *res.ptr != '+') return false;
    for (const char* c = b; c < res.ptr; ++c)
        if (*c == 'e' || *c == 'E' || std::isalpha((unsigned char)*c)) return false;
    const char* x = res.ptr + 1;
    if (x == e) return false;
    for (const char* c = x; c < e; ++c)
        if (!std::isdigit((unsigned char)*c)) return false;
    std::string t(b, res.ptr);
    t += 'e';
    t.append(res.ptr, e);
    res = std::from_chars(t.data(), t.data() + t.size(), v);
    return res.ec == std::errc() && res.ptr == t.data() + t.size();
}

bool first_number(std::string_view text, double& v)
{
    for (std::size_t p = 0; p < text.size(); ++p) {
        const char c = text[p];
        const bool digit = std::isdigit((unsigned char)c);
        const bool lead = (c == '-' || c == '+' || c == '.') && p + 1 < text.size() &&
                          (std::isdigit((unsigned char)text[p + 1]) || text[p + 1] == '.');
        if (!digit && !lead) continue;
        if (p > 0 && std::isalpha((unsigned char)text[p - 1])) continue;  // a digit inside a word
        std::size_t e = p + 1;
        while (e < text.size() && text[e] != ' ' && text[e] != ',' && text[e] != '"') ++e;
        if (parse_field(text.substr(p, e - p), v)) return true;
        p = e;
    }
    return false;
}

long long closing_count(const LineReader& r)
{
    const std::string& s = r.line();
    const std::size_t colon = s.find(':');
    long long n = -1;
    if (colon != std::string::npos) {
        const std::size_t q = s.find_first_not_of(' ', colon + 1);
        if (q != std::string::npos) std::from_chars(s.data() + q, s.data() + s.size(), n);
    }
    if (n < 0) r.fail("no count in the closing line");
    return n;
}

}  // namespace gvtk
