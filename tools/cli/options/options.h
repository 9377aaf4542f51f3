// The command line, read and checked.
//
// Tested by tests/tool/golden/usage.t
#pragma once

#include "client/input/input_list.h"
#include "client/shape/path_pattern.h"
#include "formats/formats.h"
#include "formats/sources.h"
#include "tools/cli/options/output_options.h"
#include "tools/cli/options/reading_options.h"
#include "tools/cli/pictures/picture_format.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qvej::cli {

struct Verb;

struct Options {
    const Verb* verb = nullptr;         // null: help or version was asked for, and printed
    std::vector<std::string> operands;  // the words after the verb, as many as it takes
    InputList inputs;                   // of a verb that takes many: what the operands lead to
    Sources sources;                    // the files that are read

    std::string out;              // of those that write files; empty: not given
    uint64_t limit = UINT64_MAX;  // of read and find
    bool names = false;           // of tables
    bool columns = false;         // of tables
    bool alldata = false;         // of convert
    bool perFile = false;         // of convert
    bool exact = false;           // of map
    bool compact = false;         // of map and map merge
    bool verbose = false;         // of map check
    bool account = false;         // of convert and check

    std::vector<std::string> tables;  // of --table: patterns of names
    std::vector<PathPattern> paths;   // of --path

    std::optional<std::string> value;  // of find
    std::optional<std::string> regex;  // of find
    bool ignoreCase = false;           // of find

    std::string map;      // file of a user's map; empty: the automatic one
    std::string rejects;  // file for values that are rejected; empty: none

    ReadingOptions reading;
    bool retain = false;
    bool carry = false;
    bool force = false;
    bool quiet = false;
    const Format* format = nullptr;
    FormatOptions formatOptions;
    bool json = false;                           // of tables
    PictureFormat picture = PictureFormat::SVG;  // of diagram
    SchemaOptions schema;
    unsigned threads = 1;
};

// Does the map name tables and columns, without a word of the user on that?  Then names that differ
// much from the document's are told.
[[nodiscard]] inline bool namesMayDiffer(const Options& options) {
    return !options.reading.naming && options.map.empty() && !options.quiet;
}

// On how many threads a document may be read in parts, or 0: see ReadingWishes.
[[nodiscard]] inline unsigned partThreads(const Options& options) {
    return options.retain || options.alldata ? 0 : options.threads;
}

// May a shape be proposed?
[[nodiscard]] inline bool shapeMayHelp(const Options& options) {
    return !options.quiet && options.map.empty() && options.reading.shape.empty() &&
           options.tables.empty() && options.paths.empty();
}

// Throws a Failure (WRONG_USAGE).  Prints help and version on standard output.
Options readOptions(int argc, char** argv);

}  // namespace qvej::cli
