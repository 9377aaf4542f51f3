// A path cut at its last separator.
//
// Tested by tests/automap/discovery_test.cpp
#pragma once

#include "core/map.h"
#include "core/text.h"
#include "scan/path_text.h"
#include "scan/path_tree.h"

#include <string_view>

namespace jmap {

// The two sides of the last separator; without one `parent` is a null view.  Both are borrowed.
struct PATHPARTS {
    std::string_view parent;
    std::string_view last;
};

[[nodiscard]] inline PATHPARTS partsOf(JMAP_PRIVATE* p, std::string_view path) noexcept {
    const char* first = nullptr;
    const char* last = nullptr;
    QVStrSize firstLen = 0;
    QVStrSize lastLen = 0;
    (void)splitPath(p, path.data(), lengthOf(path), &first, &firstLen, &last,
                    &lastLen);  // always 0
    return {view(first, firstLen), view(last, lastLen)};
}

[[nodiscard]] inline std::string_view parentOf(JMAP_PRIVATE* p, std::string_view path) noexcept {
    return partsOf(p, path).parent;
}

// These build the text of a path in `pathScratch`: it is valid until the next call of any of them.
// A null view without memory.
[[nodiscard]] inline std::string_view pathOf(JMAP_PRIVATE* p, const PATHINFO& info) {
    return pathText(p, info.node, info.node->textLen);
}

[[nodiscard]] inline std::string_view pathOf(JMAP_PRIVATE* p, const VARINFO& column) {
    return column.inTree ? pathText(p, column.node, column.pathLen)
                         : view(column.path, column.pathLen);
}

[[nodiscard]] inline std::string_view tablePathOf(JMAP_PRIVATE* p, const DSINFO& ds) {
    return ds.tableNode == nullptr ? view(ds.tablePath, ds.tablePathLen)
                                   : pathText(p, ds.tableNode, ds.tablePathLen);
}

[[nodiscard]] inline bool hasPath(const VARINFO& column, std::string_view path) {
    return column.inTree ? pathIs(column.node, column.pathLen, path)
                         : view(column.path, column.pathLen) == path;
}

// What a user's map says of the column; nothing of an automatic one.
[[nodiscard]] inline const USERVARINFO& userPartOf(const VARINFO& column) noexcept {
    static constexpr USERVARINFO kNothing{};
    return column.user == nullptr ? kNothing : *column.user;
}

[[nodiscard]] inline std::string_view nameOf(const VARINFO& column) noexcept {
    return view(column.name, column.nameLen);
}

[[nodiscard]] inline std::string_view nameOf(const DSINFO& ds) noexcept {
    return view(ds.name, ds.nameLen);
}

}  // namespace jmap
