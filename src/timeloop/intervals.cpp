#include "timeloop/intervals.hpp"

#include "base/stop.hpp"
#include "input/deck_io.hpp"

void read_interval_times(RecordReader& rd, const Listing& lst, IntervalRecord& iv)
{
    const Slot t1[] = {iv.t1, iv.t2, iv.dt, iv.k2dfreq, iv.kflowfreq, iv.k3dfreq, iv.kmomfreq, iv.more};
    read_record_eof(rd, lst, "record T1 (t1 t2 dt k2dfreq kflowfreq k3dfreq kmomfreq more)",
                    {"error reading time step data ...", "program stopping ..."}, t1);
    if (!(iv.t1 < iv.t2)) stop_run(lst, {"error detected in time step data", "check and rerun ... program stopping "});
}

void read_interval_changes(RecordReader& rd, const Listing& lst, IntervalRecord& iv)
{
    read_worded(rd, lst, "record T2 (hinc rinc rtdiff bzfmult)", {"error reading hinc,rinc,rtdiff", "program stopping ..."},
                iv.hinc, iv.rinc, iv.rtdiff, iv.bzfmult);
}

bool read_patch(RecordReader& rd, const Listing& lst, PatchRecord& p, bool& active)
{
    int more = 0;
    read_plain(rd, lst, "record T3 (i1 i2 j1 j2 tpatch more)", p.i1, p.i2, p.j1, p.j2, p.tpatch, more);
    active = p.i1 != 0 && p.i2 != 0 && p.j1 != 0 && p.j2 != 0;
    if (!active) rd.note("an index 0: no patch, the list ends here whatever its more");
    return active && more > 0;
}

void read_heater(RecordReader& rd, const Listing& lst, HeaterRecord& h, int& more)
{
    read_worded(rd, lst, "record T4 (heater)",
                {"error in reading internal heat flux", "check i1,i2,j1,j2,k1,k2,fluxin1,fluxin2,decay2,more",
                 "program stopping"},
                h.i1, h.i2, h.j1, h.j2, h.k1, h.k2, h.fluxin1, h.fluxin2, h.decay2, more);
}

void read_source(RecordReader& rd, const Listing& lst, SourceRecord& s, int& more)
{
    read_plain(rd, lst, "record T5 (i j k1 k2 qs ts cs more)", s.i, s.j, s.k1, s.k2, s.qs, s.ts, s.cs, more);
}
