#include "base/files.hpp"

#include <fstream>
#include <sstream>

const std::vector<FileEntry>& file_table()
{
    static const std::vector<FileEntry> table = {
        {5, "gelmor.data", OpenAs::old},
        {6, "gelmor.lst", OpenAs::create},
        {7, "therm_in.data", OpenAs::old},
        {8, "gelmor_txz.plt", OpenAs::create},
        {9, "gelmor_hxz.plt", OpenAs::create},
        {10, "hinput.data", OpenAs::old},
        {11, "tbck.out", OpenAs::create},
        {12, "veloc2dxz.out", OpenAs::create},
        {13, "zdat.out", OpenAs::create},
        {14, "gelmor_txy_cxy.plt", OpenAs::create},
        {15, "break.plt", OpenAs::create},
        {16, "gelmor_tyz.plt", OpenAs::create},
        {17, "moment.out", OpenAs::create},
        {18, "peaktrace.plt", OpenAs::create},
        {19, "htot_flux.plt", OpenAs::create},
        {20, "t1dz.plt", OpenAs::create},
        {21, "gelmor_hyz.plt", OpenAs::create},
        {22, "vfracxz.out", OpenAs::create},
        {23, "var.out", OpenAs::create},
        {24, "param.out", OpenAs::create},
        {25, "tdif.out", OpenAs::create},
        {26, "tc3d1_gelmor.out", OpenAs::create},
        {27, "tc3d2_gelmor.out", OpenAs::create},
        {28, "tc3d3_gelmor.out", OpenAs::create},
        {29, "tc3d4_gelmor.out", OpenAs::create},
        {30, "tc3d5_gelmor.out", OpenAs::create},
        {31, "t1dx.plt", OpenAs::create},
        {32, "veloc3d.out", OpenAs::create},
        {33, "vfracxy.out", OpenAs::create},
        {34, "veloc2dxy.out", OpenAs::create},
        {35, "tc3d_gelmormovie.out", OpenAs::create},
        {36, "veloc2dyz.out", OpenAs::create},
        {40, "gelmor_mass.out", OpenAs::create},
        {41, "gelmor_tpeak.plt", OpenAs::create},
        {42, "gelmor_1dxfront.plt", OpenAs::create},
        {43, "t1dz_tdum.plt", OpenAs::create},
        {44, "heatflux_2Dsurface.plt", OpenAs::create},
        {45, "tair.data", OpenAs::old},
        {46, "gelmor_hxy.plt", OpenAs::create},
        {47, "fgen92.asc", OpenAs::old},
        {48, "hbdy.data", OpenAs::old},
        {49, "t1dx_tdum.plt", OpenAs::create},
        {51, "k.plt", OpenAs::create},
        {52, "vfracxyelemset1.plt", OpenAs::create},
        {53, "veloc2d_in.data", OpenAs::old},
        {54, "heatflux_bndy.plt", OpenAs::create},
        {55, "heatercolumnavg_1Dz.plt", OpenAs::create},
        {56, "heatercolumnavg_vs_t.plt", OpenAs::create},
        {57, "bzin.data", OpenAs::old},
        {58, "gelmor_1dzfront.plt", OpenAs::create},
        {59, "gelmor_Pe_Co_xz.plt", OpenAs::create},
        {60, "t1dx_hflux_xl.plt", OpenAs::create},
        {61, "t1dx_bzq.plt", OpenAs::create},
        {62, "gelmor_cxz.plt", OpenAs::create},
        {63, "heatfluxtop.plt", OpenAs::create},
        {64, "slope_zt.data", OpenAs::old},
        {82, "grid3d.plt", OpenAs::old},
        {88, "gelmor-debug_1dx.plt", OpenAs::create},
    };
    return table;
}

namespace {
constexpr int max_unit = 150;

void clear_table(Files& files, const std::filesystem::path& dir, bool in_memory)
{
    files.dir = dir;
    files.in_memory = in_memory;
    files.out.clear();
    files.in.clear();
    files.out.resize(max_unit);
    files.in.resize(max_unit);
    files.present.assign(max_unit, false);
    files.name.assign(max_unit, "");
    files.problem.clear();
    files.unopened.clear();
    files.failed.clear();
}

void take_old(Files& files, int unit, std::unique_ptr<std::istream> s)
{
    files.present[unit] = true;
    files.in[unit] = std::move(s);
}
}  // namespace

bool open_files(Files& files, const std::filesystem::path& dir)
{
    clear_table(files, dir, false);
    const std::string where = " in " + dir.string();
    for (const FileEntry& f : file_table()) {
        const auto path = dir / f.name;
        files.name[f.unit] = f.name;
        if (f.mode == OpenAs::old) {
            std::error_code ec;
            const bool exists = std::filesystem::exists(path, ec);
            const bool regular = exists && std::filesystem::is_regular_file(path, ec);
            auto s = regular ? std::make_unique<std::ifstream>(path, std::ios::binary) : nullptr;
            if (s && s->is_open()) {
                take_old(files, f.unit, std::move(s));
            } else if (f.unit == unit::deck) {
                files.problem = !exists    ? "no gelmor.data" + where
                                : !regular ? "gelmor.data" + where + " is not a file"
                                           : "gelmor.data" + where + " cannot be read";
                return false;
            }
        } else {
            auto s = std::make_unique<std::ofstream>(path, std::ios::binary | std::ios::trunc);
            const bool open = s->is_open();
            files.out[f.unit] = std::move(s);
            if (open) continue;
            if (f.unit == unit::lst) {
                files.problem = "cannot write gelmor.lst" + where;
                return false;
            }
            files.unopened.push_back(f.name);
        }
    }
    return true;
}

bool open_in_memory(Files& files, const std::map<std::string, std::string>& texts)
{
    if (!texts.contains(file_table().front().name)) return false;
    clear_table(files, {}, true);
    for (const FileEntry& f : file_table()) {
        files.name[f.unit] = f.name;
        if (f.mode == OpenAs::create) {
            files.out[f.unit] = std::make_unique<std::ostringstream>();
        } else if (const auto t = texts.find(f.name); t != texts.end()) {
            take_old(files, f.unit, std::make_unique<std::istringstream>(t->second));
        }
    }
    return true;
}

std::string memory_text(const Files& files, int unit)
{
    const auto* s = dynamic_cast<const std::ostringstream*>(files.out[unit].get());
    return s ? s->str() : std::string();
}

std::vector<std::string> flush_files(Files& files)
{
    std::vector<std::string> failed;
    for (std::size_t u = 0; u < files.out.size(); ++u) {
        if (!files.out[u]) continue;
        files.out[u]->flush();
        if (files.out[u]->fail()) failed.push_back(files.name[u]);
    }
    failed.insert(failed.end(), files.failed.begin(), files.failed.end());
    return failed;
}

std::ostream& open_late(Files& files, int unit, const char* name)
{
    files.name[unit] = name;
    if (files.in_memory) {
        files.out[unit] = std::make_unique<std::ostringstream>();
    } else {
        auto s = std::make_unique<std::ofstream>(files.dir / name, std::ios::binary | std::ios::trunc);
        if (!s->is_open()) files.unopened.push_back(name);
        files.out[unit] = std::move(s);
    }
    return *files.out[unit];
}

void close_unit(Files& files, int unit)
{
    if (files.out[unit]) {
        files.out[unit]->flush();
        if (files.out[unit]->fail()) files.failed.push_back(files.name[unit]);
        files.out[unit].reset();
    }
    if (files.in[unit]) files.in[unit].reset();
}
