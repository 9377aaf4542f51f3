// The tree of known paths: what the scan has learnt about the document's shape.
//
// `pathAt` is the node of the labels on the stack.  Documents repeat themselves, so each node
// remembers which child came after which; a guess that holds costs one comparison.  A node with
// many members is looked up by hash.
//
// A node that comes back gets a head: the bytes of its marker's record and a blank, so that a
// record is the head, patched, and the value.  Not on first use: of a million paths that occur once
// none would be used.  Heads have a fixed room (HEADSTORE), in which later ones replace earlier
// ones; without a head of its own a node has that of its parent, and its name behind it.
//
// The node of a path knows its statistics.  That two nodes have the same text is rare (a label with
// a separator in it, a member named as an element is); from the first time that it might happen on,
// paths are looked up by text as well.
//
// Tested by tests/scan/path_tree_test.cpp
#pragma once

#include "core/context.h"
#include "core/short_bytes.h"
#include "core/text.h"
#include "record_format.h"

#include <cstddef>
#include <string_view>

namespace jmap {

// Heads are copied by so many bytes, and readable so far.  One step does for most: a loop over
// shorter ones cannot be foretold.
inline constexpr QVStrSize kHeadStep = 64;

inline constexpr QVStrSize kHeadPieceBytes = 65536;  // of a HEADSTORE: 8 MiB in all

// What elements of an array without a member name are named after.
inline constexpr std::string_view kPlainBase = "element";

[[nodiscard]] inline std::string_view nameOf(const PATHNODE* node) noexcept {
    return view(reinterpret_cast<const char*>(node + 1), node->nameLen);
}

// The branch of the node of a member.
[[nodiscard]] inline PATHBRANCH* branchOf(PATHNODE* node) noexcept {
    return reinterpret_cast<PATHBRANCH*>(reinterpret_cast<char*>(node) -
                                         offsetof(PATHBRANCH, node));
}

// Empties the tree and stands at its root.
void startPathTree(JMAP_PRIVATE* p);

// The member of `at` with that name if it is the one that is expected next, else null.
[[nodiscard]] inline PATHNODE* expectedMember(const PATHBRANCH* at,
                                              std::string_view name) noexcept {
    PATHNODE* expected = at->lastMember == nullptr ? nullptr : at->lastMember->node.follower;
    return expected != nullptr && equalShort(nameOf(expected), name) ? expected : nullptr;
}

// The member of `pathAt` with that name, made when there is none.  Null without memory.
[[nodiscard]] PATHNODE* memberNode(JMAP_PRIVATE* p, std::string_view name);

// Element `number` of `at`, when it is known and comes after the last one or is the first; else
// null.
//   plain  its name is not made from the label but is "element" and the number
[[nodiscard]] inline PATHNODE* expectedElement(const PATHBRANCH* at, bool plain,
                                               int64_t number) noexcept {
    const PATHCHILDREN* below = at->node.children;
    if (below == nullptr) {
        return nullptr;
    }
    PATHNODE* expected = number == 1                     ? below->elements[plain ? 1 : 0]
                         : below->lastElement == nullptr ? nullptr
                                                         : below->lastElement->follower;
    return expected != nullptr && expected->number == number && expected->plain == plain ? expected
                                                                                         : nullptr;
}

// The same, made when there is none.  An element that neither is the first nor comes after the last
// one is found as a member of its name.  Null without memory.
[[nodiscard]] PATHNODE* elementNode(JMAP_PRIVATE* p, bool plain, int64_t number,
                                    std::string_view name);

// ---- Paths ----
//
// The path of a node, or the first `len` bytes of it: a table's path and what an ordinal counts are
// the beginning of a column's path.

// Writes it to `to`.
void writePath(const PATHNODE* node, QVStrSize len, char* to);
inline void writePath(const PATHNODE* node, char* to) {
    writePath(node, node->textLen, to);
}

// The text in `pathScratch`, valid until the next call; a null view without memory.
[[nodiscard]] std::string_view pathText(JMAP_PRIVATE* p, const PATHNODE* node, QVStrSize len);

// Whether it is `path`.
[[nodiscard]] bool pathIs(const PATHNODE* node, QVStrSize len, std::string_view path);

// The last component of the path: what follows its last separator.
[[nodiscard]] std::string_view lastComponent(const PATHNODE* node);

// Bytes in front of that separator.
[[nodiscard]] inline QVStrSize parentLenOf(const PATHNODE* node) {
    return node->textLen - lengthOf(lastComponent(node)) - 1;
}

// Whether both paths differ in their last component at most.
[[nodiscard]] bool sameParent(JMAP_PRIVATE* p, const PATHNODE* a, const PATHNODE* b);

// The label below which more than half of all paths lie, the innermost one.  `*count` of them do.
[[nodiscard]] const PATHNODE* mostPathsBelow(JMAP_PRIVATE* p, uint64_t* count);

// ---- Heads ----

// Bytes of the head.
[[nodiscard]] inline QVStrSize headLenOf(const PATHNODE* node) noexcept {
    return kRecordFixedBytes + node->labels + node->textLen + 1;
}

// Gives the node a head.  False when it stays without: there is no memory, it is longer than a
// piece, or every record has notes.
[[nodiscard]] bool makeHead(JMAP_PRIVATE* p, PATHNODE* node);

}  // namespace jmap
