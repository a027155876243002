#pragma once
#include <span>

// Element incidence, flat and one-based: local node i (1..8) of element e sits at
// in[(e - 1) * 8 + i], so a table for ne elements has ne*8 + 1 entries and index 0 unused.
// Local nodes 1-4 are the lower face counter-clockwise from (xmin, ymin) seen from
// above, 5-8 the nodes straight over them.

inline int incidence_index(int e, int i) { return (e - 1) * 8 + i; }

inline int node_of(std::span<const int> in, int e, int i) { return in[(e - 1) * 8 + i]; }

// Copies the eight global nodes of element e into nodes[1..8].
inline void element_nodes(std::span<const int> in, int e, int nodes[9])
{
    for (int i = 1; i <= 8; ++i) nodes[i] = in[(e - 1) * 8 + i];
}
