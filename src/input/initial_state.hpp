#pragma once
#include "base/fields.hpp"
#include "base/files.hpp"
#include "base/listing.hpp"
#include "base/options.hpp"
#include "flow/field_index.hpp"
#include "grid/grid.hpp"
#include "input/auxfiles.hpp"
#include "input/deck.hpp"

// Heads at the start: hinput.data for init = 1, else the uniform h0.
void set_initial_heads(Files& files, const Listing& lst, const Deck& deck, const Grid& g, Fields& f);

// Temperature and concentration at the start, from the fixed values and the initial
// blocks of the deck, with the cosine surface values where the top patch asked for
// them.  Returns whether the problem can freeze at all (a set or a value below 0).
bool set_initial_transport(const Listing& lst, const Options& opt, const Deck& deck, const Grid& g, FieldIndex& heat,
                           FieldIndex& mass, Fields& f);

// Fixed heads under a saltwater column: every fixed flow head becomes its reference
// value plus the weight of the concentration column above it and of the sea-bed water
// column.  `setup` is the form run once before the first step (no tide).
void h_adjust(const Listing& lst, bool setup, double htide, double gammac, const Grid& g, const FieldIndex& flow,
              const std::vector<double>& fc0, const ForcingTables& tables, std::vector<double>& fc, Fields& f);
