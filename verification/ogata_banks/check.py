#!/usr/bin/env python3
"""Ogata-Banks: a tracer front in steady one-dimensional flow, C = 1 held at x = 0.

The column of the deck (100 m of 0.5 m bricks, v = 1e-5 m/s, D = al v = 5e-6 m2/s) is
printed at 20 and 40 days; every node must lie within 0.01 of C0 of the closed form in
  - the deck as it stands (direct integration, kint 0);
  - the same with numerical integration (kint 1);
  - a retarded tracer (ret 2, front at v t / R), direct integration, on 0.25 m bricks: its
    front is narrower by sqrt(R), and on the deck's 0.5 m bricks the Galerkin error at
    20 days is 0.0116 (0.0106 with dt made four times smaller: it is the space error).
A refinement series halves dx and dt together, (2 m, 0.2 day) to (0.25 m, 0.025 day) at a
fixed Courant number 0.086; the largest nodal error at 40 days must fall at every level."""
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import closed
import gv

V, D, TOL = 1.0e-5, 5.0e-6, 0.01


def deck(text, kint=0, ret=1.0, dx=0.5, dt=0.05):
    n = round(100.0 / dx)
    return gv.set_records(text, (("[options]", f"0 2 0 {kint} 0 0 1 1 0 0 0 2 0 0"),
                                 ("[grid x]", str(n)),
                                 ("[elements]", f"1 {n} 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0"),
                                 ("[air]", f"1 {n + 1} 5.0 0.0 365.0 0.0 -50.0 0.0 0.0 -1"),
                                 ("[dispersion]", f"0.5 0.0 0.1 0.01 0.0 {ret} 0.0 0.0 0"),
                                 ("[tinit]", f"1 {n + 1} 1 2 1 2 5.0 5.0 0"),
                                 ("[cinit]", f"1 {n + 1} 1 2 1 2 0.0 0.0 0"),
                                 ("[interval]", f"0.0 40.0 {dt} 100000 1 100000 100000 0")))


def fronts(run_dir, ret):
    """[(days, [(x, C)], max error)] of the two print files, along the y = z = 0 edge."""
    out = []
    for n in (1, 2):
        t, rows = gv.read_field_file(run_dir / f"tc3d{n}_gelmor.out")
        line = gv.field_line(rows, 0, 4)
        err = max(abs(c - closed.ogata_banks(x, t * 86400.0, V, D, ret)) for x, c in line)
        out.append((t, line, err))
    return out


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
text = gv.case_deck(a)
series = []
for label, kint, ret, dx in (("kint 0", 0, 1.0, 0.5), ("kint 1", 1, 1.0, 0.5), ("R = 2", 0, 2.0, 0.25)):
    runs = fronts(gv.run(a, deck(text, kint, ret, dx), label.replace(" ", "").replace("=", "")), ret)
    for t, line, err in runs:
        rep.check(f"{label}: C at {t:g} days, max over nodes", err, TOL)
    if kint == 1:
        continue                       # drawn over the kint 0 points it would hide them
    for t, line, _ in runs:
        xs = [x for x, _ in line]
        series.append({"label": f"{label} {t:g} d", "x": xs, "y": [c for _, c in line], "style": "points"})
        series.append({"label": f"closed {label} {t:g} d", "x": xs,
                       "y": [closed.ogata_banks(x, t * 86400.0, V, D, ret) for x in xs]})

levels = [(2.0, 0.2), (1.0, 0.1), (0.5, 0.05), (0.25, 0.025)]
errors = [fronts(gv.run(a, deck(text, dx=dx, dt=dt), f"dx{dx}"), 1.0)[1][2] for dx, dt in levels]
gv.check_refinement(rep, "dx (dt = dx/10 day/m)", [dx for dx, _ in levels], errors)
rep.check("finest level: C at 40 days, max over nodes", errors[-1], TOL)

gv.svg_panels(a.plot, [
    {"title": "Ogata-Banks front", "xlabel": "x (m)", "ylabel": "C / C0", "series": series},
    {"title": "Max error at 40 days, dx and dt halved together", "xlabel": "dx (m)", "ylabel": "error",
     "logy": True, "series": [{"label": "kint 0", "x": [dx for dx, _ in levels], "y": errors}]}])
rep.finish()
