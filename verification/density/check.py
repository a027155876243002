#!/usr/bin/env python3
"""Density: a salt-stratified column at rest.  With relative density 1 + gammac C and the
salt C = (H - z) / H held between C = 1 at the base and C = 0 at the top (H = 100 m, a
linear profile, which diffusion leaves as it is), no water moves when the equivalent
freshwater head carries the weight of the salt above:
dh/dz = -gammac C, so h(z) = h_top + gammac (H - z)^2 / (2 H), with h_top = 0 held on the
top and gammac = 0.025: a rise of 1.25 m to the base.

Checks, after ten daily coupled steps: every nodal head of the field file, as a fraction
of the rise gammac H / 2, to 1e-5 (the file prints seven digits and so rounds a head above
1 m to 5e-6 m, 4e-6 of the rise); every concentration to 1e-6; and the pore velocities, from the listing
(all digits) and from veloc3d.out for all bricks, below 1e-6 of the velocity scale of the
buoyancy, Kz gammac / por.

Why not a Henry-type wedge: its check needs the published reference isochlors of that
problem, a semi-analytic series solution whose values would be copied in from outside
without a closed form to recompute them here, and a resolved wedge needs thousands of
coupled steps, beyond the budget of a case.  The stratified column is exact instead: it
holds only if the buoyancy term of every brick balances its head gradient exactly."""
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import gv

H, HTOP, GAMMAC, KZ, POR = 100.0, 0.0, 0.025, 1.0e-5, 0.3
VSCALE, RISE = KZ * GAMMAC / POR, GAMMAC * H / 2


def head(z):
    return HTOP + GAMMAC * (H - z) ** 2 / (2 * H)


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
d = gv.run(a, gv.case_deck(a))
t, rows = gv.read_field_file(d / "tc3d1_gelmor.out")
rep.check(f"heads at {t:g} d, every node, / rise", max(abs(r[5] - head(r[2])) for r in rows) / RISE, 1e-5)
rep.check(f"C at {t:g} d, every node", max(abs(r[4] - (H - r[2]) / H) for r in rows), 1e-6)
vel = gv.listing_numbers(d, "vx(1),vx(ne) =")[-1][:4]
rep.check("|v| of first, last brick / (Kz gammac / por)", max(abs(v) for v in vel) / VSCALE, 1e-6)
_, zones = gv.read_plot_file(d / "veloc3d.out")
rep.check("|v| of all bricks / (Kz gammac / por)",
          max(abs(v) for r in zones[0].rows for v in r[3:6]) / VSCALE, 1e-6)
col = gv.field_line(rows, 2, 5)
zs = [z for z, _ in col]
gv.svg_plot(a.plot, "Salt-stratified column at rest", "z (m)", "freshwater head (m)",
            [{"label": "gelmor", "x": zs, "y": [h for _, h in col], "style": "points"},
             {"label": "hydrostatic", "x": zs, "y": [head(z) for z in zs]}])
rep.finish()
