#pragma once
#include "base/fields.hpp"
#include "base/listing.hpp"
#include "flow/field_index.hpp"
#include "flow/velocities.hpp"
#include "grid/grid.hpp"

// Transport boundaries on the ground surface are fixed where water enters and free where
// it leaves: top nodes switch by the sign of vz of the top element, and the transport
// systems are renumbered.  Flow is never touched.

// Renumbers a transport field after its fixed flags changed: ncum, ndirn, neq and the
// pattern over the transport bricks with 15 entries a row.  fc, qnode and the face codes
// stay.  Stops only if a row needs more than 15 entries.
void recondense(const Grid& g, FieldIndex& fi, const Listing& lst);

// The top-face switch, nodes 1 and 4 of each surface element under its top flow element:
// outflow through a node the mass field holds fixed frees it in both fields, inflow
// through a free node fixes it and its value becomes its fc.  Returns true when a node
// switched; both fields are then renumbered.
bool top_face_switch(const Grid& g, const Velocities& v, FieldIndex& heat, FieldIndex& mass, Fields& f,
                     const Listing& lst);

// The exit boundaries of a saturated age run: the top nodes of every top element with
// vz > 0 that the heat field holds fixed are freed there, and the mass field is
// renumbered.  Returns true when a node changed.
bool age_exit_conversion(const Grid& g, const Velocities& v, FieldIndex& heat, FieldIndex& mass,
                         const Listing& lst);
