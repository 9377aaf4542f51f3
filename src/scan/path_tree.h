// The tree of known paths: one node for each distinct path of the document so far.
//
// `pathAt` is the node of the labels on the nesting stack.  Documents repeat themselves, so each
// node remembers which child came next the last time.  When the same one comes again, finding it
// costs one comparison.  The members of a node with many members are looked up by hash.
//
// A node points to the statistics of its path.  Two nodes rarely have the same text: it needs a
// label with a separator in it, or a member that is named as an element is.  From the first time
// that this may have happened paths are also looked up by text.
//
// Tested by tests/scan/path_tree_test.cpp
#pragma once

#include "core/context.h"
#include "core/short_bytes.h"
#include "core/text.h"

#include <cstddef>
#include <string_view>

namespace jmap {

// The base name of the elements of an array without a member name.
inline constexpr std::string_view kPlainBase = "element";

[[nodiscard]] inline std::string_view nameOf(const PATHNODE* node) noexcept {
    return view(reinterpret_cast<const char*>(node + 1), node->nameLen);
}

// The branch of the node of a member.
[[nodiscard]] inline PATHBRANCH* branchOf(PATHNODE* node) noexcept {
    return reinterpret_cast<PATHBRANCH*>(reinterpret_cast<char*>(node) -
                                         offsetof(PATHBRANCH, node));
}

// Begins an empty tree, with `pathAt` at its root.
void startPathTree(JMAP_PRIVATE* p);

// The children of the node, which is no element; made when there are none.  Null without memory.
[[nodiscard]] PATHCHILDREN* childrenOf(JMAP_PRIVATE* p, PATHNODE* node);

// The member of `at` that is expected next, if it has that name; else null.
[[nodiscard]] inline PATHNODE* expectedMember(const PATHBRANCH* at,
                                              std::string_view name) noexcept {
    PATHNODE* expected = at->lastMember == nullptr ? nullptr : at->lastMember->node.follower;
    return expected != nullptr && equalShort(nameOf(expected), name) ? expected : nullptr;
}

// Expects the member after the one that was read last.
inline void expectMember(PATHBRANCH* at, PATHNODE* node) noexcept {
    if (at->lastMember != nullptr) {
        at->lastMember->node.follower = node;
    }
    at->lastMember = branchOf(node);
}

// The member of `pathAt` with that name, made when there is none.  Null without memory.
[[nodiscard]] PATHNODE* memberNode(JMAP_PRIVATE* p, std::string_view name);

// Element `number` of `at`, when it is known and is the first one or follows the last one; else
// null.
//   plain  it is named "element" and the number, not after a label
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

// The same, made when there is none.  An element that is neither the first nor follows the last one
// is treated as a member of that name.  Null without memory.
[[nodiscard]] PATHNODE* elementNode(JMAP_PRIVATE* p, bool plain, int64_t number,
                                    std::string_view name);

// ---- Paths ----
//
// No node stores its path.  These routines build the path of `node`, or its first `len` bytes: the
// path of a table, or of an ordinal, is the beginning of the path of a column.

// Writes the path to `to`.
void writePath(const PATHNODE* node, QVStrSize len, char* to);
inline void writePath(const PATHNODE* node, char* to) {
    writePath(node, node->textLen, to);
}

// The path in `pathScratch`, valid until the next call; a null view without memory.
[[nodiscard]] std::string_view pathText(JMAP_PRIVATE* p, const PATHNODE* node, QVStrSize len);

// Whether the path is `path`.
[[nodiscard]] bool pathIs(const PATHNODE* node, QVStrSize len, std::string_view path);

// The last component of the path: what follows its last separator.
[[nodiscard]] std::string_view lastComponent(const PATHNODE* node);

// Bytes before that separator.
[[nodiscard]] inline QVStrSize parentLenOf(const PATHNODE* node) {
    return node->textLen - lengthOf(lastComponent(node)) - 1;
}

// Whether both paths differ in their last component at most.
[[nodiscard]] bool sameParent(JMAP_PRIVATE* p, const PATHNODE* a, const PATHNODE* b);

// The member after `at` in a walk over the tree, each after what it is in: below it, else beside it
// or what it is in; null: none.  The first is the root.
[[nodiscard]] inline PATHBRANCH* nextBranch(PATHBRANCH* at) noexcept {
    const PATHCHILDREN* below = at->node.children;
    if (below != nullptr && below->members != nullptr) {
        return below->members;
    }
    while (at != nullptr && at->sibling == nullptr) {
        at = at->node.parent;
    }
    return at == nullptr ? nullptr : at->sibling;
}

// The innermost label that has more than half of all paths below it.  `*count`: how many.
[[nodiscard]] const PATHNODE* mostPathsBelow(JMAP_PRIVATE* p, uint64_t* count);

}  // namespace jmap
