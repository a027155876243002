#include "timeloop/time_loop.hpp"

#include "control/run_state.hpp"
#include "output/fortran_format.hpp"
#include "timeloop/intervals.hpp"

namespace {

// T3: patch temperatures of the surface; a record with a zero index ends the list.
void read_patch_list(RecordReader& rd, const Listing& lst)
{
    PatchRecord p;
    bool active = false;
    while (read_patch(rd, lst, p, active)) {
    }
}

// T4: heater columns; a record with an index at 0 or below ends the list at once.
void read_heater_list(RecordReader& rd, const Listing& lst)
{
    int more = 0;
    do {
        HeaterRecord h;
        read_heater(rd, lst, h, more);
        if (h.i1 <= 0 || h.i2 <= 0 || h.j1 <= 0 || h.j2 <= 0 || h.k1 <= 0 || h.k2 <= 0) {
            lst.line(free_line("0 entry for internal source elements, continuing..."));
            break;
        }
    } while (more > 0);
}

// T5: nodal fluid sources and sinks.
void read_source_list(RecordReader& rd, const Listing& lst)
{
    int more = 0;
    do {
        SourceRecord s;
        read_source(rd, lst, s, more);
    } while (more > 0);
}

}  // namespace

void time_loop(RunState&, RecordReader& rd, const Listing& lst, const Console&)
{
    IntervalRecord iv;
    do {
        read_interval_head(rd, lst, iv);
        read_patch_list(rd, lst);
        read_heater_list(rd, lst);
        read_source_list(rd, lst);
        lst.flush();
    } while (iv.more > 0);
}

void end_of_run(RunState&, const Listing& lst, const Console& con)
{
    const std::string tail[] = {"", "", std::string(10, ' ') + "**** normal exit ****", "", ""};
    for (const std::string& l : tail) lst.line(l);
    for (const std::string& l : tail) con.line(l);
}
