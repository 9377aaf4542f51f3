// The tables of a map by position and by name.
//
// A map is a list of tables, and callers ask for the tables one by one.  Without an index all
// look-ups together would cost the square of the number of tables.  The index is made when a
// look-up would walk far.  It grows with the map, since a user's map can be used between two of its
// buffers.  The last table is never in it, since the parser of the map may not have read its name
// yet.  That table is found by a walk, and so are those that there was no memory for.
//
// Tested by tests/automap/map_index_test.cpp
#pragma once

#include "core/context.h"

#include <string_view>

namespace jmap {

inline constexpr uint64_t kWalkedTables = 32;  // up to that many tables are walked

// The table at a position, from 0; null when there is none, or no map.
[[nodiscard]] DSINFO* tableAt(JMAP_PRIVATE* p, MAP* map, uint64_t position) noexcept;

// Whether two names are the same.  It must be false for names that differ in more than the case of
// their letters, and give the same answer for equal names.
using SAMENAME = bool(JMAP_PRIVATE* p, std::string_view a, std::string_view b);

// The first table of the map whose name is the same as `name`; null when there is none, or no map.
[[nodiscard]] DSINFO* findTable(JMAP_PRIVATE* p, MAP* map, std::string_view name,
                                SAMENAME* same) noexcept;

}  // namespace jmap
