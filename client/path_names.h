// Names that the document itself has for its tables and columns: of each the last piece of its
// path, or more pieces where two would be equal.
//
//     /root/fr/price   price         /root/fr/items   fr/items
//                                    /root/de/items   de/items
//
// A name of one piece is that piece, whatever is in it.  In a name of more pieces, joined by "/", a
// "/" or "\" that a piece itself has follows a "\".  Should a name of one piece read the same as
// one of several, it gets longer.  So all names differ.
//
// Tested by tests/client/path_names_test.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

enum class Naming {
    MAP,      // of tables and columns: letters, digits and "_", at most some 32
    ORIGINAL  // the document's own, any text of any length, no two the same
};

// How a name is made of a path.
struct PathName {
    uint32_t pieces = 1;  // the last ones of the path
    uint32_t number = 0;  // that follows as "~2", where paths do not tell two apart; 0: none
};

struct NamedPath {
    std::string_view prefix;  // of the name
    std::string_view path;    // separator 0x02
};

// Always valid UTF-8.
[[nodiscard]] std::string nameOf(const NamedPath& path, PathName name);

// A path by its number; its texts are valid until the next call.
using PathOf = std::function<NamedPath(std::size_t)>;

// Whose name gets longer where several would be equal.
enum class Longer {
    ALL,   // that of each
    LATER  // of each but the first, so that a name depends only on those before it
};

// Names for `count` paths, in order, so that all differ; none when the last pieces do.
[[nodiscard]] std::vector<PathName> distinctNames(std::size_t count, const PathOf& pathOf,
                                                  Longer longer);

// The last piece of a path; of an empty one the empty text.
[[nodiscard]] std::string_view lastPiece(std::string_view path);

// The path without its last piece.
[[nodiscard]] std::string_view withoutLastPiece(std::string_view path);

}  // namespace qvej
