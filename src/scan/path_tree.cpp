// The tree of known paths: one node for each distinct path of the document so far.
//
// Tested by tests/scan/path_tree_test.cpp
#include "path_tree.h"

#include "core/pool.h"
#include "nesting.h"
#include "path_stats.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

namespace jmap {
namespace {

constexpr int64_t kFewMembers = 16;  // up to so many are compared one by one
// Up to so many still are without memory for the table; a larger object would take too long.
constexpr int64_t kMostListed = 4096;

// NOLINTNEXTLINE(bugprone-sizeof-expression): the pointer itself is in the key
constexpr QVStrSize kParentBytes = sizeof PATHNODE::parent;
static_assert(offsetof(PATHNODE, parent) + kParentBytes == sizeof(PATHNODE));

static_assert(offsetof(PATHBRANCH, node) + sizeof(PATHNODE) == sizeof(PATHBRANCH));

// A record of the tree, all zero.
template <class T>
T* newRecord(JMAP_PRIVATE* p) {
    char* mem = arenaBytes(&p->pathArena, p->cpool, sizeof(T));
    if (mem != nullptr) {
        std::memset(mem, 0, sizeof(T));
    }
    return reinterpret_cast<T*>(mem);
}

// A child of `pathAt`: a PATHBRANCH, or a PATHNODE alone.  What precedes the node is zero.  Null
// also for a path longer than an int32_t says, which no record could hold.
template <class T>
PATHNODE* newNode(JMAP_PRIVATE* p, std::string_view name) {
    PATHNODE* at = &p->pathAt->node;
    if (childrenOf(p, at) == nullptr || at->textLen + 1 + lengthOf(name) > INT32_MAX) {
        return nullptr;
    }
    char* mem =
        arenaBytes(&p->pathArena, p->cpool, static_cast<QVStrSize>(sizeof(T)) + lengthOf(name));
    if (mem == nullptr) {
        return nullptr;
    }
    std::memset(mem, 0, sizeof(T));
    copyShort(mem + sizeof(T), name);
    auto* node = reinterpret_cast<PATHNODE*>(mem + sizeof(T) - sizeof(PATHNODE));
    node->parent = p->pathAt;
    node->nameLen = static_cast<int32_t>(lengthOf(name));
    node->labels = at->labels + 1;
    node->textLen = at->textLen + 1 + node->nameLen;
    ++p->pathNodes;
    return node;
}

// Makes the table `members` when there is none; false without memory.
bool hasTable(JMAP_PRIVATE* p) {
    if (p->members == nullptr) {
        constexpr std::u32string_view kName = U"path tree tracker";
        QVHndlp host = qvGlobalHandle();
        p->members = host->createTracker(host, QV_TRACKER_HASH, 1, kName.data(),
                                         static_cast<QVStrSize>(kName.size()));
    }
    return p->members != nullptr;
}

// A member's key in the table: the address of its parent, and its name.
bool enterMember(JMAP_PRIVATE* p, PATHNODE* node) {
    const char* key = reinterpret_cast<const char*>(&node->parent);
    return p->members->insert(p->members, key, kParentBytes + node->nameLen, node) == QV_OK;
}

bool enterMembers(JMAP_PRIVATE* p) {
    if (!hasTable(p)) {
        return false;
    }
    PATHBRANCH* member = p->pathAt->node.children->members;
    while (member != nullptr && enterMember(p, &member->node)) {
        member = member->sibling;
    }
    return member == nullptr;
}

// Whether the table has all members of `pathAt`.
bool isIndexed(const JMAP_PRIVATE* p) {
    return p->pathAt->node.indexed && p->members != nullptr;
}

// Enters a new member of `pathAt` into the table.  The first few members are not entered; all are
// when there are many.  When one cannot be entered, the table is not used for this object: the list
// has all members.  All are entered again each time their number has doubled, so that one failure
// does not make a large object slow.  False for an object too large for its list.
[[nodiscard]] bool indexMember(JMAP_PRIVATE* p, PATHNODE* node) {
    PATHNODE* at = &p->pathAt->node;
    const int64_t count = at->children->memberCount;
    if (isIndexed(p)) {
        at->indexed = enterMember(p, node);
    } else if (count > kFewMembers && std::has_single_bit(static_cast<uint64_t>(count - 1))) {
        at->indexed = enterMembers(p);
    }
    return at->indexed || count <= kMostListed;
}

PATHNODE* findInList(const PATHCHILDREN* below, std::string_view name) {
    PATHBRANCH* member = below == nullptr ? nullptr : below->members;
    while (member != nullptr && !equalShort(nameOf(&member->node), name)) {
        member = member->sibling;
    }
    return member == nullptr ? nullptr : &member->node;
}

PATHNODE* findMember(JMAP_PRIVATE* p, std::string_view name) {
    VARSTR* key = &p->path;  // no record is being written
    key->len = 0;
    if (!isIndexed(p) || jmapVarstrCheck(p, key, kParentBytes + lengthOf(name)) != QV_OK) {
        return findInList(p->pathAt->node.children, name);
    }
    put(key, std::string_view(reinterpret_cast<const char*>(&p->pathAt), kParentBytes));
    put(key, name);
    return static_cast<PATHNODE*>(p->members->find(p->members, key->str, key->len));
}

PATHNODE* makeMember(JMAP_PRIVATE* p, std::string_view name) {
    PATHNODE* node = newNode<PATHBRANCH>(p, name);
    if (node == nullptr) {
        return nullptr;
    }
    PATHCHILDREN* at = p->pathAt->node.children;
    branchOf(node)->sibling = at->members;
    at->members = branchOf(node);
    ++at->memberCount;
    return indexMember(p, node) ? node : nullptr;
}

bool hasElements(const PATHBRANCH* at) {
    const PATHCHILDREN* below = at->node.children;
    return below != nullptr && (below->elements[0] != nullptr || below->elements[1] != nullptr);
}

// Whether a new member might have the text of another node.
bool memberIsUnsure(const JMAP_PRIVATE* p, std::string_view name) {
    const bool likeAnElement = !name.empty() && name.back() >= '0' && name.back() <= '9';
    return name.find(p->sep) != std::string_view::npos || (likeAnElement && hasElements(p->pathAt));
}

// Whether a new element might have the text of another node.  An element named after a label and a
// plain one of the same container can have one name only when the label begins with "element".
bool elementIsUnsure(JMAP_PRIVATE* p, bool plain, std::string_view name) {
    const PATHCHILDREN* below = p->pathAt->node.children;
    return below != nullptr &&
           ((below->memberCount != 0 && findMember(p, name) != nullptr) ||
            (below->elements[plain ? 0 : 1] != nullptr &&
             firstOf(nameOf(&p->pathAt->node), kPlainBase.size()) == kPlainBase));
}

}  // namespace

void startPathTree(JMAP_PRIVATE* p) {
    p->pathRoot = {};
    p->pathRoot.node.textLen = static_cast<int32_t>(p->rootL);
    p->pathAt = &p->pathRoot;
}

PATHCHILDREN* childrenOf(JMAP_PRIVATE* p, PATHNODE* node) {
    if (node->children == nullptr) {
        node->children = newRecord<PATHCHILDREN>(p);
    }
    return node->children;
}

PATHNODE* memberNode(JMAP_PRIVATE* p, std::string_view name) {
    PATHNODE* node = expectedMember(p->pathAt, name);
    if (node == nullptr) {
        node = findMember(p, name);
    }
    if (node == nullptr) {
        if (memberIsUnsure(p, name)) {
            lookUpByText(p);
        }
        node = makeMember(p, name);
    }
    return node;
}

PATHNODE* elementNode(JMAP_PRIVATE* p, bool plain, int64_t number, std::string_view name) {
    PATHNODE* at = &p->pathAt->node;
    PATHNODE* last = at->children == nullptr ? nullptr : at->children->lastElement;
    const bool follows = last != nullptr && last->number == number - 1 && last->plain == plain;
    if (number != 1 && !follows) {
        return memberNode(p, name);
    }
    PATHNODE* element = number != 1               ? last->follower
                        : at->children == nullptr ? nullptr
                                                  : at->children->elements[plain ? 1 : 0];
    if (element == nullptr) {
        if (elementIsUnsure(p, plain, name)) {
            lookUpByText(p);
        }
        element = newNode<PATHNODE>(p, name);
        if (element == nullptr) {
            return nullptr;
        }
        element->plain = plain;
        element->number = number;
        (number == 1 ? at->children->elements[plain ? 1 : 0] : last->follower) = element;
    }
    at->children->lastElement = element;
    return element;
}

// ---- Paths --------------------------------------------------------------------------------------

namespace {

uint64_t elementsBelow(const PATHBRANCH* at) {
    uint64_t count = 0;
    for (int plain = 0; at->node.children != nullptr && plain < 2; ++plain) {
        const PATHNODE* element = at->node.children->elements[plain];
        for (; element != nullptr; element = element->follower) {
            ++count;
        }
    }
    return count;
}

}  // namespace

void writePath(const PATHNODE* node, QVStrSize len, char* to) {
    for (; node->parent != nullptr; node = &node->parent->node) {
        const QVStrSize begin = node->textLen - node->nameLen - 1;
        if (begin < len) {
            to[begin] = kSep;
            copyShort(to + begin + 1,
                      firstOf(nameOf(node), static_cast<std::size_t>(len - begin - 1)));
        }
    }
    std::memcpy(to, kRoot.data(), std::min(kRoot.size(), static_cast<std::size_t>(len)));
}

std::string_view pathText(JMAP_PRIVATE* p, const PATHNODE* node, QVStrSize len) {
    VARSTR* text = &p->pathScratch;
    text->len = 0;
    if (jmapVarstrCheck(p, text, len) != QV_OK) {
        return {};
    }
    writePath(node, len, text->str);
    return view(text->str, len);
}

bool pathIs(const PATHNODE* node, QVStrSize len, std::string_view path) {
    if (lengthOf(path) != len) {
        return false;
    }
    for (; node->parent != nullptr; node = &node->parent->node) {
        const QVStrSize begin = node->textLen - node->nameLen - 1;
        if (begin < len && (path[static_cast<std::size_t>(begin)] != kSep ||
                            firstOf(nameOf(node), static_cast<std::size_t>(len - begin - 1)) !=
                                firstOf(after(path, static_cast<std::size_t>(begin + 1)),
                                        static_cast<std::size_t>(node->nameLen)))) {
            return false;
        }
    }
    return firstOf(path, kRoot.size()) == firstOf(kRoot, path.size());
}

std::string_view lastComponent(const PATHNODE* node) {
    const std::string_view label = node->parent == nullptr ? after(kRoot, 1) : nameOf(node);
    const std::size_t sep = label.rfind(kSep);
    return sep == std::string_view::npos ? label : after(label, sep + 1);
}

bool sameParent(JMAP_PRIVATE* p, const PATHNODE* a, const PATHNODE* b) {
    const QVStrSize len = parentLenOf(a);
    if (len != parentLenOf(b)) {
        return false;
    }
    // Nodes of one parent differ in their last labels only, which come after the common length
    // unless there are separators in them.
    if (a->parent == b->parent && a->parent != nullptr && len == a->parent->node.textLen) {
        return true;
    }
    const std::string_view parent = pathText(p, a, len);
    return lengthOf(parent) == len && pathIs(b, len, parent);
}

const PATHNODE* mostPathsBelow(JMAP_PRIVATE* p, uint64_t* count) {
    const PATHBRANCH* at = &p->pathRoot;
    *count = p->pathNodes;
    // Paths seen, by depth.  A node may be one deeper than there is room for labels: when that room
    // could not grow.
    auto* before = poolNew<uint64_t>(p->cpool, p->labelMaxesSize + 2);
    if (before == nullptr) {
        return &at->node;
    }
    // Innermost first: the first label with more than half below it is the answer.  The root is the
    // last one tried, and always has them.
    for (uint64_t seen = 0;;) {
        before[at->node.labels] = seen;
        seen += elementsBelow(at);
        const PATHCHILDREN* below = at->node.children;
        if (below != nullptr && below->members != nullptr) {
            at = below->members;
            ++seen;
            continue;
        }
        while (2 * (seen - before[at->node.labels]) <= p->pathNodes && at->sibling == nullptr &&
               at->node.parent != nullptr) {
            at = at->node.parent;
        }
        const uint64_t inside = seen - before[at->node.labels];
        if (2 * inside > p->pathNodes || at->sibling == nullptr) {
            *count = inside;
            break;
        }
        at = at->sibling;
        ++seen;
    }
    (void)poolFree(p->cpool, before);  // on failure it is freed with the pool
    return &at->node;
}

}  // namespace jmap
