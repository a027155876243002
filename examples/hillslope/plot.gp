# Draws the water table against the Dupuit curve, and the heads in the moved grid:
#   cd scratch/hillslope && gnuplot plot.gp
if (!exists("lib")) lib = "../../examples/plots/lib.gp"
load lib

set output "hillslope_table.png"
set title "hillslope: the water table (top nodes of the moved grid) and the Dupuit curve"
set xlabel "x (m)"; set ylabel "height (m)"
set xrange [0:200]; set yrange [4:10]
set key bottom left
# K is given at 0 °C; water at 10 °C is 1/0.745 times as mobile (gelmor_den_visc_T.plt)
K = 5.0e-6 / 0.74507529; R = 6.3e-9; L = 200.0; h2 = 5.0
dupuit(x, r) = sqrt(h2**2 + r / K * (L**2 - x**2))
top(f) = "< awk 'NR > 3 && $2 == 0 { if ($3 > m[$1] || !($1 in m)) m[$1] = $3 } END { for (x in m) print x, m[x] }' ".f." | sort -g"
plot top("tc3d2_gelmor.out") with points pt 7 ps 0.7 title "gelmor, 100 days (recharge R)", \
     dupuit(x, R) title "Dupuit, R = 6.3e-9 m/s", \
     top("tc3d4_gelmor.out") with points pt 5 ps 0.7 title "gelmor, 200 days (R/4)", \
     dupuit(x, R / 4) title "Dupuit, R/4"

reset
load lib
set output "hillslope_xz.png"
set terminal pngcairo size 900,420
set title "hillslope: heads in the grid that follows the water table, 300 days"
set view map
set pm3d map
set xlabel "x (m)"; set ylabel "z (m)"
set xrange [0:200]; set yrange [0:10]
set cblabel "head (m)"
set cbrange [5:8]
set palette defined (0 "#deebf7", 1 "#08306b")
splot xz("tc3d5_gelmor.out") using 1:3:6 with pm3d, xz("tc3d5_gelmor.out") using 1:3:(0) with lines lc rgb "#555555" lw 0.5
