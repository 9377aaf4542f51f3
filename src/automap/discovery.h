// From the statistics of paths to the automatic map: one table for each group of paths that share a
// parent, then the ALLDATA table beside the map.
//
// Tested by tests/automap/discovery_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// Builds the automatic map, once, after the scan.  `automap` is set first and filled table by
// table.
//   Returns QV_NOMEM when the map itself cannot be allocated (`automap` stays null), the status of
//   a guard that ends the scan, else the status of the ALLDATA step.
//   Kept: a table that fails in any step is left out, and only `droppedTables` tells.  Its name
//   stays counted, and its paths may stay taken.
[[nodiscard]] QVStatus doMapping(JMAP_PRIVATE* p);

// Builds the table that starts at the path `n` and appends it to `m`.  Returns the status of the
// first step that fails; nothing is appended then.
[[nodiscard]] QVStatus doDataset(JMAP_PRIVATE* p, MAP* m, PATHINFO* n);

// Sets the table path of a table whose columns are in place: the parent of its last column's path.
//   Kept: a table that has only ordinals gets the parent of its last ordinal's path, so its table
//   path is the parent of the object that the ordinal counts.
// Returns QV_OK or QV_NOMEM.
[[nodiscard]] QVStatus doTablePath(JMAP_PRIVATE* p, DSINFO* ds);

}  // namespace jmap
