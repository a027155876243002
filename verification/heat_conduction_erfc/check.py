#!/usr/bin/env python3
"""Heat conduction: a temperature step at the top of a still, saturated column.

The deck's column (5 m of 0.05 m layers, porosity 0.3, solid 2 W/m/C and 800*2650 J/m3/C,
water 0.6 W/m/C) starts at 4 C with its top node at 6 C and the top held there; the base is
insulated and too deep to matter within 10 days.  The temperature follows
T = 4 + 2 erfc(depth / (2 sqrt(alpha t))) with alpha = k/C of the bulk ground, in both heat
formulations: v1 (ksubtr 1, true heat units) and v2 (ksubtr 2, heat as a retarded solute
with kappa = k/(theta rho c_w) and R = C/(theta rho c_w), so kappa/R = k/C again).

Checks: every node within 0.01 of the step at 2 and 10 days, for both formulations; and two
refinement series of v1 at 2 days, each of which must fall at every level:
  - layers 25, 50, 100 (dz 0.2, 0.1, 0.05 m) at dt = 0.002 day (space error, second order);
  - steps dt 0.2, 0.1, 0.05, 0.025 day on 200 layers (time error: conduction is fully
    implicit, so first order)."""
import math
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import closed
import gv

DEPTH, T0, STEP, TOL = 5.0, 4.0, 2.0, 0.01
K = closed.bulk_conductivity(0.3, 2.0)
C = closed.heat_capacity(0.3, 800.0 * 2650.0)
ALPHA = K / C


def deck(text, layers=100, dt=0.05, t_end=10.0, scheme=1):
    return gv.set_records(gv.z_column(text, layers, T0, T0 + STEP),
                          (("[options]", f"0 2 0 0 0 0 1 0 0 0 0 {scheme} 0 0"),
                           ("[interval]", f"0.0 {t_end} {dt} 100000 1 100000 100000 0")))


def closed_form(z, days):
    return T0 + STEP * closed.erfc_step(DEPTH - z, days * 86400.0, ALPHA)


def profile(run_dir, n):
    """(time in days, [(depth, T)]) of print file n, along the column x = y = 0."""
    t, rows = gv.read_field_file(run_dir / f"tc3d{n}_gelmor.out")
    return t, [(DEPTH - z, T) for z, T in gv.field_line(rows, 2, 3)]


def error(run_dir, n):
    t, line = profile(run_dir, n)
    return t, max(abs(T - closed_form(DEPTH - d, t)) for d, T in line) / STEP


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
base = gv.case_deck(a)
profiles = []
for scheme in (1, 2):
    d = gv.run(a, deck(base, scheme=scheme), f"v{scheme}")
    for n in (1, 2):
        t, err = error(d, n)
        rep.check(f"v{scheme}: T at {t:g} days, max over nodes / step", err, TOL)
        profiles.append((scheme, t, profile(d, n)[1]))

space, time_ = [], []
for layers in (25, 50, 100):
    d = gv.run(a, deck(base, layers=layers, dt=0.002, t_end=2.0), f"dz{layers}")
    space.append((DEPTH / layers, error(d, 1)[1]))
for dt in (0.2, 0.1, 0.05, 0.025):
    d = gv.run(a, deck(base, layers=200, dt=dt, t_end=2.0), f"dt{dt}")
    time_.append((dt, error(d, 1)[1]))
for name, series in (("dz", space), ("dt", time_)):
    gv.check_refinement(rep, name, [h for h, _ in series], [e for _, e in series])
rep.check("finest dz: max error / step", space[-1][1], TOL)
rep.check("finest dt: max error / step", time_[-1][1], TOL)

curves = []
for scheme, t, line in profiles:
    depths = [dd for dd, _ in line if dd <= 3.0]
    curves.append({"label": f"v{scheme} {t:g} d", "x": depths,
                   "y": [T for dd, T in line if dd <= 3.0], "style": "points"})
    if scheme == 2:
        curves.append({"label": f"erfc {t:g} d", "x": depths, "y": [closed_form(DEPTH - dd, t) for dd in depths]})
gv.svg_panels(a.plot, [
    {"title": "Heat step into a conducting column", "xlabel": "depth (m)", "ylabel": "T (C)", "series": curves},
    {"title": "Max error / step at 2 days", "xlabel": "dz (m) or dt (day)", "ylabel": "error", "logy": True,
     "series": [{"label": "dz, dt 0.002 d", "x": [h for h, _ in space], "y": [e for _, e in space]},
                {"label": "dt, dz 0.025 m", "x": [h for h, _ in time_], "y": [e for _, e in time_]}]}])
rep.finish()
