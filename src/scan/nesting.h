// The nesting stack: the containers and member names around the value being scanned.
//
// The labels on the stack, read from the bottom, are the path of the value: `path` holds its text,
// the root component and for each label the separator and its bytes, from the first label on.
// Beside the stack the context keeps for each depth of label the current and the longest length.
//
// Tested by tests/scan/nesting_test.cpp
#pragma once

#include "core/context.h"
#include "core/status.h"
#include "core/text.h"

#include <cstring>
#include <string_view>

namespace jmap {

// Pushes an entry.  A label's name is copied; containers come with a null name and length 0.
// QV_NOMEM leaves the entry unlinked, perhaps with its label counted.
[[nodiscard]] QVStatus newLevel(JMAP_PRIVATE* p, WHAT what, const char* name, QVStrSize nameLen);

// Takes the top entry off, null when the stack is empty.  The caller ends it with freeLevel.
[[nodiscard]] LEVEL* popLevel(JMAP_PRIVATE* p);

// The top entry, null when the stack is empty.
[[nodiscard]] inline LEVEL* peekLevel(JMAP_PRIVATE* p) noexcept {
    return p->lhead;
}

// Gives the entry and its name back to the document pool; the pool's status.
[[nodiscard]] QVStatus freeLevel(JMAP_PRIVATE* p, LEVEL* l);

// Notes the stack from top to bottom when `debugLevel` is set.
void dumpLevels(JMAP_PRIVATE* p);

// Grows `v` for `need` more bytes; see jmapVarstrCheck.
[[nodiscard]] QVStatus growVarstr(JMAP_PRIVATE* p, VARSTR* v, QVStrSize need);

// Makes room for `need` more bytes and at least one beyond them: `v` grows to `len` + `need` + 30
// bytes, 1024 at least.  QV_NOMEM leaves `v` as it was.
[[nodiscard]] inline QVStatus jmapVarstrCheck(JMAP_PRIVATE* p, VARSTR* v, QVStrSize need) {
    return v->len + need < v->alloc ? QV_OK : growVarstr(p, v, need);
}

// Appends to `v`, which has the room.
inline void put(VARSTR* v, std::string_view text) noexcept {
    std::memcpy(v->str + v->len, text.data(), text.size());
    v->len += lengthOf(text);
}

inline void put(VARSTR* v, char c) noexcept {
    v->str[v->len++] = c;
}

// Puts the root component into `path` unless it is there.
[[nodiscard]] inline QVStatus beginPath(JMAP_PRIVATE* p) {
    if (p->path.len == 0) [[unlikely]] {
        QV_TRY(jmapVarstrCheck(p, &p->path, p->rootL));
        put(&p->path, view(p->root, p->rootL));
    }
    return QV_OK;
}

}  // namespace jmap
