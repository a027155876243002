# Draws the year of frost as PNG files in the run directory:
#   cd scratch/seasonal_frost && gnuplot plot.gp
if (!exists("lib")) lib = "../../examples/plots/lib.gp"
load lib

# temperature over time and depth, with the 0 °C line
set output "seasonal_frost_tz.png"
set title "seasonal\\_frost: temperature of the column over the year (t1dz\\_time.plt), black: 0 °C"
set view map
set pm3d map
set contour base
set cntrparam levels discrete 0
set xlabel "time (days)"; set ylabel "z (m, top at 10 m)"
set cblabel "T (°C)"
set xrange [0:365]; set yrange [0:10]
set cbrange [-10:10]
unset key
splot scans("t1dz_time.plt") using 1:2:3 with pm3d notitle, \
      scans("t1dz_time.plt") using 1:2:3 with lines nosurface lw 2 lc rgb "black"

# profiles every 60 days
reset
load lib
set output "seasonal_frost_profiles.png"
set title "seasonal\\_frost: temperature profiles (t1dz.plt)"
set xlabel "T (°C)"; set ylabel "z (m)"
set yrange [5:10]
set key left bottom
set arrow from 0, graph 0 to 0, graph 1 nohead dt 3
plot for [n = 1:13:2] zone("t1dz.plt", n) using 3:1 title sprintf("%d days", (n - 1) * 30)
