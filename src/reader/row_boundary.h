// Where a row of a table ends and the next begins.  Paths decide, and whether the row has values.
//
// The rows of a table come from the objects at its table path.  The first record at the table path
// begins the row.  Records below it belong to the row.  The next record at the table path, or one
// outside of it, ends the row:
//
//     path against table path     not seen yet   seen
//     other length or text        BEFORE         -
//     shorter                     -              SHORTER        ends the row
//     longer, below it            -              INSIDE
//     longer, not below it        -              OUTSIDE        ends the row
//     same length, other text     BEFORE         OUTSIDE        ends the row
//     the same                    FIRST          AGAIN          ends the row
//     the same, row still empty   FIRST          AGAIN_EMPTY
//
// Tested by tests/reader/row_loop_test.cpp and tests/tool/golden/map_use.t
#pragma once

#include "core/text.h"

#include <string_view>

namespace jmap {

enum class BOUNDARY {
    BEFORE,       // the row has not begun
    FIRST,        // the table path: the row begins
    INSIDE,       // below the table path
    AGAIN_EMPTY,  // Kept: an object without values makes no row when the next one follows
    AGAIN,        // the next row begins
    SHORTER,      // above the table path
    OUTSIDE       // beside the table path
};

// What a record at `path` means for the row.
//   seen         the table path occurred in the row
//   inVariables  the row has received a value
[[nodiscard]] inline BOUNDARY rowBoundary(std::string_view path, std::string_view tablePath,
                                          char sep, bool seen, bool inVariables) noexcept {
    if (path.size() != tablePath.size()) {
        if (!seen) {
            return BOUNDARY::BEFORE;
        }
        if (path.size() < tablePath.size()) {
            return BOUNDARY::SHORTER;
        }
        const bool below =
            path[tablePath.size()] == sep && firstOf(path, tablePath.size()) == tablePath;
        return below ? BOUNDARY::INSIDE : BOUNDARY::OUTSIDE;
    }
    if (path != tablePath) {
        return seen ? BOUNDARY::OUTSIDE : BOUNDARY::BEFORE;
    }
    if (!seen) {
        return BOUNDARY::FIRST;
    }
    return inVariables ? BOUNDARY::AGAIN : BOUNDARY::AGAIN_EMPTY;
}

// Whether the record ends the row.  It is then the first record after it.
[[nodiscard]] constexpr bool endsRow(BOUNDARY boundary) noexcept {
    return boundary == BOUNDARY::AGAIN || boundary == BOUNDARY::SHORTER ||
           boundary == BOUNDARY::OUTSIDE;
}

}  // namespace jmap
