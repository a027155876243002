#pragma once
#include <filesystem>
#include <istream>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

// The file table of a run.  Every file is opened at the start under its fixed unit
// number, so that each output file exists even if it stays empty; the optional inputs
// record whether they exist and their consumers decide later.
enum class OpenAs { old, create };

struct FileEntry {
    int unit;
    const char* name;
    OpenAs mode;
};

// The table in opening order (the deck first, then the listing, ...).
const std::vector<FileEntry>& file_table();

struct Files {
    std::filesystem::path dir;                       // working directory of the run
    bool in_memory = false;                          // every file is a string stream
    std::vector<std::unique_ptr<std::ostream>> out;  // by unit: create files
    std::vector<std::unique_ptr<std::istream>> in;   // by unit: old files that exist
    std::vector<bool> present;                       // by unit: an old file was found
    std::vector<std::string> name;                   // by unit: file name, for messages
    std::string problem;                             // why the table could not be opened
    std::vector<std::string> unopened;               // result files that could not be created
    std::vector<std::string> failed;                 // files closed early whose writes failed

    std::ostream& w(int unit) { return *out[unit]; }
    std::istream* r(int unit) { return in[unit].get(); }
};

// Opens the whole table in dir.  Returns false with `problem` set when the run cannot
// start: the deck is missing, not a file or unreadable, or the listing cannot be created.
// Result files that cannot be created are listed in `unopened`.  An optional input that
// is not a regular file counts as missing.
bool open_files(Files& files, const std::filesystem::path& dir);
// Flushes every output; returns the names of those whose writes failed.
std::vector<std::string> flush_files(Files& files);
// Opens the whole table in memory: the old files that `texts` holds by name (the deck
// among them), every create file an empty string stream.  Same result as open_files.
bool open_in_memory(Files& files, const std::map<std::string, std::string>& texts);
// What a create file of a table in memory holds so far.
std::string memory_text(const Files& files, int unit);
// Opens a late create file (fracture geometry, function table) under a unit.
std::ostream& open_late(Files& files, int unit, const char* name);
void close_unit(Files& files, int unit);

// Unit numbers used by name in the code.
namespace unit {
constexpr int deck = 5, lst = 6, therm_in = 7, hinput = 10, tair = 45, fgen = 47, hbdy = 48, veloc2d_in = 53,
              bzin = 57, slope = 64, grid3d = 82;
constexpr int fracgeo_xz = 99, fracgeo_xy = 98, den_visc = 99;
}  // namespace unit
