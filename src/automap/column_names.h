// Names of the value columns of one table: valid, and unique without regard to case.
//
// Tested by tests/automap/column_names_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// One place of a set of names.
struct COLUMNSLOT {
    const VARINFO* column;  // null: the place is empty
    uint32_t hash;          // of its name in upper case
    int32_t nextSuffix;  // lowest number that may still be free behind this name; 0: not yet asked
};

// A set of the names of one table, which a table gets when it has many columns: looking through the
// list then costs too much.  It changes no name.  Zero-filled there is none.
struct COLUMNNAMES {
    COLUMNSLOT* slots;  // [size] in the document pool, freed by `endColumnNames`; null: no set
    uint64_t size;      // a power of two
    uint64_t count;     // names in it, at most half of `size`
};

inline constexpr uint64_t kListedColumns =
    64;  // up to that many columns the list is looked through

// Makes the name in `s` a valid column name: cut to kNameMax bytes, then validated, then, when a
// column of the list `inl` has the name in any case, ended by the first number from 2 on that makes
// it unique.  A number that does not fit behind the name takes its end.
//   s, insLen  the name in and out, with room for kNameMax bytes
//   names      set of the names of `inl`
// Returns QV_OK or a status of the host's formatting or transcoding.
[[nodiscard]] QVStatus makeZULVariable(JMAP_PRIVATE* p, char* s, QVStrSize* insLen, VARINFO* inl,
                                       const COLUMNNAMES& names);

// Brings the set up to date after a column has been appended to `ds`.  Without memory there is no
// set, and the list is looked through.
void indexLastColumn(JMAP_PRIVATE* p, DSINFO* ds, COLUMNNAMES& names) noexcept;

void endColumnNames(JMAP_PRIVATE* p, COLUMNNAMES& names) noexcept;

}  // namespace jmap
