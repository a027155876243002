#!/usr/bin/env python3
"""Periodic surface: a cosine top temperature damped and delayed with depth.

The deck's top follows T = 7 + 2 cos(w t), w = 2 pi / 10 days, over a 5 m column of
still, saturated ground.  Once the start has died away the ground follows
T = 7 + 2 exp(-z/d) cos(w t - z/d), damping depth d = sqrt(2 alpha / w), alpha = k/C.

The top node is a fixed value, and a fixed value enters the transport assembly at the old
time level: the ground sees the forcing one step (0.05 day) late, a phase of w dt = 0.031
at every depth, which is taken off the measured lag.  The amplitude and lag of the
forcing harmonic in the fourth period (t1dz_tdum.plt, every second step) at the nodes
nearest one and two damping depths must be within 3 % of the closed form."""
import math
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lib"))
import closed
import gv

TOP, MEAN, AMP, PERIOD, DT, TOL = 5.0, 7.0, 2.0, 10.0, 0.05, 0.03
W = 2 * math.pi / PERIOD
ALPHA = closed.bulk_conductivity(0.3, 2.0) / closed.heat_capacity(0.3, 800.0 * 2650.0)
DAMP = math.sqrt(2 * ALPHA * 86400.0 / W)       # m, with W per day


a = gv.arguments(__doc__)
rep = gv.Report(a.case)
d = gv.run(a, gv.case_deck(a))
_, zones = gv.read_plot_file(d / "t1dz_tdum.plt")
by_depth = {}
for t, z, T, _ in zones[0].rows:
    by_depth.setdefault(round(TOP - z, 6), []).append((t, T))
rep.note(f"damping depth d = {DAMP:.4f} m; one-step phase w dt = {W * DT:.4f}")


def fit(depth):
    pts = [(t, T) for t, T in by_depth[depth] if 30.0 + 1e-6 < t <= 40.0 + 1e-6]
    amp, lag = closed.harmonic([t for t, _ in pts], [T for _, T in pts], W)
    lag -= W * DT
    return amp, lag + 2 * math.pi if lag < -1.0 else lag     # past half a period atan2 wraps


depths = sorted(by_depth)
for k in (1, 2):
    z = min(depths, key=lambda dd: abs(dd - k * DAMP))
    amp, lag = fit(z)
    want_amp, want_lag = AMP * math.exp(-z / DAMP), z / DAMP
    rep.check(f"amplitude at {z:g} m ({z / DAMP:.2f} d), relative", abs(amp / want_amp - 1), TOL)
    rep.check(f"lag at {z:g} m ({z / DAMP:.2f} d), relative", abs(lag / want_lag - 1), TOL)

shown = [dd for dd in depths if dd <= 4 * DAMP]
fits = [fit(dd) for dd in shown]
traces = []
for k in (0, 1, 2):
    z = min(depths, key=lambda dd: abs(dd - k * DAMP))
    pts = [(t, T) for t, T in by_depth[z] if t >= 20.0]
    traces.append({"label": f"gelmor {z:g} m", "x": [t for t, _ in pts], "y": [T for _, T in pts],
                   "style": "points"})
    traces.append({"label": f"closed {z:g} m", "x": [t for t, _ in pts],
                   "y": [MEAN + AMP * math.exp(-z / DAMP) * math.cos(W * (t - DT) - z / DAMP) for t, _ in pts]})
gv.svg_panels(a.plot, [
    {"title": "Periodic top: T at the top, d and 2d", "xlabel": "t (days)", "ylabel": "T (C)", "series": traces},
    {"title": "Amplitude (C) and lag (rad) with depth", "xlabel": "depth (m)", "ylabel": "",
     "series": [{"label": "amplitude", "x": shown, "y": [f[0] for f in fits], "style": "points"},
                {"label": "2 exp(-z/d)", "x": shown, "y": [AMP * math.exp(-z / DAMP) for z in shown]},
                {"label": "lag - w dt", "x": shown, "y": [f[1] for f in fits], "style": "points"},
                {"label": "z/d", "x": shown, "y": [z / DAMP for z in shown]}]}])
rep.finish()
