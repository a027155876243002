# Draws the age of the groundwater in the section as PNG files in the run directory:
#   cd scratch/age_section && gnuplot plot.gp
if (!exists("lib")) lib = "../../examples/plots/lib.gp"
load lib

set output "age_section_xz.png"
set terminal pngcairo size 900,520
set title sprintf("age\\_section: groundwater age after %g years, with the flow", field_days("tc3d5_gelmor.out") / 365.25)
set view map
set pm3d map
set xlabel "x (m)"; set ylabel "z (m)"
set xrange [0:400]; set yrange [0:100]
set size ratio 0.5
set cblabel "age (years)"
set cbrange [0:*]
set palette defined (0 "#f7f7f7", 0.3 "#9ecae1", 1 "#08306b")
# arrows show the direction of the flow only, 8 m long; every second element along x
speed(vx, vz) = sqrt(vx**2 + vz**2)
splot xz("tc3d5_gelmor.out") using 1:3:5 with pm3d, \
      vectors("veloc2dxz.out", 5) every 2 using 1:2:(0):(8 * $3 / speed($3, $4)):(8 * $4 / speed($3, $4)):(0) with vectors head size 2,20 lc rgb "#b2182b"

reset
load lib
set output "age_section_profile.png"
set title "age\\_section: age down the column at x = 200 m (t1dz.plt)"
set xlabel "age (years)"; set ylabel "z (m)"
set key bottom left
plot for [n in "2 3 6 11 16"] zone("t1dz.plt", n + 0) using 4:1 title sprintf("%d years", (n - 1) * 20)
