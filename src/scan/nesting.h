// The nesting stack: the containers and member names around the value being scanned.
//
// The labels on the stack, from the bottom up, are the path of the value.  `pathAt` is their node
// in the tree of known paths.  The context also keeps the current and the longest length of a label
// at each depth.
//
// Tested by tests/scan/nesting_test.cpp
#pragma once

#include "core/context.h"
#include "core/short_bytes.h"
#include "core/status.h"
#include "core/text.h"

#include <string_view>

namespace jmap {

// Pushes a container.  QV_NOMEM leaves the stack as it was.
[[nodiscard]] QVStatus newLevel(JMAP_PRIVATE* p, WHAT what);

// Pushes the label of a member.  QV_NOMEM leaves the stack as it was, perhaps with the label
// counted.  A label that is known is `awaited` only: most have a scalar, which needs it on no
// stack.
[[nodiscard]] QVStatus newLabel(JMAP_PRIVATE* p, std::string_view name);

// Pushes the label that is awaited, if one is.
void pushAwaited(JMAP_PRIVATE* p);
inline void settleLabel(JMAP_PRIVATE* p) {
    if (p->awaited != nullptr) {
        pushAwaited(p);
    }
}

// The same for an element, whose node is known.
[[nodiscard]] QVStatus newElementLabel(JMAP_PRIVATE* p, PATHNODE* node);

// Enters the length of a label that was counted elsewhere, at the depth `labelCount` had.
[[nodiscard]] QVStatus keepLabelLength(JMAP_PRIVATE* p, int32_t depth, int32_t len);

// Pops and returns the top entry; null when the stack is empty.  The entry is valid until the next
// push.
LEVEL* popLevel(JMAP_PRIVATE* p);

// The top entry, null when the stack is empty.
[[nodiscard]] inline LEVEL* peekLevel(JMAP_PRIVATE* p) noexcept {
    return p->lhead;
}

// Whether `labelCount` is right: the next label, or the one popped last, has index `labels` - 1.
// Kept: a member name "" is counted when it is pushed, but not when it is popped.  From then on
// every record of the document has a label too many, and lengths are kept one depth too deep.
[[nodiscard]] inline bool inStep(const JMAP_PRIVATE* p, int32_t labels) noexcept {
    return p->labelCount + 2 == labels;
}

// Notes the stack from top to bottom.
void noteLevels(JMAP_PRIVATE* p);

// The same when `debugLevel` is set.
inline void dumpLevels(JMAP_PRIVATE* p) {
    if (p->debugLevel) [[unlikely]] {
        noteLevels(p);
    }
}

// Grows `v` for `need` more bytes; see jmapVarstrCheck.
[[nodiscard]] QVStatus growVarstr(JMAP_PRIVATE* p, VARSTR* v, QVStrSize need);

// Makes room for `need` more bytes and at least one beyond them: `v` grows to `len` + `need` + 30
// bytes, 1024 at least.  QV_NOMEM leaves `v` as it was.
[[nodiscard]] inline QVStatus jmapVarstrCheck(JMAP_PRIVATE* p, VARSTR* v, QVStrSize need) {
    return v->len + need < v->alloc ? QV_OK : growVarstr(p, v, need);
}

// Appends to `v`, which has the room.
inline void put(VARSTR* v, std::string_view text) noexcept {
    copyShort(v->str + v->len, text);
    v->len += lengthOf(text);
}

inline void put(VARSTR* v, char c) noexcept {
    v->str[v->len++] = c;
}

}  // namespace jmap
