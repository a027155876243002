#pragma once
#include "output/plot_rows.hpp"
#include "timeloop/histories.hpp"

// The files of the per-step histories: breakthrough at the monitor wells, the freezing
// front along a row and down a column, and the heater column means.  All but the heater
// profile of each step are written once, at the end of the run.

// One zone per well of numit rows: time, Havg, Tavg, Tpeak, Tmin, cpkwell in E 15/6.
void write_break(std::ostream& os, const Histories& h, long long numit, std::string& b);
// The x front and the two z fronts at temperature ts, numit rows each.
void write_fronts(std::ostream& xs, std::ostream& zs, const Histories& h, long long numit, double ts, std::string& b);
void heater_profile_header(std::string& b);
// The levels of step numit: height and 12 cm mean, E 15/5.
void write_heater_profile(std::ostream& os, const Histories& h, long long numit, double tdays, std::string& b);
// Header, then one zone of numit rows per level of the last heater step: time, mean.
void write_heater_series(std::ostream& os, const Histories& h, long long numit, std::string& b);
