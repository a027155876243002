#pragma once
#include "output/plot_rows.hpp"

// Whole fields at every transport node: the five field files of the print times, which
// a later run reads back as its restart state, and the 3-D movie.

// One field file: three header lines, then per transport node 1..nnt x, y, z, T, C and
// H, six E 15/6.  H is the head of the same index in flow numbering, so on a grid with an
// unsaturated top zone it is not the head at the line's coordinates; the restart read
// takes it back the same way.  Indices past the flow grid hold no head and write 0.
void write_field_file(std::ostream& os, const PlotContext& c, std::string& b);

void movie_header(std::string& b);
// One frame: the first carries x, y, z, later frames share them (D=(1,2,3)); then the
// frame's time label.
void write_movie_frame(std::ostream& os, const PlotContext& c, int& frames, std::string& b);
