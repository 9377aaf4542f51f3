// The value columns of a table.
//
// Tested by tests/automap/discovery_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// An empty column of the automatic map.  Null without memory.
[[nodiscard]] VARINFO* newColumn(JMAP_PRIVATE* p);

// Appends a column for `n` and for every later path of the group in the same object, and marks
// these paths processed.  A placeholder of an empty container is marked, but gets no column.
// Returns QV_OK, QV_NOMEM, or a status of making a name; columns made so far stay in the table.
[[nodiscard]] QVStatus doVariables(JMAP_PRIVATE* p, DSINFO* ds, PATHINFO* n);

}  // namespace jmap
