// A path cut at its last separator.
//
// Tested by tests/automap/discovery_test.cpp
#pragma once

#include "core/map.h"
#include "core/text.h"
#include "scan/path_text.h"

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

[[nodiscard]] inline std::string_view pathOf(const PATHINFO& info) noexcept {
    return view(info.path, info.pathLen);
}

[[nodiscard]] inline std::string_view pathOf(const VARINFO& column) noexcept {
    return view(column.path, column.pathLen);
}

[[nodiscard]] inline std::string_view nameOf(const VARINFO& column) noexcept {
    return view(column.name, column.nameLen);
}

[[nodiscard]] inline std::string_view nameOf(const DSINFO& ds) noexcept {
    return view(ds.name, ds.nameLen);
}

}  // namespace jmap
