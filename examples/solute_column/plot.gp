# Draws the tracer fronts against the Ogata-Banks solution as a PNG in the run directory:
#   cd scratch/solute_column && gnuplot plot.gp
if (!exists("lib")) lib = "../../examples/plots/lib.gp"
load lib

set output "solute_column_fronts.png"
set title "solute\\_column: C along the column, computed (points) and Ogata-Banks (lines)"
set xlabel "x (m)"; set ylabel "C (relative)"
set xrange [0:60]; set yrange [-0.05:1.05]
set key top right
v = 1.0e-5; D = 0.5 * v
ob(x, t) = 0.5 * (erfc((x - v * t) / (2 * sqrt(D * t))) + exp(v * x / D) * erfc((x + v * t) / (2 * sqrt(D * t))))
base(f) = "< awk 'NR > 3 && $2 == 0 && $3 == 0' ".f
plot base("tc3d1_gelmor.out") using 1:5 with points pt 7 ps 0.5 title "gelmor, 20 days", \
     ob(x, 20 * 86400) title "Ogata-Banks, 20 days", \
     base("tc3d2_gelmor.out") using 1:5 with points pt 7 ps 0.5 title "gelmor, 40 days", \
     ob(x, 40 * 86400) title "Ogata-Banks, 40 days"
