// Rows of fields on standard output: aligned with blanks on a terminal, separated by TABs
// elsewhere.
//
// Tested by tests/tool/golden/tables.t and tests/tool/golden/terminal.t
#pragma once

#include "formats/writer.h"

#include <string>
#include <vector>

namespace qvej::cli {

using Row = std::vector<std::string>;  // fields, already safe

void print(Writer& out, std::vector<Row> rows);

}  // namespace qvej::cli
