// Where a map goes that the tool makes: standard output, or the file of -o.
//
// Tested by tests/tool/golden/map.t
#pragma once

#include "formats/sources.h"
#include "tools/cli/options/options.h"

#include <string>

namespace qvej::cli {

// Throws the Failure of a file that would be refused, before there is a map.
void checkMapOutput(const Options& options, const Sources& sources);

// `map`: a JSON document without line ends.  A column a line comes out, or with --compact the map
// as it is.  It never replaces one of the `sources`.  Throws a Failure.
void putMap(const std::string& map, const Options& options, const Sources& sources);

}  // namespace qvej::cli
