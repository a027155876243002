# Draws the pulse in the fractures and its breakthrough at the wells as PNG files:
#   cd scratch/fractured_block && gnuplot plot.gp
if (!exists("lib")) lib = "../../examples/plots/lib.gp"
load lib

set output "fractured_block_xz.png"
set terminal pngcairo size 1000,640
set multiplot layout 2,2 title "fractured\\_block: the tracer in the x/z section (fractures in black), C on a log scale"
set view map
set pm3d map
set xlabel "x (m)"; set ylabel "z (m)"
set xrange [0:20]; set yrange [0:10]
set size ratio 0.5
set palette defined (0 "#f7f7f7", 0.5 "#fdae61", 1 "#b2182b")
set cblabel "C"
set logscale cb
set cbrange [1e-4:1]
set format cb "10^{%L}"
do for [f in "tc3d1_gelmor.out tc3d2_gelmor.out tc3d3_gelmor.out tc3d4_gelmor.out"] {
    set title sprintf("%g days", field_days(f))
    splot xz(f) using 1:3:($5 > 1e-4 ? $5 : 1e-4) with pm3d, segments("gelmor_fracgeo_xz.plt") using 1:2:(0) with lines lw 2 lc rgb "black"
}
unset multiplot

reset
load lib
set output "fractured_block_wells.png"
set title "fractured\\_block: breakthrough at the two monitor wells (break.plt)"
set xlabel "time (days)"; set ylabel "highest C on the screen"
set key top right
plot zone("break.plt", 1) using 1:6 title "well 1: x = 7 m on the horizontal fracture", \
     zone("break.plt", 2) using 1:6 title "well 2: along the vertical fracture, x = 12 m"
