// The ALLDATA table: a row for every value of the document, with a column for each label of its
// path.
//
//     P       number of labels                 numeric
//     P1 ...  the labels, outermost first      character, one for each level of the deepest path
//     V       1: there is a value, 0: none     numeric
//     Value   the value                        character
//
// Tested by tests/automap/discovery_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// Makes the table from the label statistics and stores it in `alldataDs`.  It is in no map; `m` is
// not used.
//   Kept: `alldataDs` is set first, so after a failure it points to a table with fewer columns.
// Returns QV_OK, QV_NOMEM, or a status of the host's formatting or transcoding.
[[nodiscard]] QVStatus doAlldataDsinfo(JMAP_PRIVATE* p, MAP* m);

}  // namespace jmap
