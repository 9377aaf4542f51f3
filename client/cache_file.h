// Where records go that leave memory, when nobody names a file.
//
// Most documents never need a file, and one that does must leave nothing behind, whatever ends the
// program, and let nobody else look into it.  So the file has no name: the host makes it, when the
// first block leaves memory, in the directory that it is given here.
//
// Tested by tests/tool/golden/spill.t and tests/tool/golden/interrupt.t
#pragma once

#include <string>

namespace qvej {

// $TMPDIR, else /tmp, with the "/" at its end that asks the host for a file without a name.
[[nodiscard]] std::string privateCacheDirectory();

}  // namespace qvej
