# Draws the well temperatures and the warm plume as PNG files in the run directory:
#   cd scratch/heater_wells && gnuplot plot.gp
if (!exists("lib")) lib = "../../examples/plots/lib.gp"
load lib

set output "heater_wells_wells.png"
set title "heater\\_wells: mean temperature on each well screen (break.plt)"
set xlabel "time (days)"; set ylabel "T (°C)"
set key top right
set arrow from 60, graph 0 to 60, graph 1 nohead dt 3
set label "heater off" at 61, graph 0.95
plot zone("break.plt", 1) using 1:3 title "well 1, 4 m upstream", \
     zone("break.plt", 2) using 1:3 title "well 2, 4 m downstream", \
     zone("break.plt", 3) using 1:3 title "well 3, 9 m downstream", \
     zone("break.plt", 4) using 1:3 title "well 4, 4 m aside"

reset
load lib
set output "heater_wells_xy.png"
set terminal pngcairo size 900,720
set multiplot layout 2,1 title "heater\\_wells: temperature in the plane z = 5 m, wells as circles"
set view map
set pm3d map
set xlabel "x (m)"; set ylabel "y (m)"
set xrange [0:20]; set yrange [0:10]
set size ratio -1
set cblabel "T (°C)"
set cbrange [10:*]
set palette defined (0 "#f7f7f7", 0.4 "#fdae61", 1 "#b2182b")
$wells << EOD
2 5
10 5
15 5
6 8
EOD
do for [f in "tc3d3_gelmor.out tc3d5_gelmor.out"] {
    set title sprintf("%g days", field_days(f))
    splot xy(f, 5) using 1:2:4 with pm3d, \
          $wells using 1:2:(0) with points pt 6 ps 1.5 lc rgb "black"
}
unset multiplot
