#!/usr/bin/env python3
"""Steady head in one dimension: between fixed heads h1 = 10 m at x = 0 and h2 = 9 m at
x = L = 100 m the head is h1 + (h2 - h1) x / L whatever the grading of the grid.

The column of the deck has 4 m bricks over the first 40 m and 2 m bricks after it, no
storage and one step.  Two measures of the relative head error, both with a tolerance of
1e-8:
- the heads of the first and of the last free x plane, from the pore velocities vx(1) and
  vx(ne) that the listing prints with all digits (h = h1 - vx(1) por dx / K and
  h = h2 + vx(ne) por dx / K);
- every nodal head of the field file, which carries seven digits: its error can only be
  read to about 5e-7, so that check is held to its print resolution, 1e-6.
The velocities themselves are checked against K (h1 - h2) / (L por) with the tolerance that
a 1e-8 head error gives to a difference of two heads over one 2 m brick: 1e-8 h1 / 0.02 m =
5e-6.  (The flow solver stops once its residual is 2e-7 of the right-hand side, so a few
1e-9 of relative head error is what a solve leaves.)"""
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import gv

H1, H2, L, K, POR = 10.0, 9.0, 100.0, 1.0e-5, 0.3
DX_FIRST, DX_LAST = 4.0, 2.0


def exact(x):
    return H1 + (H2 - H1) * x / L


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
d = gv.run(a, gv.case_deck(a))
vx1, vxn = gv.listing_numbers(d, "vx(1),vx(ne) =")[-1][:2]
v = K * (H1 - H2) / (L * POR)
tol_v = 1e-8 * H1 / ((H1 - H2) / L * DX_LAST)
rep.check("vx(1), vx(ne) against K dh / (L por)", max(abs(vx1 - v), abs(vxn - v)) / v, tol_v)
h_first = H1 - vx1 * POR * DX_FIRST / K
h_last = H2 + vxn * POR * DX_LAST / K
err = max(abs(h_first - exact(DX_FIRST)) / exact(DX_FIRST),
          abs(h_last - exact(L - DX_LAST)) / exact(L - DX_LAST))
rep.check("head of first, last free plane (all digits)", err, 1e-8)

t, rows = gv.read_field_file(d / "tc3d1_gelmor.out")
err = max(abs(r[5] - exact(r[0])) / exact(r[0]) for r in rows)
rep.check("every nodal head (7-digit file)", err, 1e-6)
line = gv.field_line(rows, 0, 5)
xs = [x for x, _ in line]
gv.svg_plot(a.plot, "Steady head, graded column", "x (m)", "head (m)",
            [{"label": "gelmor", "x": xs, "y": [h for _, h in line], "style": "points"},
             {"label": "closed form", "x": xs, "y": [exact(x) for x in xs]}])
rep.finish()
