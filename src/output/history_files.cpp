#include "output/history_files.hpp"

namespace {

// Zone line of a series: the record count, then the zone title.
void series_zone(std::string& b, const char* head, long long count, std::string_view title)
{
    add(b, head);
    add_count(b, count);
    add(b, title);
}

}  // namespace

void write_break(std::ostream& os, const Histories& h, long long numit, std::string& b)
{
    add(b, "title=\"breakthrough data set at ");
    add_count(b, h.nbt);
    add_line(b, " wells\"");
    add_line(b, "variables=\"time\",\"Havg\",\"Tavg\",\"Tpeak\",\"Tmin\",\"cpkwell\"");
    for (int w = 1; w <= h.nbt; ++w) {
        series_zone(b, "zone i= ", numit, ", T=\"monitor ");
        b += fmt_i(w, 3);
        add_line(b, "\"");
        Rows r = begin_rows(os, b, 6, 15, 6);
        for (long long n = 1; n <= numit; ++n) {
            put(r, h.ttime[n]);
            for (const std::vector<float>* v : {&h.havgw, &h.tavgw, &h.tpeakw, &h.tminw, &h.cpeakw})
                put(r, hist_at(*v, h.nbt, n, w));
        }
        end_rows(r);
    }
    write_block(os, b);
}

namespace {

// One front file: its header and a zone of numit rows of the given series.
void front_file(std::ostream& os, std::string_view title, std::string_view variables, const std::string& zone,
                std::initializer_list<const std::vector<float>*> cols, long long numit, std::string& b)
{
    add_line(b, title);
    add_line(b, variables);
    series_zone(b, "zone i= ", numit, zone);
    b.push_back('\n');
    Rows r = begin_rows(os, b, (int)cols.size(), 15, 5);
    for (long long n = 1; n <= numit; ++n)
        for (const std::vector<float>* v : cols) put(r, (*v)[n]);
    end_rows(r);
}

}  // namespace

void write_fronts(std::ostream& xs, std::ostream& zs, const Histories& h, long long numit, double ts, std::string& b)
{
    // the front temperature goes into both zone titles
    const std::string zone = ", T=\"ts=" + fmt_e(ts, 13, 6) + "\"";
    front_file(xs, "title=\"freezing front location: 1dx at knoy(1),knoz(1)\"", "variables=\"time(days)\",\"x(m)\"",
               zone, {&h.ttime, &h.xfront}, numit, b);
    front_file(zs, "title=\"freeze/thaw front location: 1dz at knox(1),knoy(1)\"",
               "variables=\"time(days)\",\" z_T>0\",\"z_T<0\"", zone, {&h.ttime, &h.zfront1, &h.zfront2}, numit, b);
}

void heater_profile_header(std::string& b)
{
    add_line(b, "Title=\"Multi-Heater Column 12cm avg, z vs Tavg\"");
    add_line(b, "variables=\"z\",\"12cmTavg\"");
}

// A step whose levels all lie too close to an end of the domain has no zone.
void write_heater_profile(std::ostream& os, const Histories& h, long long numit, double tdays, std::string& b)
{
    if (h.nlev < 1) return;
    series_zone(b, "zone i=", h.nlev, ",T=\" ");
    add_days(b, tdays);
    add_line(b, " days\"");
    Rows r = begin_rows(os, b, 2, 15, 5);
    for (int m = 1; m <= h.nlev; ++m) {
        put(r, h.hcz[m]);
        put(r, hist_at(h.hct, h.maxlev, numit, m));
    }
    end_rows(r);
}

void write_heater_series(std::ostream& os, const Histories& h, long long numit, std::string& b)
{
    add_line(b, "Title=\"Multi-Heater Column 12cm avg, Tavg vs. time\"");
    add_line(b, "variables=\"tdays\",\"12cmTavg\"");
    for (int m = 1; m <= h.nlev; ++m) {
        series_zone(b, "zone i= ", numit, ", T=\"z= ");
        append_e(b, h.hcz[m], 13, 6);
        add_line(b, "\"");
        Rows r = begin_rows(os, b, 2, 15, 6);
        // steps before the heater array existed, or beyond what it holds, read as zero
        for (long long n = 1; n <= numit; ++n) {
            put(r, h.ttime[n]);
            put(r, n <= h.hct_cap ? hist_at(h.hct, h.maxlev, n, m) : 0.0f);
        }
        end_rows(r);
    }
    write_block(os, b);
}
