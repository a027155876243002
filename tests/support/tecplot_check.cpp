#include "support/tecplot_check.hpp"

#include <cctype>
#include <cstdlib>
#include <regex>
#include <sstream>

namespace {

std::string lower(std::string s)
{
    for (char& c : s) c = (char)std::tolower((unsigned char)c);
    return s;
}

std::string trim_left(const std::string& s)
{
    std::size_t i = s.find_first_not_of(' ');
    return i == std::string::npos ? std::string() : s.substr(i);
}

// The line without its quoted strings, so that keys inside titles do not count.
std::string unquoted(const std::string& s)
{
    std::string out;
    bool in = false;
    for (char c : s) {
        if (c == '"') {
            in = !in;
            continue;
        }
        if (!in) out += c;
    }
    return out;
}

bool digits(const std::string& s, std::size_t from, std::size_t n)
{
    if (from + n > s.size()) return false;
    for (std::size_t i = from; i < from + n; ++i)
        if (!std::isdigit((unsigned char)s[i])) return false;
    return true;
}

// What a zone line promises.
struct Zone {
    long long points = 1;  // i*j*k, or the points of one open record set
    bool open = false;     // a 9999/999 count without a closing count line
    int shared = 0;        // variables shared with the previous zone
    int line = 0;
};

const char* const kind_name[] = {"E", "F", "I"};
std::string describe(const FieldFormat& f)
{
    const int k = f.kind == 'E' ? 0 : f.kind == 'F' ? 1 : 2;
    return std::string(kind_name[k]) + std::to_string(f.w) + (f.kind == 'I' ? "" : "." + std::to_string(f.d));
}

}  // namespace

std::string CheckReport::text() const
{
    std::string s;
    for (const std::string& e : errors) s += e + "\n";
    return s;
}

bool well_formed_field(const std::string& s, const FieldFormat& f)
{
    if ((int)s.size() != f.w) return false;
    std::size_t i = s.find_first_not_of(' ');
    if (i == std::string::npos) return false;
    if (s[i] == '-') ++i;
    if (f.kind == 'I') return i < s.size() && digits(s, i, s.size() - i);
    if (f.kind == 'F') {
        const std::size_t dot = s.find('.', i);
        if (dot == std::string::npos || !digits(s, i, dot - i)) return false;
        return s.size() - dot - 1 == (std::size_t)f.d && digits(s, dot + 1, f.d);
    }
    // E: "0." d digits, then "E+xx" or "+xxx"
    if (s.compare(i, 2, "0.") != 0 || !digits(s, i + 2, f.d)) return false;
    const std::size_t e = i + 2 + f.d;
    const std::string ex = s.substr(e);
    if (ex.size() == 4 && ex[0] == 'E' && (ex[1] == '+' || ex[1] == '-')) return digits(ex, 2, 2);
    if (ex.size() == 4 && (ex[0] == '+' || ex[0] == '-')) return digits(ex, 1, 3);
    return false;
}

CheckReport check_plot_text(const std::string& text, const RecordLayout& layout)
{
    CheckReport rep;
    std::vector<std::string> lines;
    {
        std::istringstream in(text);
        for (std::string l; std::getline(in, l);) lines.push_back(l);
    }
    auto fail = [&](int ln, const std::string& what) { rep.errors.push_back("line " + std::to_string(ln) + ": " + what); };

    // the closing count line, if any, stands for the open zone counts
    long long closing = -1;
    const std::regex count_re(R"(^number of print times: +(\d+) \(replace 9999 above\)$)");
    for (std::size_t n = 0; n < lines.size(); ++n) {
        std::smatch m;
        if (std::regex_match(lines[n], m, count_re)) {
            if (n + 1 != lines.size()) fail((int)n + 1, "count line is not the last line");
            closing = std::atoll(m[1].str().c_str());
        }
    }

    const std::regex dim_re(R"((^|[^A-Za-z])([ijkIJK])= *(\d+))");
    const std::regex share_re(R"([Dd]=\(([0-9, ]*)\))");
    const int row_width = [&] {
        int w = 0;
        for (const FieldFormat& f : layout.row) w += f.w;
        return w;
    }();
    const int values_per_row = layout.row.empty() ? layout.per_row : (int)layout.row.size();

    bool in_zone = false;
    Zone z;
    long long zone_values = 0;
    bool short_row = false;  // the last data row of the zone was not full
    auto close_zone = [&](int ln) {
        if (!in_zone) return;
        const long long per_point = rep.variables - z.shared;
        if (per_point <= 0) {
            fail(z.line, "zone shares all its variables");
        } else if (z.open) {
            if (zone_values % (z.points * per_point) != 0)
                fail(ln, "open zone holds " + std::to_string(zone_values) + " values, not whole points of " +
                             std::to_string(per_point));
        } else if (zone_values != z.points * per_point) {
            fail(ln, "zone of line " + std::to_string(z.line) + " promises " + std::to_string(z.points * per_point) +
                         " values, holds " + std::to_string(zone_values));
        }
        in_zone = false;
    };

    for (std::size_t n = 0; n < lines.size(); ++n) {
        const int ln = (int)n + 1;
        const std::string& raw = lines[n];
        const std::string t = lower(trim_left(raw));
        if (raw.find('\r') != std::string::npos) fail(ln, "carriage return");
        if (t.rfind("number of print times:", 0) == 0) continue;
        if (t.rfind("title", 0) == 0 || t.rfind("text", 0) == 0) {
            if (raw.find('*') != std::string::npos) fail(ln, "asterisks in a header");
            if (t.rfind("text", 0) == 0 && t.find("zn=") == std::string::npos) fail(ln, "text line without zn=");
            continue;
        }
        if (t.rfind("variables", 0) == 0) {
            int quotes = 0;
            for (char c : raw) quotes += c == '"';
            if (quotes % 2 != 0) fail(ln, "unbalanced quotes in variables");
            rep.variables = quotes / 2;
            continue;
        }
        if (t.rfind("zone", 0) == 0) {
            close_zone(ln);
            if (rep.variables == 0) fail(ln, "zone before variables");
            if (raw.find('*') != std::string::npos) fail(ln, "asterisks in a zone line");
            const std::string u = unquoted(raw);
            z = Zone{};
            z.line = ln;
            for (auto it = std::sregex_iterator(u.begin(), u.end(), dim_re); it != std::sregex_iterator(); ++it) {
                long long v = std::atoll((*it)[3].str().c_str());
                if (v == 9999 || v == 999) {
                    if (closing >= 0) v = closing;
                    else {
                        z.open = true;
                        v = 1;
                    }
                }
                z.points *= v;
            }
            std::smatch m;
            if (std::regex_search(u, m, share_re)) {
                std::istringstream ls(m[1].str());
                for (std::string item; std::getline(ls, item, ',');) z.shared += 1;
                if (rep.zones == 0) fail(ln, "the first zone shares variables");
            }
            ++rep.zones;
            in_zone = true;
            zone_values = 0;
            short_row = false;
            continue;
        }
        // a data record
        if (!in_zone) {
            fail(ln, "data outside a zone");
            continue;
        }
        if (raw.find('*') != std::string::npos) fail(ln, "field overflowed into asterisks");
        if (short_row) fail(ln, "a short record before the end of its zone");
        int fields = 0;
        if (!layout.row.empty()) {
            if ((int)raw.size() != row_width) {
                fail(ln, "record of " + std::to_string(raw.size()) + " columns, not " + std::to_string(row_width));
                continue;
            }
            std::size_t at = 0;
            for (const FieldFormat& f : layout.row) {
                if (!well_formed_field(raw.substr(at, f.w), f))
                    fail(ln, "field '" + raw.substr(at, f.w) + "' is not " + describe(f));
                at += f.w;
                ++fields;
            }
        } else {
            const int w = layout.field.w;
            if (raw.empty() || raw.size() % w != 0) {
                fail(ln, "record of " + std::to_string(raw.size()) + " columns is not whole fields of " +
                             std::to_string(w));
                continue;
            }
            fields = (int)raw.size() / w;
            if (fields > layout.per_row) fail(ln, "more than " + std::to_string(layout.per_row) + " fields");
            for (int k = 0; k < fields; ++k) {
                const std::string f = raw.substr(k * w, w);
                if (!well_formed_field(f, layout.field)) fail(ln, "field '" + f + "' is not " + describe(layout.field));
            }
        }
        short_row = fields < values_per_row;
        zone_values += fields;
        rep.values += fields;
    }
    close_zone((int)lines.size());
    return rep;
}

const std::vector<ResultFile>& result_files()
{
    const RecordLayout top{FieldFormat{}, 0,
                           {{'E', 12, 4}, {'E', 12, 4}, {'I', 6, 0}, {'E', 15, 5}, {'E', 15, 5}, {'E', 15, 5},
                            {'E', 15, 5}, {'E', 15, 5}, {'E', 15, 5}, {'E', 15, 5}, {'E', 15, 5}, {'E', 15, 5},
                            {'E', 15, 5}, {'E', 15, 5}, {'E', 15, 5}}};
    static const std::vector<ResultFile> files = {
        {"gelmor_txz.plt", e_rows(5, 15, 6)},       {"gelmor_cxz.plt", e_rows(5, 15, 6)},
        {"tdif.out", e_rows(5, 15, 6)},             {"gelmor_hxz.plt", e_rows(3, 15, 6)},
        {"gelmor_tyz.plt", e_rows(5, 15, 6)},       {"gelmor_hyz.plt", e_rows(3, 15, 6)},
        {"gelmor_txy_cxy.plt", e_rows(5, 15, 6)},   {"gelmor_hxy.plt", e_rows(5, 15, 6)},
        {"t1dz.plt", e_rows(7, 15, 5)},             {"t1dx.plt", e_rows(3, 15, 6)},
        {"t1dx_bzq.plt", e_rows(6, 15, 6)},         {"t1dx_hflux_xl.plt", e_rows(2, 15, 6)},
        {"gelmor-debug_1dx.plt", e_rows(3, 15, 6)}, {"tbck.out", e_rows(3, 15, 6)},
        {"gelmor_tpeak.plt", e_rows(5, 15, 6)},     {"k.plt", e_rows(7, 16, 7)},
        {"heatfluxtop.plt", top},                   {"heatflux_2Dsurface.plt", e_rows(4, 15, 6)},
        {"heatflux_bndy.plt", e_rows(10, 15, 5)},   {"htot_flux.plt", e_rows(6, 16, 8)},
        {"peaktrace.plt", e_rows(3, 16, 8)},        {"t1dz_tdum.plt", e_rows(4, 15, 5)},
        {"t1dx_tdum.plt", e_rows(4, 15, 5)},        {"t1dz_time.plt", e_rows(4, 15, 5)},
        {"t1dx_time.plt", e_rows(4, 15, 5)},        {"veloc2dxz.out", e_rows(6, 14, 6)},
        {"veloc2dxy.out", e_rows(6, 14, 6)},        {"veloc2dyz.out", e_rows(6, 14, 6)},
        {"veloc3d.out", e_rows(6, 14, 6)},          {"vfracxz.out", e_rows(4, 15, 6)},
        {"vfracxy.out", e_rows(4, 15, 6)},          {"vfracxyelemset1.plt", e_rows(4, 15, 6)},
        {"gelmor_Pe_Co_xz.plt", e_rows(6, 15, 6)},  {"tc3d1_gelmor.out", e_rows(6, 15, 6)},
        {"tc3d2_gelmor.out", e_rows(6, 15, 6)},     {"tc3d3_gelmor.out", e_rows(6, 15, 6)},
        {"tc3d4_gelmor.out", e_rows(6, 15, 6)},     {"tc3d5_gelmor.out", e_rows(6, 15, 6)},
        {"tc3d_gelmormovie.out", e_rows(5, 15, 6)}, {"gelmor_mass.out", e_rows(4, 15, 6)},
    };
    return files;
}
