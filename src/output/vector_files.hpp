#pragma once
#include "output/plot_rows.hpp"

// Element velocities at their centres: the three 2-D sections, the whole 3-D field, the
// fracture velocities at the end of a run, and the grid Peclet and Courant numbers.

// The three section planes of the 2-D vector files.
enum class VectorPlane { xz, xy, yz };

void vector_header(std::string& b, VectorPlane plane);
void vector3d_header(std::string& b);
void peclet_header(std::string& b);

// Vectors of the element layer knoy(1), knoz(1) or knox(1) (0 stands for 1, an index
// past the last element for the last), six E 14/6 a record.
void write_vectors(std::ostream& os, const PlotContext& c, VectorPlane plane, std::string& b);
// Every element: centre and velocity, one element a record.
void write_vectors3d(std::ostream& os, const PlotContext& c, std::string& b);
// Peclet and Courant numbers of the element layer knoy(1); the first zone of the file
// carries the element centres.  Where the dispersion coefficient is 0 the Peclet number
// is written as 1.0E+30 with the sign of the velocity (0 without flow).
void write_peclet(std::ostream& os, const PlotContext& c, int& zones, std::string& b);

// The fracture velocity files of the end of a run: xz planes and lines along x and z;
// xy planes and lines along x and y; the xy planes lying on node level knoz(1).
void write_fracture_vectors(std::ostream& xz, std::ostream& xy, std::ostream& set1, const PlotContext& c,
                            std::string& b);
