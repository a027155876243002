#!/usr/bin/env python3
"""Heat balance: the stored heat of the program's balance output against its boundary fluxes.

1. Held ends.  The deck's column (2 m of 0.025 m layers, still saturated ground) starts at
   4 C with its top node at 6 C; the top is held at 6 C and the base at 4 C for 60 days.
   The heat content htota of htot_flux.plt (computed at every moment step, kmomfreq 1) must
   change by the time integral of the conductive fluxes of heatflux_bndy.plt, in through
   the top and out through the base: dH/dt = hflxbot - hflxtop (both are -k dT/dz, positive
   downward).  The fluxes are taken at the new time level of each step, as the fully
   implicit conduction uses them.  Tolerance: 1 % of the heat gained in 60 days, at every
   step.  The fluxes are the gradients across the first and last layers, that is at their
   mid-depths, so they miss the heat stored in the outer half of each end layer; a series
   of 20, 40 and 80 layers shows that part falling with dz.  At 60 days the column is
   steady (time constant L^2/(pi^2 alpha) = 8.6 days) and both fluxes must equal
   k (6 - 4)/2 m within 0.5 %.
2. Insulated.  The same column with zero-flux ends, lower half at 4 C and upper half at
   8 C: the listing's "heat balance (%)" line of every step must stay within 0.001 %, and
   htota within 1e-4 of its start (water's density, and so the capacity, depends on T:
   the content summed with the capacity at each element's own temperature is not exactly
   the conserved quantity)."""
import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import closed
import gv

DAY = 86400.0
K = closed.bulk_conductivity(0.3, 2.0)


def deck(text, layers=80):
    return gv.z_column(text, layers, 4.0, 6.0)


def contents(run_dir):
    """(days, htota) of htot_flux.plt, the setup's record first."""
    _, zones = gv.read_plot_file(run_dir / "htot_flux.plt")
    return [(r[0], r[2]) for r in zones[0].rows]


def closure(run_dir):
    """Days, stored heat gained, heat let in by the boundaries, and the last row of fluxes."""
    h = contents(run_dir)
    _, zones = gv.read_plot_file(run_dir / "heatflux_bndy.plt")
    days, stored, through, q = [0.0], [0.0], [0.0], 0.0
    for (t, H), row in zip(h[1:], zones[0].rows):
        dt = (t - days[-1]) * DAY
        q += dt * (row[6] - row[5])
        days.append(t)
        stored.append(H - h[0][1])
        through.append(q)
    return days, stored, through, zones[0].rows[-1]


def closure_error(stored, through):
    return max(abs(s - q) for s, q in zip(stored, through)) / stored[-1]


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
text = gv.case_deck(a)
days, stored, through, last = closure(gv.run(a, deck(text)))
rep.check("held ends: |dH - boundary heat| / heat gained", closure_error(stored, through), 0.01)
steady = K * 2.0 / 2.0
rep.check("held ends: top flux at 60 days / k dT/L - 1", abs(-last[5] / steady - 1), 0.005)
rep.check("held ends: base flux at 60 days / k dT/L - 1", abs(-last[6] / steady - 1), 0.005)
series = [closure_error(*closure(gv.run(a, deck(text, n), f"dz{n}"))[1:3]) for n in (20, 40, 80)]
gv.check_refinement(rep, "closure, dz", [0.1, 0.05, 0.025], series)

insulated = gv.set_records(text, (("[heat kb]", "0 0 0 0 2 2 0"),
                                  ("[heat base]", "1 2 1 2 0.0 0"),
                                  ("[heat top]", "1 2 1 2 0.0 0"),
                                  ("[tinit body]", "1 2 1 2 1 40 4.0 4.0 1"),
                                  ("[tinit top]", "1 2 1 2 41 81 8.0 8.0 0")))
d = gv.run(a, insulated, "insulated")
lines = [float(v) for v in re.findall(r"heat balance \(%\) \.+\s+(\S+)", (d / "gelmor.lst").read_text())]
rep.note(f"insulated: {len(lines)} balance lines")
rep.check("insulated: |heat balance (%)| of the listing, max", max(abs(v) for v in lines) if lines else 1e9, 1e-3)
h = contents(d)
rep.check("insulated: |htota - htota(0)| / htota(0), max", max(abs(H - h[0][1]) for _, H in h) / h[0][1], 1e-4)

gv.svg_panels(a.plot, [
    {"title": "Held ends: heat stored and let in", "xlabel": "t (days)", "ylabel": "J", "series": [
        {"label": "htota - htota(0)", "x": days[::4], "y": stored[::4], "style": "points"},
        {"label": "sum dt (in - out)", "x": days, "y": through}]},
    {"title": "Insulated: heat content", "xlabel": "t (days)", "ylabel": "htota / htota(0) - 1", "series": [
        {"label": "htota", "x": [t for t, _ in h], "y": [H / h[0][1] - 1 for _, H in h]}]}])
rep.finish()
