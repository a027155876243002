#!/usr/bin/env python3
"""Age column: groundwater age in steady one-dimensional flow.

The deck's column (100 m of 0.5 m bricks, v = 1e-5 m/s, D = al v = 5e-6 m2/s) starts at
age 0; every node ages one second a second (agefx 1, direct integration) and water of
age 0 enters at x = 0.  An age run reads no transport boundary section, so the inlet is
held at age 0 by a strong source of age-0 water on the inlet nodes (1 m3/s a node: a
third-type term whose steady inlet age is the node's growth over the source, a few hundredths of a second).

Closed forms, L/v = 1e7 s (115.7 days):
  - without dispersion, age = min(t, x/v): checked at the nodes off the front, farther
    than 4 sqrt(2 D t) from x = v t, within 0.02 L/v;
  - with dispersion, age = t - integral_0^t C(x, s) ds, C the Ogata-Banks response to a unit
    step at the inlet (Duhamel: t - age obeys the transport equation with t at the inlet);
    checked at every node within 0.02 L/v.
Print times 40, 80 and 160 days: fronts at 35 m and 69 m, and after the front has left
(age x/v everywhere)."""
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import closed
import gv

V, D, L = 1.0e-5, 5.0e-6, 100.0
LV, TOL = L / V, 0.02


def dispersed_age(x, t, n=400):
    """t minus the integral of the Ogata-Banks response over [0, t], by Simpson's rule."""
    h = t / n
    f = [closed.ogata_banks(x, k * h, V, D) if k else (1.0 if x == 0 else 0.0) for k in range(n + 1)]
    return t - h / 3 * (f[0] + f[-1] + 4 * sum(f[1:-1:2]) + 2 * sum(f[2:-1:2]))


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
d = gv.run(a, gv.case_deck(a))
series = []
for n in (1, 2, 3):
    days, rows = gv.read_field_file(d / f"tc3d{n}_gelmor.out")
    t = days * 86400.0
    line = gv.field_line(rows, 0, 4)
    band = 4 * (2 * D * t) ** 0.5
    off = [(x, age) for x, age in line if abs(x - V * t) > band]
    rep.check(f"{days:g} d: |age - min(t, x/v)| off front / (L/v)",
              max(abs(age - min(t, x / V)) for x, age in off) / LV, TOL)
    exact = [dispersed_age(x, t) for x, _ in line]
    rep.check(f"{days:g} d: |age - dispersed form| / (L/v), all nodes",
              max(abs(age - e) for (_, age), e in zip(line, exact)) / LV, TOL)
    xs = [x for x, _ in line]
    series.append({"label": f"gelmor {days:g} d", "x": xs[::4], "y": [age / 86400 for _, age in line[::4]],
                   "style": "points"})
    series.append({"label": f"dispersed {days:g} d", "x": xs, "y": [e / 86400 for e in exact]})
    series.append({"label": f"min(t, x/v) {days:g} d", "x": xs, "y": [min(t, x / V) / 86400 for x in xs]})
gv.svg_plot(a.plot, "Groundwater age along the column", "x (m)", "age (days)", series)
rep.finish()
