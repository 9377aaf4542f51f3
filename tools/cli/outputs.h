// Where convert writes.
//
// Tested by tests/tool/golden/dictionary.t and tests/tool/golden/convert.t
#pragma once

#include "formats/conversion_target.h"
#include "tools/cli/options/options.h"

namespace qvej::cli {

// What can be told before the document is read: no such place, no such module, a file that exists.
// Throws a Failure or Error.
void checkOutput(const Options& options);

[[nodiscard]] ConversionTarget targetOf(const Options& options);

}  // namespace qvej::cli
