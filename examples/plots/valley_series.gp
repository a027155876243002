# The valley example's series over its year: the highest and lowest temperature of the
# section, the heat through its faces and the change of its heat content.
# Run in the run directory after load "lib.gp" (examples/valley_section/plot.gp does both).
set output "valley_series.png"
set multiplot layout 3,1 title "valley\\_section: series over the year"
set lmargin 12
set xlabel "time (days)"
set key top right
set ylabel "T (°C)"
plot "peaktrace.plt" using 1:2 title "highest T in the x/z section", \
     "" using 1:3 title "lowest T (the top held at 5 °C)"
set ylabel "heat flow (W)"
plot "heatflux_bndy.plt" using 1:6 title "up through the top", \
     "" using 1:7 title "through the bottom", \
     "" using 1:2 title "in at x = 0", "" using 1:3 title "out at x = 100 m"
set ylabel "heat content\nchange (MJ)"
first = real(system("awk '/zone/ { getline; print $2; exit }' htot_flux.plt"))
plot "htot_flux.plt" using 1:(($2 - first) / 1e6) title "heat content against the start (htotr)"
unset multiplot
