#include "deck_check.hpp"

#include "control/run.hpp"

#include <fstream>
#include <sstream>

namespace {

class Collector final : public TraceSink {
public:
    std::vector<TraceEntry> trace;
    void read(const ReadTrace& r) override
    {
        TraceEntry e;
        e.text = r.record;
        e.title = r.title;
        e.first_line = r.first_line;
        e.last_line = r.last_line;
        e.values = r.values;
        e.rest = r.rest;
        e.status = r.status;
        e.problem = r.problem;
        trace.push_back(std::move(e));
    }
    void note(std::string_view text) override
    {
        TraceEntry e;
        e.is_note = true;
        e.text = text;
        trace.push_back(std::move(e));
    }
};

// The stop lines at the end of a listing: after its last blank line, each behind 10 blanks.
std::vector<std::string> stop_lines(const std::string& listing)
{
    const std::string text = "\n" + listing;
    const std::size_t end = text.find_last_not_of('\n');
    if (end == std::string::npos) return {};
    const std::size_t start = text.rfind("\n\n", end);
    if (start == std::string::npos) return {};
    std::vector<std::string> lines;
    std::istringstream in(text.substr(start + 2, end + 1 - (start + 2)));
    for (std::string l; std::getline(in, l);) lines.push_back(l);
    return lines;
}

std::vector<std::string> split(const std::string& s)
{
    std::vector<std::string> out;
    std::istringstream in(s);
    for (std::string w; in >> w;) out.push_back(w);
    return out;
}

// Records whose label does not carry the names of their values.
const std::map<std::string, std::string>& name_table()
{
    static const std::map<std::string, std::string> t = {
        {"record 2 (run options)", "kprt kcntrl kwt kint kintv kgo ksat kmass ktair krk kdz ksubtr kr1top kfreec"},
        {"record 11 (monitor well)", "ixw iyw izw1 izw2 more"},
        {"record 12 (fracture)", "ilx1 ilx2 ily1 ily2 ilz1 ilz2 idim iloc aperture more"},
        {"record 14 (element properties)", "j1 j2 ckx cky ckz tcx cps ps theta satw more"},
        {"record 15 (indexed properties)", "i1 i2 j1 j2 k1 k2 ckx cky ckz tcx cps ps theta satw more"},
        {"record 16 (surface air temperature set)", "ix1 ix2 surfmin amp period phase cutoff gradt gradx more"},
        {"record 17 (conductance layer thickness)", "surfmin amp period phase cutoff gradt gradx"},
        {"record 18 (conductance layer saturation)", "surfmin amp period phase cutoff gradt gradx"},
        {"record 19 (tide)", "surfmin amp period phase cutoff gradt gradx"},
        {"record 23 (Wu, kr of the porous medium)", "p q Ts omega modelwu modelkr"},
        {"record 24 (Wu, kr of fractures)", "pfr qfr Tsfr omegafr modelwuf modelkrf"},
        {"record 25 (initial temperature block)", "i1 i2 j1 j2 k1 k2 t_bot t_top more"},
        {"record 26 (initial concentration block)", "i1 i2 j1 j2 k1 k2 c_bot c_top more"},
        {"record 32 (3D print times)", "tprint3d"},
        {"the boundary codes kb(1..7)", "kb"},
        {"a cosine watertable record", "ix1 ix2 rise amp_cos amp_sin wave_cos wave_sin slope phase more"},
        {"record T4 (heater)", "i1 i2 j1 j2 k1 k2 fluxin1 fluxin2 decay2 more"},
    };
    return t;
}

bool looks_like_values(const std::string& rest)
{
    const std::vector<std::string> w = split(rest);
    double v = 0;
    return !w.empty() && parse_real(w.front(), v);
}

std::string lines_of(const TraceEntry& e)
{
    if (e.first_line == 0) return "after line " + std::to_string(e.last_line);
    if (e.first_line == e.last_line) return "line " + std::to_string(e.first_line);
    return "lines " + std::to_string(e.first_line) + "-" + std::to_string(e.last_line);
}

std::string with_names(const TraceEntry& e)
{
    if (e.title) return "\"" + (e.values.empty() ? std::string() : e.values.front()) + "\"";
    const std::vector<std::string> names = value_names(e.text, e.values.size());
    std::string out;
    for (std::size_t k = 0; k < e.values.size(); ++k) {
        if (k) out += ' ';
        if (k < names.size()) out += names[k] + "=";
        out += e.values[k].empty() ? std::string("(null)") : e.values[k];
    }
    return out;
}

// What the trailing `more` of a complete list record says.
std::string more_meaning(const TraceEntry& e)
{
    const std::vector<std::string> names = value_names(e.text, e.values.size());
    if (e.status != ReadStatus::ok || names.empty() || names.back() != "more" || names.size() != e.values.size())
        return "";
    if (e.text.starts_with("record 16")) return "";  // its own rule, noted by the reader
    int more = 0;
    if (!parse_int(e.values.back(), more)) return "";
    if (e.text.starts_with("record T1"))
        return more > 0 ? "more > 0: another interval follows" : "more <= 0: the last interval, the deck ends after it";
    return more > 0 ? "more > 0: another record of this list follows" : "more <= 0: the list ends";
}

const TraceEntry* last_read(const DeckCheck& c)
{
    for (auto it = c.trace.rbegin(); it != c.trace.rend(); ++it)
        if (!it->is_note) return &*it;
    return nullptr;
}

// The name of a read for a one-line summary: a record of a boundary section takes the
// section and the face from the notes before it ("record 13h (boundary section, heat),
// face 6 (top): a Dirichlet patch (...)").
std::string record_name(const DeckCheck& c, const TraceEntry& e)
{
    if (e.text.empty()) return "an unnamed record";
    if (e.text.starts_with("record")) return e.text;
    std::string section, face;
    for (const TraceEntry& t : c.trace) {
        if (&t == &e) break;
        if (!t.is_note) continue;
        const std::string head = t.text.substr(0, t.text.find(':'));
        if (head.starts_with("record 13")) {
            section = head;
            face.clear();
        } else if (head.starts_with("face ")) {
            face = head;
        }
    }
    if (section.empty()) return e.text;
    return section + (face.empty() ? std::string() : ", " + face) + ": " + e.text;
}

}  // namespace

std::vector<std::string> value_names(const std::string& label, std::size_t count)
{
    std::vector<std::string> names;
    if (const auto t = name_table().find(label); t != name_table().end()) {
        names = split(t->second);
    } else {
        const std::size_t open = label.rfind('('), close = label.rfind(')');
        if (open == std::string::npos || close == std::string::npos || close < open) return {};
        names = split(label.substr(open + 1, close - open - 1));
    }
    if (names.size() == 1 && count > 1) {  // one array: name(1), name(2), ...
        const std::string base = names.front();
        names.clear();
        for (std::size_t k = 1; k <= count; ++k) names.push_back(base + "(" + std::to_string(k) + ")");
    }
    return names;
}

bool read_deck_files(const std::filesystem::path& deck, std::map<std::string, std::string>& texts)
{
    const auto slurp = [](const std::filesystem::path& p, std::string& text) {
        std::error_code ec;
        if (!std::filesystem::is_regular_file(p, ec)) return false;
        std::ifstream in(p, std::ios::binary);
        if (!in) return false;
        std::ostringstream s;
        s << in.rdbuf();
        text = s.str();
        return true;
    };
    texts.clear();
    if (!slurp(deck, texts["gelmor.data"])) return false;
    const std::filesystem::path dir = deck.parent_path().empty() ? std::filesystem::path(".") : deck.parent_path();
    for (const char* name : {"grid3d.plt", "fgen92.asc", "hinput.data", "tair.data", "hbdy.data", "bzin.data",
                             "veloc2d_in.data", "slope_zt.data", "therm_in.data"})
        if (std::string t; slurp(dir / name, t)) texts[name] = std::move(t);
    return true;
}

DeckCheck check_deck(const std::map<std::string, std::string>& texts)
{
    Collector sink;
    const InputRun run = run_input_in_memory(texts, RunScope::deck, &sink);
    DeckCheck c;
    c.trace = std::move(sink.trace);
    c.stopped = run.stopped;
    c.status = run.status;
    c.listing = run.listing;
    if (c.stopped) c.message = stop_lines(c.listing);
    return c;
}

std::string stop_summary(const DeckCheck& c)
{
    if (!c.stopped) return "";
    const TraceEntry* e = last_read(c);
    if (!e) return "the run stops before it reads a record (no deck gelmor.data?)";
    const std::string rec = record_name(c, *e);
    if (e->status == ReadStatus::eof)
        return "the deck ends after line " + std::to_string(e->last_line) + " inside " + rec + ": " +
               std::to_string(e->values.size()) + " value(s) taken, more expected";
    if (e->status == ReadStatus::bad) {
        std::string where = "line " + std::to_string(e->last_line) + ", " + rec;
        const std::vector<std::string> names = value_names(e->text, e->values.size());
        if (!e->values.empty() && names.size() >= e->values.size())
            where += ", value " + std::to_string(e->values.size()) + " (" + names[e->values.size() - 1] + ")";
        return where + ": " + e->problem;
    }
    // an input file read after the last record is where the run stopped
    std::string file;
    for (auto it = c.trace.rbegin(); it != c.trace.rend() && it->is_note; ++it)
        if (const std::size_t p = it->text.find(": read here"); p != std::string::npos) file = it->text.substr(0, p);
    if (!file.empty())
        return "the run stops in the input file " + file + ", read after " + rec + " (" + lines_of(*e) + ")";
    return "the run stops after " + rec + " (" + lines_of(*e) + "): " + with_names(*e);
}

std::string deck_report(const DeckCheck& c, const std::string& deck_text)
{
    std::ostringstream out;
    for (const TraceEntry& e : c.trace) {
        if (e.is_note) {
            out << "            -- " << e.text << "\n";
            continue;
        }
        std::string where = lines_of(e);
        where.resize(std::max<std::size_t>(where.size(), 11), ' ');
        out << where << " " << (e.text.empty() ? std::string("(unnamed read)") : e.text) << ": " << with_names(e)
            << "\n";
        if (const std::string m = more_meaning(e); !m.empty()) out << "            -- " << m << "\n";
        if (looks_like_values(e.rest))
            out << "            !! the rest of line " << e.last_line << " is dropped, and it looks like values, not a"
                << " remark: \"" << e.rest.substr(e.rest.find_first_not_of(" \t,")) << "\"\n";
    }
    out << "\n";
    if (c.stopped) {
        out << "STOP: " << stop_summary(c) << "\n";
        const TraceEntry* e = last_read(c);
        if (e && e->status != ReadStatus::ok && e->first_line != e->last_line)
            out << "      this record took its values from " << lines_of(*e) << ": a record that runs short takes"
                << " the next line's values, so an earlier record may be on the wrong line (an option that makes a"
                << " section appear or vanish shifts every record after it)\n";
        out << "the program stops with:\n";
        for (const std::string& l : c.message) out << l << "\n";
        return out.str();
    }
    const TraceEntry* e = last_read(c);
    const int last = e ? e->last_line : 0;
    int lines = 0, unread = 0;
    std::istringstream in(deck_text);
    for (std::string l; std::getline(in, l);) {
        ++lines;
        if (lines > last && l.find_first_not_of(" \t\r") != std::string::npos) ++unread;
    }
    out << "the deck reads to its end at line " << last << ", the last record of the last interval";
    if (unread > 0) out << "; " << unread << " non-blank line(s) after it are never read";
    out << "\n";
    return out.str();
}
