// The tree of known paths: what the scan has learnt about the document's shape.
//
// Tested by tests/scan/path_tree_test.cpp
#include "path_tree.h"

#include "core/pool.h"
#include "nesting.h"
#include "path_stats.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace jmap {
namespace {

constexpr int64_t kFewMembers = 16;  // so many are compared one by one; a power of two

// NOLINTNEXTLINE(bugprone-sizeof-expression): the pointer itself is in the key
constexpr QVStrSize kParentBytes = sizeof PATHNODE::parent;
static_assert(offsetof(PATHNODE, parent) + kParentBytes == sizeof(PATHNODE));

static_assert(offsetof(PATHBRANCH, node) + sizeof(PATHNODE) == sizeof(PATHBRANCH));

// A child of `pathAt`, all zero in front of its node: a PATHBRANCH or only a PATHNODE.
template <class T>
PATHNODE* newNode(JMAP_PRIVATE* p, std::string_view name) {
    char* mem =
        arenaBytes(&p->pathArena, p->cpool, static_cast<QVStrSize>(sizeof(T)) + lengthOf(name));
    if (mem == nullptr) {
        return nullptr;
    }
    std::memset(mem, 0, sizeof(T));
    copyShort(mem + sizeof(T), name);
    auto* node = reinterpret_cast<PATHNODE*>(mem + sizeof(T) - sizeof(PATHNODE));
    node->parent = p->pathAt;
    node->nameLen = lengthOf(name);
    node->labels = p->pathAt->node.labels + 1;
    node->textLen = p->pathAt->node.textLen + 1 + node->nameLen;
    return node;
}

// Makes the table when there is none; false without memory.
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
    PATHBRANCH* member = p->pathAt->members;
    while (member != nullptr && enterMember(p, &member->node)) {
        member = member->sibling;
    }
    return member == nullptr;
}

// Whether the table has all members of `pathAt`.  It ends with the parse.
bool isIndexed(const JMAP_PRIVATE* p) {
    return p->pathAt->node.indexed && p->members != nullptr;
}

// `node` is a new member of `pathAt`.  The members enter the table when they have become many.  If
// one cannot be entered, none is looked up there: the list has them all.  All are entered again
// each time that their number has doubled, so that one failure does not make a large object slow.
void indexMember(JMAP_PRIVATE* p, PATHNODE* node) {
    PATHBRANCH* at = p->pathAt;
    if (isIndexed(p)) {
        at->node.indexed = enterMember(p, node);
    } else if (at->memberCount > kFewMembers &&
               std::has_single_bit(static_cast<uint64_t>(at->memberCount - 1))) {
        at->node.indexed = enterMembers(p);
    }
}

PATHNODE* findInList(const PATHBRANCH* at, std::string_view name) {
    PATHBRANCH* member = at->members;
    while (member != nullptr && !equalShort(nameOf(&member->node), name)) {
        member = member->sibling;
    }
    return member == nullptr ? nullptr : &member->node;
}

PATHNODE* findMember(JMAP_PRIVATE* p, std::string_view name) {
    VARSTR* key = &p->path;  // no record is being written
    key->len = 0;
    if (!isIndexed(p) || jmapVarstrCheck(p, key, kParentBytes + lengthOf(name)) != QV_OK) {
        return findInList(p->pathAt, name);
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
    PATHBRANCH* at = p->pathAt;
    branchOf(node)->sibling = at->members;
    at->members = branchOf(node);
    ++at->memberCount;
    indexMember(p, node);
    return node;
}

bool hasElements(const PATHBRANCH* at) {
    return at->elements[0] != nullptr || at->elements[1] != nullptr;
}

// Whether a new member might have the text of another node.
bool memberIsUnsure(const JMAP_PRIVATE* p, std::string_view name) {
    const bool likeAnElement = !name.empty() && name.back() >= '0' && name.back() <= '9';
    return name.find(p->sep) != std::string_view::npos || (likeAnElement && hasElements(p->pathAt));
}

// Whether a new element might: one named after a label, and a plain one of the same container, are
// alike only when the label begins as a plain one's name.
bool elementIsUnsure(JMAP_PRIVATE* p, bool plain, std::string_view name) {
    const PATHBRANCH* at = p->pathAt;
    return (at->memberCount != 0 && findMember(p, name) != nullptr) ||
           (at->elements[plain ? 0 : 1] != nullptr &&
            firstOf(nameOf(&at->node), kPlainBase.size()) == kPlainBase);
}

}  // namespace

void startPathTree(JMAP_PRIVATE* p) {
    p->pathRoot = {};
    p->pathRoot.node.textLen = p->rootL;
    p->pathAt = &p->pathRoot;
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
    PATHBRANCH* at = p->pathAt;
    PATHNODE* last = at->lastElement;
    const bool follows = last != nullptr && last->number == number - 1 && last->plain == plain;
    if (number != 1 && !follows) {
        return memberNode(p, name);
    }
    PATHNODE** place = number == 1 ? &at->elements[plain ? 1 : 0] : &last->follower;
    if (*place == nullptr) {
        if (elementIsUnsure(p, plain, name)) {
            lookUpByText(p);
        }
        *place = newNode<PATHNODE>(p, name);
        if (*place == nullptr) {
            return nullptr;
        }
        (*place)->plain = plain;
        (*place)->number = number;
    }
    at->lastElement = *place;
    return *place;
}

void writePath(const JMAP_PRIVATE* p, const PATHNODE* node, char* to) {
    std::memcpy(to, p->root, static_cast<std::size_t>(p->rootL));
    for (char* end = to + node->textLen; node->parent != nullptr; node = &node->parent->node) {
        end -= node->nameLen;
        copyShort(end, nameOf(node));
        *--end = p->sep;
    }
}

[[gnu::noinline]] bool makeHead(JMAP_PRIVATE* p, PATHNODE* node) {
    if (p->debugLevel || p->debugPath || p->debugAllData || p->debugInsertPath) {
        return false;
    }
    const QVStrSize recordLen = kRecordFixedBytes + node->labels + node->textLen;
    char* head = arenaBytes(&p->pathArena, p->cpool, recordLen + 1 + kHeadStep);
    if (head == nullptr) {
        return false;
    }
    std::memset(head, 0, static_cast<std::size_t>(recordLen - node->textLen));
    std::memcpy(head, &node->labels, sizeof node->labels);
    for (const PATHNODE* at = node; at->parent != nullptr; at = &at->parent->node) {
        head[sizeof at->labels + static_cast<std::size_t>(at->labels) - 1] =
            static_cast<char>(at->nameLen);  // Kept: modulo 256
    }
    char* behindLens = head + sizeof node->labels + node->labels;
    std::memcpy(behindLens, &node->textLen, sizeof node->textLen);
    head[recordLen - node->textLen - 1] = static_cast<char>(VAL_NOVAL);
    writePath(p, node, head + recordLen - node->textLen);
    head[recordLen] = ' ';
    std::memset(head + recordLen + 1, 0, static_cast<std::size_t>(kHeadStep));
    node->head = head;
    return true;
}

}  // namespace jmap
