#pragma once
#include "output/plot_rows.hpp"

// Two-dimensional sections of the node fields: xz planes at the knoy slots, yz planes at
// the knox slots, xy planes at the knoz slots, and the xy maps of the temperature
// extremes.  Each file takes one zone per plane in use; where the coordinates are shared
// with the previous zone (D=(1,2)) only the file's first zone writes them.

// What an xz section of the transport grid shows.
enum class XzKind {
    temperature,    // gelmor_txz.plt: T and Wu, with a text label per zone
    concentration,  // gelmor_cxz.plt: C
    difference,     // tdif.out: T minus the background column (ix, iy) = (1, 1)
};

// Headers, written once at setup.
void xz_header(std::string& b, XzKind kind);
void hxz_header(std::string& b);
void tyz_header(std::string& b);
void hyz_header(std::string& b);
void txy_header(std::string& b);
void hxy_header(std::string& b);
void tpeak_header(std::string& b);

// The zones of one plot time.  `zones` counts the zones of the file so far.
void write_xz_sections(std::ostream& os, const PlotContext& c, XzKind kind, int& zones, std::string& b);
// Heads at the first two knoy slots: one node a record, x, z, head, every zone with its
// coordinates, so that a zone cut from the file reads back as an initial head section.
void write_hxz(std::ostream& os, const PlotContext& c, std::string& b);
void write_tyz(std::ostream& os, const PlotContext& c, std::string& b);
void write_hyz(std::ostream& os, const PlotContext& c, std::string& b);
void write_txy(std::ostream& os, const PlotContext& c, int& zones, std::string& b);
void write_hxy(std::ostream& os, const PlotContext& c, int& zones, std::string& b);
// Tpk, Tmin of every column, then its settlement of the step and in all.
void write_tpeak(std::ostream& os, const PlotContext& c, PlotOutputs& p, const std::vector<double>& dzcol,
                 const std::vector<double>& dztot);

// Running extremes of temperature over each column, taken at the peak-tracking steps.
void update_peak_maps(const Grid& g, const Fields& f, PlotOutputs& p);

// True when any of the five slots of a section list is in use.
bool any_slot(const std::array<int, 6>& kno);
