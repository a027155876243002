# Helpers for reading gelmor result files in gnuplot, loaded by every plot script.
# The result files are Tecplot-style text: header lines (title=, variables=, zone) and
# rows of numbers.  gnuplot skips the header lines by itself; these filters pick out
# what a plot needs with awk, which every Unix system has.

set terminal pngcairo size 900,560 enhanced font "Sans,11"
set encoding utf8
set style data lines
set key noautotitle

# The x/z plane y = ymin of a full field file (tc3d1_gelmor.out ... tc3d5_gelmor.out):
# one line a node, columns x y z T C H, with a blank line after each column of nodes so
# that "splot ... with pm3d" can draw the section, also on a grid whose top has moved.
xz(f) = "< awk 'NR > 3 && (NR == 4 || $2 == y0) { if (NR == 4) y0 = $2; if (n++ && $1 != px) print \"\"; px = $1; print }' ".f

# The x/y plane at height zz of a full field file, a blank line after each row of nodes.
xy(f, zz) = sprintf("< awk 'NR > 3 && $3 == %g { if (n++ && $1 != px) print \"\"; px = $1; print }' %s", zz, f)

# The number rows of a file, with a blank line wherever the first column changes: the
# scans "splot ... with pm3d" needs for a map over time and depth (t1dz_time.plt).
scans(f) = "< awk '$1 ~ /^ *[-0-9.]/ { if (n++ && $1 != p) print \"\"; p = $1; print }' ".f

# The fracture traces of gelmor_fracgeo_xz.plt: each segment's two ends, a blank line after.
segments(f) = "< awk 'NF == 2 { print; if (++k % 2 == 0) print \"\" }' ".f

# Zone n (1, 2, ...) of a file with one point a line (t1dz.plt, t1dx.plt, break.plt ...).
zone(f, n) = sprintf("< awk '/zone/ { z++; next } z == %d && $1 ~ /^ *[-0-9.]/' %s", n, f)

# Zone n of a velocity file (veloc2dxz.out ...), whose numbers run on over the lines:
# one element a line, x z vx vz.
vectors(f, n) = sprintf("< awk '/zone/ { z++; next } z == %d { for (i = 1; i <= NF; i++) { v[k++] = $i; if (k == 4) { print v[0], v[1], v[2], v[3]; k = 0 } } }' %s", n, f)

# The time a field file holds, from its title line ("T,C,H at t=  0.365000E+03 days").
field_days(f) = real(system("awk 'NR == 1 { sub(/.*t= */, \"\"); print $1 + 0; exit }' ".f))

# A colour scale that reads well in print: blue (low) over white to red (high).
set palette defined (0 "#2c4ea3", 0.5 "#f7f7f7", 1 "#b2182b")
