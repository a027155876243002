#pragma once
#include "output/plot_rows.hpp"

#include <filesystem>

// One-dimensional profiles: vertical ones through a column, horizontal ones along the
// x row at knoy(1) (0 stands for 1), and the two time plots that stack one profile
// per record time into a single i-j zone.

void t1dz_header(std::string& b);
void t1dx_header(std::string& b);
void bzq_header(std::string& b);
void hflux_xl_header(std::string& b);
void debug_1dx_header(std::string& b);
void tbck_header(std::string& b);
// The time plots: their zone line promises 9999 profiles; the count is fixed at the end.
void t1dz_time_header(std::string& b, int nzt);
void t1dx_time_header(std::string& b, int nx);

// Vertical profile of head, T, C, Wu, Wu*Sw and layer settlement at each knox slot in
// the y plane knoy(1).  dzl of a node is the freeze-thaw movement (dzel) of the element
// above it, the top node taking its layer's; `dzel` is empty without deformation.
void write_t1dz(std::ostream& os, const PlotContext& c, const std::vector<double>& dzel, std::string& b);
// T and Wu along x at each knoz slot.
void write_t1dx(std::ostream& os, const PlotContext& c, std::string& b);
// Per x row: total settlement, depth of the thaw front, conductance layer values.
void write_bzq(std::ostream& os, const PlotContext& c, const std::vector<double>& dztot, std::string& b);
// Heat flux across the conductance (transfer) layer of a leaky top, per x row.
void write_hflux_xl(std::ostream& os, const PlotContext& c, std::string& b);
// Heat capacity Co and bulk conductivity along the row knoy(1), knoz(1).
void write_debug_1dx(std::ostream& os, const PlotContext& c, std::string& b);
// Background profile: z, T, Wu of the first column.
void write_tbck(std::ostream& os, const PlotContext& c, std::string& b);
// One profile record of each time plot.
void write_t1dz_time(std::ostream& os, const PlotContext& c, std::string& b);
void write_t1dx_time(std::ostream& os, const PlotContext& c, std::string& b);

// Depth below the column top of the thaw front: walking down from the top, the first
// node with T >= 0 and the one above it bracket the front at Ts.
double thaw_depth(const PlotContext& c, int ix, int iy);

// Copies a finished time plot `from` into `to` with the true profile count in its zone
// line: lines 1 and 2 as they are, then "zone i=" npts ",j= " count and `at_label`, then
// the four values of each record up to the first line that is not one (its count line).
void rewrite_time_plot(const std::filesystem::path& from, const std::filesystem::path& to, int npts, int count,
                       const char* at_label);

// One E field of a file written by this system, "0.12345E+01" or "0.12345-101";
// false for anything else.
bool parse_e_field(std::string_view s, double& v);
