// The ordinal columns of a table: one counter for each object or array around its values.
//
// Tested by tests/automap/discovery_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// Puts the ordinal columns first, from the outermost on: one for the object that holds the path `n`
// and for each level around it, at most `ordinalCount` of the innermost.  Call it before
// doVariables.
// Returns QV_OK or QV_NOMEM; columns made so far stay in the table.
[[nodiscard]] QVStatus doOrdinals(JMAP_PRIVATE* p, DSINFO* ds, PATHINFO* n);

}  // namespace jmap
