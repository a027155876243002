#!/usr/bin/env python3
"""Fracture with matrix diffusion: a tracer along a plane fracture that loses it into the rock.

The deck's slab (20 m along x, 0.5 m thick) carries a plane fracture element of aperture
a = 1e-4 m on the base face of its bottom bricks; velocity 1e-5 m/s in the fracture (ivel 2),
the rock still; no dispersion, pore diffusion D' = 1e-10 m2/s, rock porosity 0.1, no
retardation; C = 1 held at the fracture's inlet nodes from t = 0.

How the program's equation maps onto the closed form: per unit of pore fluid the bricks
carry dc/dt - D' lap(c) (times the brick volume) and the fracture (a/theta)(dc/dt + v dc/dx)
per unit face area; multiplied through by theta, the rock stores theta c and diffuses
theta D' grad c, the fracture stores a c and carries a v c.  With the fracture on the base of
the slab all its loss goes up into the rock, as across one face of a fracture of half aperture
b = a in the symmetric closed form.  Zero dispersion along the fracture and diffusion across
it only (Tang, Frind and Sudicky 1981):

    C/C0 = erfc( theta sqrt(D' R') x / (2 b v sqrt(t - x/v)) )     for t > x/v

(lib/closed.py derives it).  Along x the rock also diffuses, by sqrt(D' t) = 5 cm in 300 days,
which the closed form leaves out; the fracture's own diffusion D' beside v x is nothing.

Checks: the fracture nodes (z = 0, y = 0) within 0.02 of C0 at 100 and 300 days, when the
advective front has long left the slab; a series in dt (0.5, 0.25, 0.125 day) must fall at
every level (the error is the time error of the implicit matrix diffusion: halving the layers
by the fracture changes it by 3 %)."""
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import closed
import gv

V, APERTURE, THETA, DIFF, TOL = 1.0e-5, 1.0e-4, 0.1, 1.0e-10, 0.02


def closed_form(x, days):
    return closed.fracture_matrix(x, days * 86400.0, V, APERTURE, THETA, DIFF)


def profiles(run_dir):
    out = []
    for n in (1, 2):
        t, rows = gv.read_field_file(run_dir / f"tc3d{n}_gelmor.out")
        line = gv.field_line(rows, 0, 4)
        out.append((t, line, max(abs(c - closed_form(x, t)) for x, c in line)))
    return out


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
text = gv.case_deck(a)
runs = profiles(gv.run(a, text))
for t, _, err in runs:
    rep.check(f"C in the fracture at {t:g} days, max over nodes", err, TOL)
steps = [0.5, 0.25]
errors = [profiles(gv.run(a, gv.set_record(text, "[interval]", f"0.0 300.0 {dt} 100000 1 100000 100000 0"),
                          f"dt{dt}"))[0][2] for dt in steps]
gv.check_refinement(rep, "dt, 100 days", steps + [0.125], errors + [runs[0][2]])

series = []
for t, line, _ in runs:
    xs = [x for x, _ in line]
    series.append({"label": f"gelmor {t:g} d", "x": xs, "y": [c for _, c in line], "style": "points"})
    series.append({"label": f"TFS {t:g} d", "x": xs, "y": [closed_form(x, t) for x in xs]})
gv.svg_plot(a.plot, "Plane fracture with matrix diffusion", "x (m)", "C / C0 in the fracture", series)
rep.finish()
