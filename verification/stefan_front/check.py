#!/usr/bin/env python3
"""Stefan front: freezing from a cold top into ground at the freezing point.

The deck's column (1.5 m of 0.005 m layers, steps of 0.0125 day, porosity 0.3, solid 2 W/m/C and 800*2650 J/m3/C)
stands at 0 C with its top held at -5 C from t = 0 (heat v1, latent heat in the apparent
capacity).  All pore water freezes (Wu = exp(10 T) below 0 C); gelmor_1dzfront.plt traces
the depth where half of it is frozen (Ts = -0.0693 C).

Closed form: the one-phase Neumann solution, the liquid staying at the freezing point:
front X = 2 lambda sqrt(alpha_f t), lambda exp(lambda^2) erf(lambda) = St / sqrt(pi), with
St = C_f 5 / L, the frozen ground's capacity C_f = 0.7*800*2650 + 0.3*917*2100,
conductivity k_f = (0.3 sqrt(2.24) + 0.7 sqrt(2))^2, alpha_f = k_f / C_f, and the latent
heat per volume L = 0.3 * 917 * 334000 (the program frees it as ice, at the ice density).
The front of the program must lie within 3 % of X at 5, 10, 20 and 30 days.

The front runs ahead of X on coarse grids: a node that leaves 0 C has no latent capacity
at its old level in its first freezing step (dWu jumps from 0 to q at 0 C), and the front
is smeared over the layers that the freezing curve spans (90 % of the latent heat is freed
between 0 and -0.23 C, where the closed form frees it all at 0 C).  A refinement series
halves dz and dt together from (0.04 m, 0.1 day) to the deck's (0.005 m, 0.0125 day); the
error at 10 days must fall at every level."""
import math
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import closed
import gv

TOL, COLD = 0.03, 5.0
C_F = closed.heat_capacity(0.3, 800.0 * 2650.0, unfrozen=0.0)
K_F = closed.bulk_conductivity(0.3, 2.0, unfrozen=0.0)
LATENT = 0.3 * 917.0 * 334000.0
LAMBDA = closed.neumann_lambda(C_F * COLD / LATENT)


def neumann(days):
    return 2 * LAMBDA * math.sqrt(K_F / C_F * days * 86400.0)


def deck(text, layers, dt):
    return gv.set_record(gv.z_column(text, layers, 0.0, -COLD), "[interval]",
                         f"0.0 30.0 {dt} 100000 1 100000 100000 0")


def front_of(run_dir):
    _, zones = gv.read_plot_file(run_dir / "gelmor_1dzfront.plt")
    return {round(r[0], 6): r[1] for r in zones[0].rows}


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
text = gv.case_deck(a)
front = front_of(gv.run(a, text))
rep.note(f"Stefan number {C_F * COLD / LATENT:.4f}, lambda {LAMBDA:.4f}, alpha_f {K_F / C_F:.3e} m2/s")
for days in (5.0, 10.0, 20.0, 30.0):
    got, want = front[days], neumann(days)
    rep.check(f"front at {days:g} days ({got:.3f} m), relative", abs(got / want - 1), TOL)

levels = [(0.04, 0.1), (0.02, 0.05), (0.01, 0.025)]
coarse = [front_of(gv.run(a, deck(text, round(1.5 / dz), dt), f"dz{dz}")) for dz, dt in levels]
errors = [abs(f[10.0] / neumann(10.0) - 1) for f in coarse + [front]]
gv.check_refinement(rep, "dz (dt = 2.5 dz day/m), 10 days", [dz for dz, _ in levels] + [0.005], errors)

times = sorted(front)
days = [float(k) for k in range(1, 31)]
curves = [{"label": f"gelmor dz {dz:g}", "x": days, "y": [f[t] for t in days], "style": "points"}
          for (dz, _), f in zip(levels + [(0.005, 0)], coarse + [front])]
gv.svg_plot(a.plot, "Freezing front under a top held at -5 C", "t (days)", "front depth (m)",
            curves + [{"label": "Neumann", "x": times, "y": [neumann(t) for t in times]}])
rep.finish()
