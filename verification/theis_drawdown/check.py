#!/usr/bin/env python3
"""Theis: drawdown around a well that pumps Q = 1e-3 m3/s from a confined aquifer,
s = Q / (4 pi T) W(u), u = r^2 S / (4 T t), with T = K b = 1e-3 m2/s, S = Ss b = 1e-4.

The grid carries the well as a nodal sink: the deck's source records put Q/4 on the
corner column of a quarter box (x, y >= 0; the two faces through the well are planes of
symmetry, no flow), 1.25e-4 m3/s on each of its two nodes, since one layer spans the
whole aquifer.  The bricks grow from 1 m at the well to 300 m, seven sub-intervals each
way; the far faces, 4.44 km out, hold the initial head, where Theis gives below 1e-4 m at
1 day.  Three time intervals with growing steps reach 0.1 and 1 day.

A nodal sink has no radius, so the head next to it is not Theis's: the comparison takes
every node at least three of its local brick lengths from the well, and inside the cone
(u <= 0.5, where s is more than half of Q / (4 pi T)); the largest relative error of s
there must be below 5%."""
import math
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import gv

T, S, Q, H0, TOL, UMAX = 1.0e-3, 1.0e-4, 1.0e-3, 20.0, 0.05, 0.5
ENDS, COUNTS = [5.0, 15.0, 40.0, 140.0, 440.0, 1440.0, 4440.0], [5, 5, 5, 8, 10, 10, 10]


def well_function(u):
    """W(u) = E1(u) by its series, for the u <= 0.5 compared here."""
    s, term, k = -0.5772156649015329 - math.log(u), 1.0, 1
    while abs(term) > 1e-17:
        term *= -u / k
        s -= term / k
        k += 1
    return s


def theis(r, t):
    return Q / (4 * math.pi * T) * well_function(r * r * S / (4 * T * t))


planes = gv.grid_planes(ENDS, COUNTS)


def brick(v):
    """The longer of the two bricks next to the grid plane at v."""
    i = min(range(len(planes)), key=lambda k: abs(planes[k] - v))
    return max(planes[min(i + 1, len(planes) - 1)] - planes[i], planes[i] - planes[max(i - 1, 0)])


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
d = gv.run(a, gv.case_deck(a))
series = []
for n in (1, 2):
    t, rows = gv.read_field_file(d / f"tc3d{n}_gelmor.out")
    ts = t * 86400.0
    worst, count = (0.0, 0.0), 0
    for x, y, z, _, _, h in rows:
        r = math.hypot(x, y)
        if z != 0.0 or r < 3 * max(brick(x), brick(y)) or r * r * S / (4 * T * ts) > UMAX:
            continue
        count += 1
        worst = max(worst, (abs(H0 - h - theis(r, ts)) / theis(r, ts), r))
    rep.check(f"s at {t:g} d, {count} nodes, worst at r = {worst[1]:.0f} m", worst[0], TOL)
    axis = sorted((x, H0 - h) for x, y, z, _, _, h in rows if y == 0.0 and z == 0.0 and 0 < x < 2000)
    series.append({"label": f"gelmor {t:g} d", "x": [math.log10(x) for x, _ in axis],
                   "y": [s for _, s in axis], "style": "points"})
    series.append({"label": f"Theis {t:g} d", "x": [math.log10(x) for x, _ in axis],
                   "y": [theis(x, ts) for x, _ in axis]})
gv.svg_plot(a.plot, "Theis drawdown along y = 0", "log10 r (m)", "drawdown (m)", series)
rep.finish()
