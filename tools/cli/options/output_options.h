// The options that say how rows are written, and where convert writes them.
//
// Tested by tests/tool/golden/dictionary.t and tests/tool/golden/usage.t
#pragma once

#include "formats/formats.h"

#include <string>

namespace CLI {
class App;
}

namespace qvej::cli {

struct Options;

// Where convert writes.
enum class OutputPlace {
    DIRECTORY,   // a file for each table
    TABLE_FILE,  // one file for the one table
    STORE_FILE,  // one file for all tables
    DATABASE     // at an address
};

// As they are written, before they mean anything.
struct RawOutput {
    std::string format, null, dates = "auto";
    bool gzip = false, zstd = false, replace = false, append = false;
};

void declareOutputOptions(CLI::App& app, RawOutput& raw, Options& options);

// After the name of the output is known.  Throws a Failure.
void readOutputOptions(const CLI::App& app, const RawOutput& raw, Options& options);

}  // namespace qvej::cli
