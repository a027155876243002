#!/usr/bin/env python3
"""Linear head in a graded 3-D box: with every boundary node held at
h = 20 + 0.3 x - 0.15 y + 0.6 z, the steady head is that plane everywhere and the pore
velocity is (-Kx 0.3, Ky 0.15, -Kz 0.6) / por = (-2e-5, 5e-6, -1e-5) m/s in every brick.

The box of the deck (10 x 5 x 4 m) has two sub-intervals of different brick size on each
axis and anisotropic K, so both element paths meet bricks of three different shapes: it
runs once with the closed-form bricks and centre velocities (kint 0, kintv 0) and once
with Gauss integration and Gauss-point velocities (kint 1, kintv 1).  Tolerance 1e-6
relative for every nodal head (7-digit file) and for the first and last brick's velocity
as the listing prints it.  The velocities of every brick from veloc3d.out are held to
1e-5: the file prints seven digits, and the flow solver, which stops at a residual of 2e-7
of the right-hand side, leaves some 1e-7 m in the heads, a few 1e-6 of a head difference
of 0.075 m across a 0.5 m brick."""
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import gv

A0, AX, AY, AZ = 20.0, 0.3, -0.15, 0.6
V = (-2.0e-5, 5.0e-6, -1.0e-5)
GRID = (([3.0, 10.0], [3, 4]), ([2.0, 5.0], [4, 2]), ([1.0, 4.0], [2, 3]))


def exact(x, y, z):
    return A0 + AX * x + AY * y + AZ * z


xs, ys, zs = (gv.grid_planes(*g) for g in GRID)
nodes = [(x, y, z) for x in xs for y in ys for z in zs]          # z fastest, as written
a = gv.arguments(__doc__)
rep = gv.Report(a.case)
deck = gv.case_deck(a)
series = []
for kint, kintv in ((0, 0), (1, 1)):
    run = gv.set_record(deck, "[options]", f"0 1 0 {kint} {kintv} 0 1 2 0 0 0 1 0 0")
    d = gv.run(a, run, subdir=f"kint{kint}")
    _, rows = gv.read_field_file(d / "tc3d1_gelmor.out")
    assert len(rows) == len(nodes)
    err = max(abs(r[5] - exact(*p)) / exact(*p) for r, p in zip(rows, nodes))
    rep.check(f"kint {kint}: every nodal head", err, 1e-6)
    vx1, vxn, vz1, vzn = gv.listing_numbers(d, "vx(1),vx(ne) =")[-1][:4]
    err = max(abs(vx1 - V[0]), abs(vxn - V[0])) / abs(V[0])
    err = max(err, max(abs(vz1 - V[2]), abs(vzn - V[2])) / abs(V[2]))
    rep.check(f"kintv {kintv}: vx, vz of first and last brick", err, 1e-6)
    _, zones = gv.read_plot_file(d / "veloc3d.out")
    err = max(abs(r[3 + c] - V[c]) / abs(V[c]) for r in zones[0].rows for c in range(3))
    rep.check(f"kintv {kintv}: vx, vy, vz of all 210 bricks", err, 1e-5)
    line = [(p[0], r[5]) for r, p in zip(rows, nodes) if p[1] == ys[4] and p[2] == zs[2]]
    series.append({"label": f"kint {kint}", "x": [x for x, _ in line], "y": [h for _, h in line],
                   "style": "points"})
series.append({"label": "closed form", "x": xs, "y": [exact(x, ys[4], zs[2]) for x in xs]})
gv.svg_plot(a.plot, f"Linear box: head along x at y = {ys[4]:g} m, z = {zs[2]:g} m",
            "x (m)", "head (m)", series)
rep.finish()
