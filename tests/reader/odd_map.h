// A map with tables and columns of every kind, for documents of the names a, b and ab.
#pragma once

#include "testkit/hand_map.h"

namespace jmap::test {

// For each table path a table with columns of all kinds on all paths and one without columns; when
// `single` is set, also one for each kind and path.
inline void makeOddMap(HandMap* hand, bool single) {
    constexpr const char* kPaths[] = {"/root",       "/root/a",    "/root/b",
                                      "/root/ab",    "/root/a/a",  "/root/a/b",
                                      "/root/a/b/b", "/root/none", "/root/a/FAKE"};
    const auto addColumns = [&](const char* path, int kind) {
        constexpr VARTYPE kTypes[] = {VAR_ORDINAL, VAR_DOUBLE, VAR_CHAR};
        const VARTYPE type = kTypes[kind % 3];
        for (const char* name : {"x", "retained", "not"}) {
            VARINFO& column = hand->column(name, type, path, type == VAR_CHAR ? 5 : 8);
            column.retain = *name == 'r';
            column.noretain = *name == 'n';
            if (kind >= 3) {
                HandMap::informat(column);
            }
        }
    };
    for (const char* tablePath : {"/root", "/root/a", "/root/a/b", "/root/none", "", "null"}) {
        tablePath = *tablePath == 'n' ? nullptr : tablePath;
        hand->table("no columns", tablePath);
        hand->table("all", tablePath);
        for (const bool all : {true, false}) {
            for (int i = 0; i < (all || single ? 6 * static_cast<int>(std::size(kPaths)) : 0);
                 ++i) {
                if (!all) {
                    hand->table("one", tablePath);
                }
                addColumns(kPaths[i / 6], i % 6);
            }
        }
    }
}

}  // namespace jmap::test
