// Ready heads of records.
//
// The head of a path is the bytes of its marker's record and a blank.  A record is a copy of the
// head, with a few fields patched, and the value.  A node of the path tree gets a head when it
// occurs again: a document may have millions of paths that occur once.  Heads have a fixed store
// (HEADSTORE), in which new heads replace the oldest.  A node without a head takes that of its
// parent and adds its own name.
//
// Tested by tests/scan/record_stream_test.cpp
#pragma once

#include "core/context.h"
#include "record_format.h"

#include <cstring>

namespace jmap {

// Heads are copied in steps of this many bytes, and padded so that the last step may read past
// their end.  Most heads take one step, so the branch of the loop is predicted well.
inline constexpr QVStrSize kHeadStep = 64;

// Bytes of the head.
[[nodiscard]] inline QVStrSize headLenOf(const PATHNODE* node) noexcept {
    return kRecordFixedBytes + node->labels + node->textLen + 1;
}

// Gives the node or its parent a head.  False when neither gets one: there is no memory, the head
// is longer than a piece of the store, or debug switches ask for notes on every record.
[[nodiscard]] bool prepareHead(JMAP_PRIVATE* p, PATHNODE* node);

inline void copyHead(char* to, const char* head, QVStrSize headLen) {
    for (const char* const end = head + headLen; head < end; to += kHeadStep, head += kHeadStep) {
        std::memcpy(to, head, static_cast<std::size_t>(kHeadStep));
    }
}

// Writes the head that the node would have, from the head of its parent.
void putHeadFromParent(const PATHNODE* node, char* to);

// Writes the head of a node that has one, or whose parent has.  May write up to a step more.
inline void putHead(const PATHNODE* node, QVStrSize headLen, char* to) {
    if (node->head != nullptr) [[likely]] {
        copyHead(to, node->head, headLen);
    } else {
        putHeadFromParent(node, to);
    }
}

}  // namespace jmap
