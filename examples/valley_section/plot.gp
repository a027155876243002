# Draws the run's main series and its x/z section as PNG files in the run directory:
#   cd scratch/valley_section && gnuplot plot.gp
# (scripts/make-plots runs every example and its plot script, and keeps the pictures)
if (!exists("lib")) lib = "../../examples/plots/lib.gp"
load lib
plots = lib[1:strlen(lib) - 6]
load plots."valley_series.gp"
load plots."valley_section.gp"
