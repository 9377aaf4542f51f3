// Completes a user map from the automatic map of the same document.
//
// Tested by tests/automap/lengths_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// Compares the character columns of the user map with the columns of the same path in the automatic
// map.  Copies the lengths that the user did not give, and marks the lengths that cut values.
// Without either map nothing happens.
void getAutomapLengths(JMAP_PRIVATE* p);

// Lists the character columns of a map that have an informat, in map order, so that the caller can
// write default widths and lengths into the map.  The entries come from `pool`, the caller's. `*ii`
// is the first one and stays as it was when there is none; with a null `ii` there is no list.
// Returns QV_OK, or QV_NOMEM with the entries made so far.
[[nodiscard]] QVStatus charInformatDefaultWidths(JMAP_PRIVATE* p, MAP* m, QVPoolh pool,
                                                 INFORMATINFO** ii);

}  // namespace jmap
