#include "vtk_xml.hpp"

#include <charconv>
#include <cmath>
#include <stdexcept>

namespace gvtk {

namespace {
constexpr std::size_t flush_at = 1 << 20;
constexpr int values_per_line = 6;
}  // namespace

OutFile::OutFile(std::filesystem::path path) : path_(std::move(path))
{
    std::filesystem::create_directories(path_.parent_path());
    part_ = path_;
    part_ += ".part";
    f_ = std::fopen(part_.c_str(), "wb");
    if (!f_) throw std::runtime_error(path_.string() + ": cannot be written");
    buf_.reserve(flush_at + 256);
}

OutFile::~OutFile()
{
    if (f_) std::fclose(f_);
    if (!done_) {
        std::error_code ec;
        std::filesystem::remove(part_, ec);
    }
}

void OutFile::flush()
{
    if (!buf_.empty() && std::fwrite(buf_.data(), 1, buf_.size(), f_) != buf_.size())
        throw std::runtime_error(path_.string() + ": write failed");
    buf_.clear();
}

void OutFile::put(std::string_view s)
{
    buf_.append(s);
    if (buf_.size() >= flush_at) flush();
}

void OutFile::num(double v)
{
    if (std::isnan(v)) {
        buf_.append("nan");
        return;
    }
    char b[32];
    const auto r = std::to_chars(b, b + sizeof b, v);
    buf_.append(b, r.ptr);
}

void OutFile::value(double v)
{
    buf_.push_back(' ');
    num(v);
    counted();
}

void OutFile::counted()
{
    if (++on_line_ == values_per_line) {
        buf_.push_back('\n');
        on_line_ = 0;
        if (buf_.size() >= flush_at) flush();
    }
}

void OutFile::index(long long v)
{
    char b[24];
    const auto r = std::to_chars(b, b + sizeof b, v);
    buf_.push_back(' ');
    buf_.append(b, r.ptr);
    counted();
}

void OutFile::end_line()
{
    if (on_line_ > 0) buf_.push_back('\n');
    on_line_ = 0;
}

void OutFile::commit()
{
    flush();
    const bool ok = std::fclose(f_) == 0;
    f_ = nullptr;
    if (!ok) throw std::runtime_error(path_.string() + ": write failed");
    std::filesystem::rename(part_, path_);
    done_ = true;
}

std::string xml_escape(std::string_view s)
{
    std::string out;
    for (char c : s) {
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        default: out += c;
        }
    }
    return out;
}

std::string Extent::text() const
{
    return "0 " + std::to_string(nx - 1) + " 0 " + std::to_string(ny - 1) + " 0 " + std::to_string(nz - 1);
}

void open_vtk(OutFile& o, const char* type, const std::string& attributes, double time)
{
    o.put("<?xml version=\"1.0\"?>\n<VTKFile type=\"");
    o.put(type);
    o.put("\" version=\"0.1\" byte_order=\"LittleEndian\">\n<");
    o.put(type);
    o.put(attributes);
    o.put(">\n<FieldData>\n<DataArray type=\"Float64\" Name=\"TimeValue\" NumberOfTuples=\"1\" format=\"ascii\">");
    o.num(time);
    o.put("</DataArray>\n</FieldData>\n");
}

void close_vtk(OutFile& o, const char* type)
{
    o.put("</");
    o.put(type);
    o.put(">\n</VTKFile>\n");
}

void open_array(OutFile& o, std::string_view name, int components)
{
    o.put("<DataArray type=\"Float64\" Name=\"");
    o.put(xml_escape(name));
    o.put("\" NumberOfComponents=\"");
    o.put(std::to_string(components));
    o.put("\" format=\"ascii\">\n");
}

void close_array(OutFile& o)
{
    o.end_line();
    o.put("</DataArray>\n");
}

void write_pvd(const std::filesystem::path& path, const std::vector<TimeStep>& steps)
{
    OutFile o(path);
    o.put("<?xml version=\"1.0\"?>\n<VTKFile type=\"Collection\" version=\"0.1\" byte_order=\"LittleEndian\">\n"
          "<Collection>\n");
    for (const TimeStep& s : steps) {
        o.put("<DataSet timestep=\"");
        o.num(s.time);
        o.put("\" group=\"\" part=\"0\" file=\"");
        o.put(xml_escape(s.file));
        o.put("\"/>\n");
    }
    o.put("</Collection>\n</VTKFile>\n");
    o.commit();
}

}  // namespace gvtk
