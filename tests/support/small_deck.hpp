#pragma once
#include <string>
#include <utility>
#include <vector>

// A small complete deck: 4 x 2 x 3 nodes (3 x 1 x 2 bricks of 1 m), heat (v1) and mass,
// saturated, fixed heads on both x faces, temperature held at 8 C on the base and 5 C on
// the top: the initial linear profile is the steady state of conduction and stays.  Each record line ends with a remark naming
// it, so a test replaces whole records by their remark tag, e.g.
// small_deck({{"[options]", "0 0 0 0 0 0 1 0 0 0 0 2 0 0"}}).  A replacement may hold
// several lines; an empty one drops the record.
std::string small_deck(const std::vector<std::pair<std::string, std::string>>& replace = {});
