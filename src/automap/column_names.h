// Names of the value columns of one table: valid, and unique without regard to case.
//
// Tested by tests/automap/column_names_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// One slot of a set of names.
struct COLUMNSLOT {
    const VARINFO* column;  // null: the slot is empty
    uint32_t hash;          // of its name in upper case
    int32_t nextSuffix;     // lowest number that may be free after this name; 0: not known yet
};

// A hash set of the names of one table.  Only a table with many columns has one, since a linear
// search of the list then costs too much.  It changes no name.  Zero-filled there is none.
struct COLUMNNAMES {
    COLUMNSLOT* slots;  // [size] in the document pool, freed by `endColumnNames`; null: no set
    uint64_t size;      // a power of two
    uint64_t count;     // names in it, at most half of `size`
};

inline constexpr uint64_t kListedColumns = 64;  // up to this number of columns the list is searched

// Makes the name in `s` a valid column name: cut to kNameMax bytes, then validated, then, when a
// column of the list `inl` has the name in any case, ended by the first number from 2 on that makes
// it unique.  A number that does not fit after the name replaces its last bytes.
//   s, insLen  the name in and out, with room for kNameMax bytes
//   names      set of the names of `inl`
// Returns QV_OK or a status of the host's formatting or transcoding.
[[nodiscard]] QVStatus makeZULVariable(JMAP_PRIVATE* p, char* s, QVStrSize* insLen, VARINFO* inl,
                                       const COLUMNNAMES& names);

// Adds the name of the last column of `ds` to the set.  Without memory there is no set, and the
// list is searched.
void indexLastColumn(JMAP_PRIVATE* p, DSINFO* ds, COLUMNNAMES& names) noexcept;

void endColumnNames(JMAP_PRIVATE* p, COLUMNNAMES& names) noexcept;

}  // namespace jmap
