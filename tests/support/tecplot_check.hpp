#pragma once
#include <string>
#include <vector>

// A strict reader of the result files for the tests.  It walks a file's header, zone,
// text and data lines and checks, zone by zone, that the values written are exactly as
// many as the zone line promises (i*j*k points times the variables not shared by D=),
// that every data field is a well-formed fixed-width field of the file's format, that
// no field overflowed into asterisks, and that rows wrap only at the end of a zone.
// An open zone count (9999 or 999) takes the count of the closing "number of print
// times:" line; without one the zone only has to hold whole points.

// One fixed-width field: 'E' (0.ddddE+xx or 0.dddd+xxx), 'F' (ddd.dddd) or 'I'.
struct FieldFormat {
    char kind = 'E';
    int w = 15;
    int d = 6;
};

// The data records of a file: up to `per_row` fields of one format, or, when `row` is
// given, every record exactly that sequence of fields.
struct RecordLayout {
    FieldFormat field;
    int per_row = 5;
    std::vector<FieldFormat> row;
};

struct CheckReport {
    std::vector<std::string> errors;  // "line n: what"
    int zones = 0;                    // zone lines seen
    long long values = 0;             // data fields seen
    int variables = 0;                // names on the variables line
    bool ok() const { return errors.empty(); }
    std::string text() const;         // the errors, one a line
};

CheckReport check_plot_text(const std::string& text, const RecordLayout& layout);

// Uniform layout helper: `per_row` fields E w.d.
inline RecordLayout e_rows(int per_row, int w, int d) { return RecordLayout{FieldFormat{'E', w, d}, per_row, {}}; }

// True when `s` is exactly one field of format f.
bool well_formed_field(const std::string& s, const FieldFormat& f);

// The record layout of every result file of a run, by file name.
struct ResultFile {
    const char* name;
    RecordLayout layout;
};
const std::vector<ResultFile>& result_files();
