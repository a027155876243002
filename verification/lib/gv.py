"""Shared pieces of the verification checkers: run a deck, read result files, edit deck
records, report an error beside its tolerance, and draw a small SVG plot.

Python 3 standard library only.  A checker is `verification/<case>/check.py`; it is run as

    check.py --gelmor PROGRAM --work DIR --plot FILE.svg

runs its deck(s) in DIR, prints one line a check through `Report.check` and exits 1 when
any check fails (`Report.finish`)."""

import argparse
import math
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path


def arguments(description=""):
    p = argparse.ArgumentParser(description=description)
    p.add_argument("--gelmor", default=os.environ.get("GELMOR", "build/gelmor"))
    p.add_argument("--work", default=None, help="scratch directory for the runs")
    p.add_argument("--plot", default=None, help="SVG file to write")
    a = p.parse_args()
    case_dir = Path(sys.argv[0]).resolve().parent
    a.case = case_dir.name
    a.case_dir = case_dir
    a.gelmor = str(Path(a.gelmor).resolve())
    a.work = Path(a.work or (Path("build/verification") / case_dir.name)).resolve()
    a.plot = Path(a.plot).resolve() if a.plot else a.work / "plot.svg"
    a.work.mkdir(parents=True, exist_ok=True)
    return a


def case_deck(args, name="gelmor.data"):
    """The text of a deck (or auxiliary file) of the case folder."""
    return (args.case_dir / name).read_text()


def run(args, deck_text, subdir="run", files=None, timeout=600):
    """Runs the program on `deck_text` in WORK/subdir (emptied first) with any auxiliary
    files {name: text}; returns the run directory.  A run that does not end normally
    raises RuntimeError with the end of its listing."""
    d = args.work / subdir
    shutil.rmtree(d, ignore_errors=True)
    d.mkdir(parents=True)
    (d / "gelmor.data").write_text(deck_text)
    for name, text in (files or {}).items():
        (d / name).write_text(text)
    with open(d / "console.txt", "w") as out:
        rc = subprocess.run([args.gelmor], cwd=d, stdout=out, stderr=subprocess.STDOUT,
                            timeout=timeout).returncode
    lst = (d / "gelmor.lst").read_text(errors="replace") if (d / "gelmor.lst").exists() else ""
    if rc != 0 or "normal exit" not in lst:
        tail = "\n".join(lst.splitlines()[-15:])
        raise RuntimeError(f"run in {d} ended with status {rc}:\n{tail}")
    return d


def set_record(text, tag, values):
    """Replaces the values of the one deck line whose trailing comment holds `tag`
    (values first, then two or more blanks or a '!' and the comment).  `values` is a
    string or a sequence formatted with repr-free str()."""
    if not isinstance(values, str):
        values = " ".join(str(v) for v in values)
    lines = text.split("\n")
    hits = [i for i, line in enumerate(lines) if tag in line]
    if len(hits) != 1:
        raise ValueError(f"deck tag {tag!r} found on {len(hits)} lines")
    line = lines[hits[0]]
    m = re.search(r"(\s{2,}|\s*!)", line.rstrip())
    comment = line[m.start():] if m else ""
    lines[hits[0]] = values + comment
    return "\n".join(lines)


class Zone:
    def __init__(self, header):
        self.header = header                  # the zone line as written
        m = re.search(r'T\s*=\s*"([^"]*)"', header)
        self.title = m.group(1) if m else ""
        self.rows = []

    def counts(self):
        return {k: int(v) for k, v in re.findall(r"\b([ijk])\s*=\s*(\d+)", self.header)}

    def time(self):
        """The first number of the title (the time of most zones)."""
        m = re.search(r"[-+]?\d+\.?\d*(?:[eEdD][-+]?\d+)?", self.title)
        return float(m.group(0)) if m else math.nan

    def column(self, k):
        return [r[k] for r in self.rows]


def read_plot_file(path):
    """Reads a Tecplot-style result file: returns (variables, zones).  Rows are lists of
    floats; a value the writer could not fit (asterisks) reads as NaN."""
    variables, zones = [], []
    for raw in Path(path).read_text(errors="replace").splitlines():
        s = raw.strip()
        low = s.lower()
        if not s:
            continue
        if low.startswith("variables"):
            variables = re.findall(r'"([^"]*)"', s)
        elif low.startswith("zone"):
            zones.append(Zone(s))
        elif low.startswith("title") or low.startswith("number of"):
            continue
        else:
            vals = []
            for tok in s.replace(",", " ").split():
                try:
                    vals.append(float(tok.replace("D", "E").replace("d", "e")))
                except ValueError:
                    vals.append(math.nan)
            if not zones:
                zones.append(Zone(""))
            zones[-1].rows.append(vals)
    return variables, zones


def read_field_file(path):
    """A 3-D print file (tc3dN_gelmor.out): returns (time, rows) with rows of
    x, y, z, T, C, H in the order written."""
    variables, zones = read_plot_file(path)
    head = Path(path).read_text(errors="replace").splitlines()[0]
    m = re.search(r"t=\s*([-+0-9.eEdD]+)", head)
    return (float(m.group(1)) if m else math.nan), zones[0].rows


class Report:
    """Collects the checks of one case and prints each error beside its tolerance."""

    def __init__(self, case):
        self.case = case
        self.failed = 0

    def check(self, what, error, tolerance):
        ok = error <= tolerance and not math.isnan(error)
        self.failed += 0 if ok else 1
        print(f"{self.case:<24} {what:<44} error {error:10.3e}  tolerance {tolerance:9.2e}  "
              f"{'ok' if ok else 'FAIL'}", flush=True)
        return ok

    def note(self, text):
        print(f"{self.case:<24} {text}", flush=True)

    def finish(self):
        sys.exit(1 if self.failed else 0)


def falls(errors):
    """True when each error is below the one before (a refinement series)."""
    return all(b < a for a, b in zip(errors, errors[1:]))


# ---- a small SVG line plot -------------------------------------------------------------

_COLOURS = ["#1f77b4", "#d62728", "#2ca02c", "#9467bd", "#ff7f0e", "#8c564b", "#17becf"]


def _ticks(lo, hi, n=5):
    if hi <= lo:
        hi = lo + 1.0
    raw = (hi - lo) / n
    mag = 10 ** math.floor(math.log10(raw))
    step = min((m * mag for m in (1, 2, 2.5, 5, 10) if m * mag >= raw), default=raw)
    t = math.ceil(lo / step) * step
    out = []
    while t <= hi + 1e-9 * step:
        out.append(t)
        t += step
    return out


def svg_plot(path, title, xlabel, ylabel, series, logy=False):
    """series: list of dicts {label, x, y, style: 'line'|'points'}.  Writes an SVG."""
    W, H, L, R, T, B = 640, 420, 70, 170, 40, 50
    xs = [x for s in series for x in s["x"] if not math.isnan(x)]
    ys = [y for s in series for y in s["y"] if not math.isnan(y) and (not logy or y > 0)]
    if not xs or not ys:
        xs, ys = [0, 1], [0, 1]
    fy = (lambda v: math.log10(v)) if logy else (lambda v: v)
    x0, x1 = min(xs), max(xs)
    y0, y1 = fy(min(ys)), fy(max(ys))
    if x1 == x0:
        x1 = x0 + 1
    if y1 == y0:
        y0, y1 = y0 - 0.5, y1 + 0.5
    pad = 0.05 * (y1 - y0)
    y0, y1 = y0 - pad, y1 + pad

    def px(x):
        return L + (x - x0) / (x1 - x0) * (W - L - R)

    def py(y):
        return T + (1 - (fy(y) - y0) / (y1 - y0)) * (H - T - B)

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{W}" height="{H}" '
           f'font-family="sans-serif" font-size="12">',
           f'<rect width="{W}" height="{H}" fill="white"/>',
           f'<text x="{W / 2 - R / 2 + L / 2}" y="22" text-anchor="middle" font-size="14">'
           f'{_esc(title)}</text>',
           f'<rect x="{L}" y="{T}" width="{W - L - R}" height="{H - T - B}" fill="none" '
           f'stroke="black"/>']
    for t in _ticks(x0, x1):
        X = px(t)
        out.append(f'<line x1="{X:.1f}" y1="{H - B}" x2="{X:.1f}" y2="{H - B + 5}" stroke="black"/>')
        out.append(f'<text x="{X:.1f}" y="{H - B + 18}" text-anchor="middle">{t:g}</text>')
    for t in _ticks(y0, y1):
        Y = T + (1 - (t - y0) / (y1 - y0)) * (H - T - B)
        lab = f"1e{t:g}" if logy else f"{t:g}"
        out.append(f'<line x1="{L - 5}" y1="{Y:.1f}" x2="{L}" y2="{Y:.1f}" stroke="black"/>')
        out.append(f'<text x="{L - 8}" y="{Y + 4:.1f}" text-anchor="end">{lab}</text>')
    out.append(f'<text x="{(L + W - R) / 2}" y="{H - 12}" text-anchor="middle">{_esc(xlabel)}</text>')
    out.append(f'<text x="16" y="{(T + H - B) / 2}" text-anchor="middle" '
               f'transform="rotate(-90 16 {(T + H - B) / 2})">{_esc(ylabel)}</text>')
    for k, s in enumerate(series):
        c = s.get("colour", _COLOURS[k % len(_COLOURS)])
        pts = [(px(x), py(y)) for x, y in zip(s["x"], s["y"])
               if not math.isnan(x) and not math.isnan(y) and (not logy or y > 0)]
        if s.get("style", "line") == "line":
            d = " ".join(f"{X:.1f},{Y:.1f}" for X, Y in pts)
            out.append(f'<polyline points="{d}" fill="none" stroke="{c}" stroke-width="1.5"/>')
        else:
            out += [f'<circle cx="{X:.1f}" cy="{Y:.1f}" r="2.5" fill="{c}"/>' for X, Y in pts]
        ly = T + 14 + 18 * k
        out.append(f'<line x1="{W - R + 10}" y1="{ly - 4}" x2="{W - R + 30}" y2="{ly - 4}" '
                   f'stroke="{c}" stroke-width="2"/>')
        out.append(f'<text x="{W - R + 35}" y="{ly}">{_esc(s["label"])}</text>')
    out.append("</svg>")
    Path(path).parent.mkdir(parents=True, exist_ok=True)
    Path(path).write_text("\n".join(out) + "\n")


def _esc(s):
    return s.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")


def listing_numbers(run_dir, label):
    """The numbers after `label` on every listing line that holds it, in order: the
    listing prints these values with all their digits, the result files with seven."""
    out = []
    for line in (Path(run_dir) / "gelmor.lst").read_text(errors="replace").splitlines():
        if label in line:
            vals = []
            for tok in line.split(label, 1)[1].replace("=", " ").replace(",", " ").split():
                try:
                    vals.append(float(tok.replace("D", "E")))
                except ValueError:
                    pass
            out.append(vals)
    return out


def grid_planes(ends, counts):
    """The node coordinates along one axis of a graded grid: sub-intervals ending at
    `ends` (from 0) with `counts` equal bricks each, as the deck's xg and nlx give them."""
    p, lo = [0.0], 0.0
    for hi, m in zip(ends, counts):
        p += [lo + (hi - lo) * (k + 1) / m for k in range(m)]
        lo = hi
    return p

# ---- several plots in one SVG, and a line of nodes out of a field file -----------------

def svg_panels(path, panels):
    """Several `svg_plot` panels stacked in one SVG.  panels: list of dicts with the
    arguments of svg_plot (title, xlabel, ylabel, series and optionally logy)."""
    parts = []
    for k, p in enumerate(panels):
        part = Path(str(path) + f".panel{k}")
        svg_plot(part, p["title"], p["xlabel"], p["ylabel"], p["series"], p.get("logy", False))
        lines = part.read_text().splitlines()
        part.unlink()
        # the panel's own <svg> and </svg> lines give way to a shifted group
        parts.append(f'<g transform="translate(0,{420 * k})">\n' + "\n".join(lines[1:-1]) + "\n</g>\n")
    Path(path).write_text(f'<svg xmlns="http://www.w3.org/2000/svg" width="640" height="{420 * len(panels)}" '
                          f'font-family="sans-serif" font-size="12">\n' + "".join(parts) + "</svg>\n")


def field_line(rows, axis, column, at=(0.0, 0.0)):
    """The nodes of a field file (rows of x, y, z, T, C, H) along axis 0, 1 or 2 whose other
    two coordinates equal `at` (in axis order): sorted (coordinate, rows[column]) pairs."""
    others = [i for i in range(3) if i != axis]
    return sorted((r[axis], r[column]) for r in rows
                  if abs(r[others[0]] - at[0]) < 1e-9 and abs(r[others[1]] - at[1]) < 1e-9)


def check_refinement(report, name, steps, errors):
    """Notes a refinement series (step sizes and errors, coarse to fine) with the observed
    order between levels, and checks that the error falls at every refinement: the
    'error' printed is the count of refinements at which it did not."""
    orders = [math.log(e0 / e1) / math.log(h0 / h1) if e0 > 0 and e1 > 0 else math.nan
              for h0, h1, e0, e1 in zip(steps, steps[1:], errors, errors[1:])]
    report.note(f"{name} series: " + ", ".join(f"{h:g} -> {e:.2e}" for h, e in zip(steps, errors))
                + "; observed orders " + ", ".join(f"{p:.2f}" for p in orders))
    misses = sum(1 for e0, e1 in zip(errors, errors[1:]) if not e1 < e0)
    return report.check(f"{name} series: refinements where error did not fall", float(misses), 0.0)


def set_records(text, changes):
    """`set_record` for each (tag, values) pair in turn."""
    for tag, values in changes:
        text = set_record(text, tag, values)
    return text


def z_column(text, layers, t_body, t_top):
    """Regrids a deck of one brick column along z whose records carry the tags [grid z],
    [flow face 1], [flow face 2], [elements], [tinit body] and [tinit top]: `layers` layers
    of the deck's depth and properties, every node below the top at t_body, the top node
    at t_top."""
    nz = layers + 1
    props = next(line for line in text.split("\n") if "[elements]" in line).split()[2:11]
    return set_records(text, (("[grid z]", str(layers)),
                              ("[flow face 1]", f"1 2 1 {nz} 10.0 0"),
                              ("[flow face 2]", f"1 2 1 {nz} 10.0 0"),
                              ("[elements]", [1, layers] + props),
                              ("[tinit body]", f"1 2 1 2 1 {layers} {t_body} {t_body} 1"),
                              ("[tinit top]", f"1 2 1 2 {nz} {nz} {t_top} {t_top} 0")))
