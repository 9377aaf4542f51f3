// Where a map goes that the tool makes: standard output, or the file of -o.
//
// Tested by tests/tool/golden/map.t
#pragma once

#include "tools/cli/options.h"

#include <string>

// `map`: a JSON document without line ends.  `document`: a file that it never replaces.  Throws a
// Failure.
void putMap(const std::string& map, const Options& options, const std::string& document = {});
