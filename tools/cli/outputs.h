// Where convert writes.
//
// Tested by tests/tool/golden/dictionary.t and tests/tool/golden/convert.t
#pragma once

#include "formats/destination.h"
#include "formats/sources.h"
#include "tools/cli/options/options.h"

#include <memory>
#include <string>

namespace qvej::cli {

// What can be told before the document is read: no such place, no such module, a file that exists.
// Throws a Failure or Error.
void checkOutput(const Options& options);

[[nodiscard]] std::unique_ptr<Destination> makeDestination(const Options& options,
                                                           const Sources& sources);

// What messages call it: an address without its password.
[[nodiscard]] std::string shownOutput(const Options& options);

}  // namespace qvej::cli
