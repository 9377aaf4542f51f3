// The options that say how rows are written, and where convert writes them.
//
// Tested by tests/tool/golden/dictionary.t and tests/tool/golden/usage.t
#pragma once

#include "formats/formats.h"

#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace qvej::cli {

struct Options;

// As they are written, before they mean anything.
struct RawOutput {
    std::string format, null, dates = "auto";
    bool gzip = false, zstd = false, replace = false, append = false;
};

// The values that --format has for that verb, "csv|tsv|..."; with an empty name all.
[[nodiscard]] std::string formatChoices(std::string_view verb);

void declareOutputOptions(CLI::App& app, RawOutput& raw, Options& options);

// After the name of the output is known.  Throws a Failure.
void readOutputOptions(const CLI::App& app, const RawOutput& raw, Options& options);

}  // namespace qvej::cli
