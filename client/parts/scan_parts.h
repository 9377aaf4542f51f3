// A document counted in parts, on several threads.
//
// Tested by tests/client/parts_test.cpp
#pragma once

#include "../document.h"
#include "text_part.h"

namespace qvej {

// Counts all parts and adds them to `sum`, a document with DocumentOptions::ofParts, which is
// finished then, and to `parts.counts`.  False: it cannot be divided, a limit is reached, or its
// text is wrong; a scan of the whole then says what is the matter.  Throws what reading throws.
[[nodiscard]] bool scanParts(PartsOfDocument& parts, Document& sum);

}  // namespace qvej
