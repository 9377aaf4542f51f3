// Where a picture or a report goes: standard output, or the file of -o.
//
// Tested by tests/tool/golden/pictures.t and tests/tool/golden/report.t
#pragma once

#include "formats/sources.h"
#include "tools/cli/options/options.h"

#include <string_view>

namespace qvej::cli {

// Throws the Failure of a file that would be refused, before there is a text.
void checkTextOutput(const Options& options, const Sources& sources);

// `text` must be safe to print.  Throws a Failure.
void putText(std::string_view text, const Options& options, const Sources& sources);

}  // namespace qvej::cli
