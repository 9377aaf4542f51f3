// The file for records that leave memory, when the user names none.
//
// Most documents never need it.  It must not stay when the program ends, however it ends, and no
// other user may read it.  So it has no name: the host makes it, when the first block leaves
// memory, in the directory that is given here.
//
// Tested by tests/tool/golden/spill.t and tests/tool/golden/interrupt.t
#pragma once

#include <string>

namespace qvej {

// $TMPDIR, else /tmp, with the "/" at its end that asks the host for a file without a name.
[[nodiscard]] std::string privateCacheDirectory();

}  // namespace qvej
