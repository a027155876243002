#!/usr/bin/env python3
"""Discharge of a single plane fracture between two fixed heads against the cubic law
Q = (rho g b^3 / (12 mu)) (dh / L) w.

The program's fracture constants are rho = 1000 kg/m3, g = 10 m/s2 and mu = 160/86400
kg/m/s (water at 0 C, with no heat in the run), so rho g / mu = 5.4e6 1/(m s).  The deck
has a vertical plane, w = 2 m high and L = 10 m long, in rock of K = 1e-15 m/s, whose
share of the discharge is below 1e-8.  The discharge is the fracture velocity times the
aperture and the height: Q = vx2d b w, with vx2d(1) as the listing prints it (all digits)
and, for every fracture element, from vfracxz.out (seven digits, so an error shows there
only once it passes about 1e-6).

Two runs, tolerance 1e-6 relative:
1. aperture b = 0.1 mm over the whole length: the cubic law as it stands;
2. b = 0.1 mm over the first 5 m and 0.2 mm over the last 5 m: two transmissivities in
   series, Q = w dh / (L1 / T1 + L2 / T2) with T = rho g b^3 / (12 mu), which holds only
   if the assembled system carries each element's b^3; the head at the joint is checked
   as well."""
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import gv

RHO_G_OVER_MU = 1000.0 * 10.0 / (160.0 / 86400.0)
H1, H2, L, W = 10.0, 9.0, 10.0, 2.0
RUNS = (("one b", [(1, 10, 1.0e-4)]),
        ("two b in series", [(1, 5, 1.0e-4), (6, 10, 2.0e-4)]))


def transmissivity(b):
    return RHO_G_OVER_MU * b ** 3 / 12.0


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
deck = gv.case_deck(a)
series = []
for n, (name, segments) in enumerate(RUNS):
    records = "\n".join(f"{i1} {i2} 1 1 1 2 2 3 {b} {1 if k < len(segments) - 1 else 0}"
                        for k, (i1, i2, b) in enumerate(segments))
    d = gv.run(a, gv.set_record(deck, "[fracture]", records), subdir=f"run{n + 1}")
    lengths = [(i2 - i1 + 1) * 1.0 for i1, i2, _ in segments]
    q = W * (H1 - H2) / sum(s / transmissivity(b) for s, (_, _, b) in zip(lengths, segments))
    b_of = lambda x: next(b for (i1, i2, b) in segments if i1 - 1 < x < i2)
    q1 = gv.listing_numbers(d, "vx2d(1):")[-1][0] * segments[0][2] * W
    rep.check(f"{name}: Q, element 1 (all digits)", abs(q1 - q) / q, 1e-6)
    _, zones = gv.read_plot_file(d / "vfracxz.out")
    err = max(abs(r[2] * b_of(r[0]) * W - q) / q for r in zones[0].rows)
    rep.check(f"{name}: Q, all {len(zones[0].rows)} elements (7 digits)", err, 1e-6)
    _, rows = gv.read_field_file(d / "tc3d1_gelmor.out")
    plane = gv.field_line(rows, 0, 5)
    exact = []
    for x, _ in plane:
        h, left = H1, x
        for s, (_, _, b) in zip(lengths, segments):
            h -= q / W * min(left, s) / transmissivity(b)
            left -= min(left, s)
        exact.append(h)
    if len(segments) > 1:
        joint = [h for x, h in plane if x == lengths[0]][0]
        rep.check(f"{name}: head at the joint", abs(joint - exact[int(lengths[0])]) / joint, 1e-6)
    series.append({"label": f"gelmor, {name}", "x": [x for x, _ in plane],
                   "y": [h for _, h in plane], "style": "points"})
    series.append({"label": f"cubic law, {name}", "x": [x for x, _ in plane], "y": exact})
gv.svg_plot(a.plot, "Head along a fracture plane", "x (m)", "head (m)", series)
rep.finish()
