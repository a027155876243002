#pragma once
// The conversions of one run directory's result files into files for viewers.
#include "vtk_xml.hpp"

#include <filesystem>
#include <optional>
#include <string>

namespace gvtk {

namespace fs = std::filesystem;

// The flow grid of the run as its listing gives it: the heads of the field files are
// numbered on it, with nz levels a column where the transport grid has nzt.
struct FlowGrid {
    long long nx = 0, ny = 0, nz = 0;
};
// From the listing's line "flow grid size, nx,ny,nz:"; none if the listing is absent or
// stops before the grid.
std::optional<FlowGrid> read_flow_grid(const fs::path& listing);

// A field file tc3dN_gelmor.out as a structured grid with T, C and H; without the flow
// grid the heads cannot be placed and are left out.  Returns the time of the file (days).
double convert_field_file(const fs::path& in, const fs::path& out, const std::optional<FlowGrid>& flow);

// The movie tc3d_gelmormovie.out as one structured grid a frame in the folder `frames`
// and the collection `pvd` of their times.  Returns the number of frames.
int convert_movie(const fs::path& in, const fs::path& frames, const fs::path& pvd);

// veloc3d.out, one point set a zone (print time) with the element centres and the
// velocity vector, and their collection.  Returns the number of zones.
int convert_vectors(const fs::path& in, const fs::path& sets, const fs::path& pvd);

// A series file as CSV: the names of the variables line as the header row, one row a
// record; with `zoned`, a first column "zone" with the zone's number, and if `title_column`
// is given a second column of that name with the number in the zone's title.  Returns
// the number of rows.
long long convert_series(const fs::path& in, const fs::path& out, int width, bool zoned,
                         const std::string& title_column);

}  // namespace gvtk
