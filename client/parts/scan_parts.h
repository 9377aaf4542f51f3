// A document counted in parts, on several threads.
//
// Tested by tests/client/parts_test.cpp
#pragma once

#include "../document.h"
#include "text_part.h"

namespace qvej {

// Where names are data, adding up the parts costs more than scanning the whole, and the walk's own
// tree of paths takes more memory than records do.
inline constexpr uint64_t kMostPathsCounted = 30'000;

// Counts all parts and adds them to `sum`, a document with DocumentOptions::ofParts, which is
// finished then, and to `parts.counts`.  False: it cannot be divided, a limit is reached, or its
// text is wrong; a scan of the whole then says what is the matter.  Throws what reading throws.
[[nodiscard]] bool scanParts(PartsOfDocument& parts, Document& sum);

}  // namespace qvej
