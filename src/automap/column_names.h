// Names of the value columns of one table: valid, and unique without regard to case.
//
// Tested by tests/automap/column_names_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// An index over the names of one table, which a table gets when it has many columns: looking
// through the list then costs too much.  It changes no name.  Zero-filled it is empty.
struct COLUMNNAMES {
    QVTrackerh tracker;  // upper-cased name -> COLUMNNAME; null: look through the list.  Owned
};

inline constexpr uint64_t kListedColumns =
    64;  // up to that many columns the list is looked through

// Makes the name in `s` a valid column name: cut to kNameMax bytes, then validated, then, when a
// column of the list `inl` has the name in any case, ended by the first number from 2 on that makes
// it unique.  A number that does not fit behind the name takes its end.
//   s, insLen  the name in and out, with room for kNameMax bytes
//   names      index over the columns of `inl`
// Returns QV_OK or a status of the host's formatting or transcoding.
[[nodiscard]] QVStatus makeZULVariable(JMAP_PRIVATE* p, char* s, QVStrSize* insLen, VARINFO* inl,
                                       const COLUMNNAMES& names);

// Brings the index up to date after a column has been appended to `ds`.  QV_NOMEM or a status of
// the tracker.
[[nodiscard]] QVStatus indexLastColumn(JMAP_PRIVATE* p, DSINFO* ds, COLUMNNAMES& names);

}  // namespace jmap
