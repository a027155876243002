#pragma once
// Writing VTK XML files in ASCII: structured grids (.vts), point sets (.vtp) and the
// time collections (.pvd) that tie a series of them together.
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace gvtk {

// A file written under a temporary name and renamed when it is complete, so that a
// failed conversion leaves no half file behind.
class OutFile {
public:
    explicit OutFile(std::filesystem::path path);
    ~OutFile();
    OutFile(const OutFile&) = delete;
    OutFile& operator=(const OutFile&) = delete;
    void put(std::string_view s);
    // A value in its shortest form that reads back to the same double; NaN as "nan".
    void num(double v);
    // Values of a data array: a blank before each, six to a line.
    void value(double v);
    // An integer value of a data array, as value() places it.
    void index(long long v);
    // Ends a short last line of values.
    void end_line();
    void commit();

private:
    void flush();
    void counted();  // one value more on the line: the line breaks after `values_per_line`
    std::filesystem::path path_, part_;
    std::FILE* f_ = nullptr;
    std::string buf_;
    int on_line_ = 0;
    bool done_ = false;
};

// The text of an XML attribute value.
std::string xml_escape(std::string_view s);

// <?xml ...?><VTKFile type=...> and the opening of the data set element, with the time as
// field data that readers show as the time of a lone file.
void open_vtk(OutFile& o, const char* type, const std::string& attributes, double time);
void close_vtk(OutFile& o, const char* type);
// <DataArray ...> of Float64 with `components` values a point, and its end.
void open_array(OutFile& o, std::string_view name, int components);
void close_array(OutFile& o);

// The point counts of a structured grid along x, y and z; text() is its WholeExtent.
struct Extent {
    long long nx, ny, nz;
    std::string text() const;
};

// One data set of a time collection.
struct TimeStep {
    double time;
    std::string file;  // relative to the collection
};
void write_pvd(const std::filesystem::path& path, const std::vector<TimeStep>& steps);

}  // namespace gvtk
