// A document counted in parts, on several threads.
//
// Tested by tests/client/parts_test.cpp
#pragma once

#include "../document.h"
#include "part_counts.h"
#include "text_part.h"

#include <vector>

namespace qvej {

// Where names are data, adding up the parts costs more than scanning the whole, and the walk's own
// tree of paths takes more memory than records do.
inline constexpr uint64_t kMostPathsCounted = 30'000;

// How often each object and array has come in a document that counts alone.  Throws QV_NOMEM.
[[nodiscard]] std::vector<ContainerCount> containersOf(QVEJMAPJsonContexth document);

// Counts all parts and adds them to `sum`, a document with DocumentOptions::ofParts, which is
// finished then, and to `parts.counts`.  False: it cannot be divided, a limit is reached, or its
// text is wrong; a scan of the whole then says what is the matter.  Throws what reading throws.
[[nodiscard]] bool scanParts(PartsOfDocument& parts, Document& sum);

}  // namespace qvej
