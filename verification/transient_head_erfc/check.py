#!/usr/bin/env python3
"""Transient head in a semi-infinite column after a step of head at its end:
h = h0 + dh erfc(x / (2 sqrt(K t / Ss))), with h0 = 10 m, dh = 1 m, K = 1e-6 m/s,
Ss = 1e-4 1/m (diffusivity 0.01 m2/s).  The column of the deck is 400 m long, far beyond
the reach of the front in a day (erfc of 400 m over 2 sqrt(K t / Ss) is below 1e-30).

A refinement series halves the bricks of both sub-intervals and the time step together:
(5 m, 20 m, 0.05 d), (2.5 m, 10 m, 0.025 d), (1.25 m, 5 m, 0.0125 d).  Each level's
largest nodal error at 1 day, as a fraction of the step dh, is reported; the errors must
fall from level to level, and the finest must be within 0.5% of the step.  The implicit
time step is first order, so each halving about halves the error."""
import math
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import gv

H0, DH, DIFF, TOL = 10.0, 1.0, 1.0e-6 / 1.0e-4, 0.005
LEVELS = ((40, 10, 0.05), (80, 20, 0.025), (160, 40, 0.0125))


def exact(x, t):
    return H0 + DH * math.erfc(x / (2 * math.sqrt(DIFF * t)))


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
deck = gv.case_deck(a)
errors, series = [], []
for n, (n1, n2, dt) in enumerate(LEVELS):
    ne = n1 + n2
    run = gv.set_record(deck, "[grid x]", f"{n1} {n2}")
    run = gv.set_record(run, "[elements]", f"1 {ne} 1.0e-6 1.0e-6 1.0e-6 2.0 800.0 2650.0 0.3 1.0 0")
    run = gv.set_record(run, "[tinit]", f"1 {ne + 1} 1 2 1 2 5.0 5.0 0")
    run = gv.set_record(run, "[time steps]", f"0.0 1.0 {dt} 1 1 1 1 0")
    d = gv.run(a, run, subdir=f"level{n + 1}")
    t, rows = gv.read_field_file(d / "tc3d2_gelmor.out")
    line = gv.field_line(rows, 0, 5)
    err = max(abs(h - exact(x, t * 86400.0)) for x, h in line) / DH
    errors.append(err)
    rep.note(f"level {n + 1}: dx {200.0 / n1:g} m / {200.0 / n2:g} m, dt {dt:g} d: "
             f"largest error at {t:g} d = {err:.3e} of the step")
    near = [(x, h) for x, h in line if x <= 200.0]
    series.append({"label": f"dx {200.0 / n1:g} m, dt {dt:g} d", "x": [x for x, _ in near],
                   "y": [(h - exact(x, t * 86400.0)) / DH for x, h in near]})
rep.check("finest level, largest error / dh at 1 d", errors[-1], TOL)
rep.check("errors fall with dx and dt (1 = no)", 0.0 if gv.falls(errors) else 1.0, 0.0)
gv.svg_plot(a.plot, "Step of head at x = 0: error at 1 day", "x (m)", "(h - closed form) / dh", series)
rep.finish()
