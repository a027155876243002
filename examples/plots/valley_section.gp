# The valley example's x/z section after a year: temperature with the pore velocity as
# arrows, and the solute that the gravel layer has carried across.
# Run in the run directory after load "lib.gp" (examples/valley_section/plot.gp does both).
set output "valley_section_xz.png"
set terminal pngcairo size 900,640
set multiplot layout 2,1 title sprintf("valley\\_section: the x/z section at %g days", field_days("tc3d2_gelmor.out"))
set view map
set pm3d map interpolate 0,0
set xlabel "x (m)"; set ylabel "z (m)"
set xrange [0:100]; set yrange [0:20]
set size ratio 0.4     # z drawn twice as tall as x
set cblabel "T (°C)"
set cbrange [5:8]
# the arrows: 1e-6 m/s draws as 1 m
splot xz("tc3d2_gelmor.out") using 1:3:4 with pm3d, \
      vectors("veloc2dxz.out", 2) using 1:2:(0):($3 * 1e6):($4 * 1e6):(0) with vectors head size 0.6,20 lc rgb "black"
set cblabel "C (relative)"
set cbrange [0:1]
splot xz("tc3d2_gelmor.out") using 1:3:5 with pm3d
unset multiplot
