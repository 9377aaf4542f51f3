// The tables of a map by position and by name.
//
// A map lists its tables; a caller asks for them one by one, so that walking the list each time
// costs the square of their number.  The index is made when a look-up would walk far, and grows
// with the map: a user's map can be looked at between two of its buffers.  The last table is never
// in it, since the reader of the map may still be naming that one; it and whatever there was no
// memory for are walked.
//
// Tested by tests/automap/map_index_test.cpp
#pragma once

#include "core/context.h"

#include <string_view>

namespace jmap {

inline constexpr uint64_t kWalkedTables = 32;  // up to that many tables are walked

// The table at a position, from 0; null when there is none, or no map.
[[nodiscard]] DSINFO* tableAt(JMAP_PRIVATE* p, MAP* map, uint64_t position) noexcept;

// Whether two names are the same.  It must be false of names that differ in more than the case of
// their letters, and treat equal names alike.
using SAMENAME = bool(JMAP_PRIVATE* p, std::string_view a, std::string_view b);

// The first table of the map whose name is the same as `name`; null when there is none, or no map.
[[nodiscard]] DSINFO* findTable(JMAP_PRIVATE* p, MAP* map, std::string_view name,
                                SAMENAME* same) noexcept;

}  // namespace jmap
