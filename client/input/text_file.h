// The text of a small file that a person writes: a map, rules.
//
// Tested by tests/bindings/sqlite_extension.py and tests/tool/golden/map_check.t
#pragma once

#include <string>

namespace qvej {

// The whole file, "-" for standard input, without the byte order mark that some editors put in
// front.  Throws Error (QV_IO_OPEN, QV_IO_READ).
[[nodiscard]] std::string textOfFile(const std::string& file);

}  // namespace qvej
