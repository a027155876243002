#pragma once
#include "output/plot_rows.hpp"
#include "timeloop/balances.hpp"

// Time series of one record a step (heat totals, peak temperatures, boundary fluxes,
// mass sums) behind an open-ended zone line, and the element maps of the moment steps:
// the K section and the surface heat fluxes.

void htot_header(std::string& b);
void peak_header(std::string& b);
void bndy_header(std::string& b);
void mass_header(std::string& b);
void heatfluxtop_header(std::string& b);
void surface_flux_header(std::string& b);
void kplot_header(std::string& b);

// tdays, htotr, htota, hinr, hts2, hqtop: six E 16/8.
void write_htot(std::ostream& os, double tdays, const HeatTotals& h, std::string& b);
// tdays and the extremes of T over the y plane knoy(1); with no plane the limits.
void write_peak(std::ostream& os, const PlotContext& c, std::string& b);
void write_bndy(std::ostream& os, double tdays, const BoundaryFluxes& q, std::string& b);
void write_mass(std::ostream& os, double tdays, const MassSums& m, std::string& b);
// One row for each stack of elements: centre of the top element, its x index, the
// surface flux terms, and T, head of the stack's top elements.
void write_heatfluxtop(std::ostream& os, const PlotContext& c, const TopFluxes& t, std::string& b);
// Conductive flux through the top and the bottom of each stack.
void write_surface_flux(std::ostream& os, const PlotContext& c, const TopFluxes& t, std::string& b);
// K, K(T)kr, its log, porosity and bulk thermal K at the nodes of the y plane knoy(1).
void write_kplot(std::ostream& os, const PlotContext& c, std::string& b);

// Closing line of a file with an open-ended zone: the count a user puts in its place.
void write_count_line(std::ostream& os, int count, std::string& b);
