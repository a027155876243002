#!/usr/bin/env python3
"""Ogata-Banks: a tracer front in steady one-dimensional flow, C = 1 held at x = 0.

The column of the deck (100 m of 0.5 m bricks, v = 1e-5 m/s, D = al v = 5e-6 m2/s)
is printed at 20 and 40 days; every node must lie within 0.01 of C0 of the closed form."""
import math
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import gv

V, D, TOL = 1.0e-5, 5.0e-6, 0.01


def ogata_banks(x, t, v, d, r=1.0):
    s = 2 * math.sqrt(d * r * t)
    e = v * x / d
    tail = math.exp(e) * math.erfc((r * x + v * t) / s) if e < 700 else 0.0
    return 0.5 * (math.erfc((r * x - v * t) / s) + tail)


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
d = gv.run(a, gv.case_deck(a))
series = []
for n in (1, 2):
    t, rows = gv.read_field_file(d / f"tc3d{n}_gelmor.out")
    # the column runs along x in the deck; take the y = z = 0 edge
    line = sorted((r[0], r[4]) for r in rows if r[1] == 0.0 and r[2] == 0.0)
    err = max(abs(c - ogata_banks(x, t * 86400.0, V, D)) for x, c in line)
    rep.check(f"C at {t:g} days, max over nodes", err, TOL)
    xs = [x for x, _ in line]
    series.append({"label": f"gelmor {t:g} d", "x": xs, "y": [c for _, c in line], "style": "points"})
    series.append({"label": f"closed form {t:g} d", "x": xs,
                   "y": [ogata_banks(x, t * 86400.0, V, D) for x in xs]})
gv.svg_plot(a.plot, "Ogata-Banks front", "x (m)", "C / C0", series)
rep.finish()
