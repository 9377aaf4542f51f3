// The nesting stack: the containers and member names around the value being scanned.
//
// Tested by tests/scan/nesting_test.cpp
#include "nesting.h"

#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"
#include "path_tree.h"

#include <algorithm>
#include <utility>

namespace jmap {
namespace {

constexpr QVStrSize kVarstrSlack = 30;    // bytes beyond the need when a VARSTR grows
constexpr QVStrSize kVarstrStart = 1024;  // its smallest size

void noteLabelArrays(JMAP_PRIVATE* p, QVStrSize nameLen) {
    if (p->debugAllData) [[unlikely]] {
        const int32_t top = p->labelCount;
        myLogNote(p,
                  U"newLevel labelCount %2d p->labelMaxes[%d] %2d p->labelCurLens[%d] %2d nameLen "
                  U"%d p->labelCountMax %2d",
                  top + 1, top, p->labelMaxes[top], top + 1, p->labelCurLens[top], noteLen(nameLen),
                  p->labelCountMax);
    }
}

// Grows an array of label lengths to `size` depths and a spare entry, which stays 0: the length
// byte of "FAKE" below the deepest label is taken from it.
QVStatus growLabelArray(JMAP_PRIVATE* p, int32_t** lens, int32_t size) {
    const QVStrSize bytes =
        (static_cast<QVStrSize>(size) + 1) * static_cast<QVStrSize>(sizeof(int32_t));
    void* grown = p->cpool->reallocate(p->cpool, *lens, bytes, QV_ZERO);
    if (grown == nullptr) {
        return QV_NOMEM;
    }
    *lens = static_cast<int32_t*>(grown);
    return QV_OK;
}

QVStatus growLabelArrays(JMAP_PRIVATE* p) {
    const int32_t size = 2 * p->labelMaxesSize;
    if (p->debugAllData) {
        myLogNote(p, U"newLevel realloc %d", size);
    }
    QV_TRY(growLabelArray(p, &p->labelMaxes, size));
    QV_TRY(growLabelArray(p, &p->labelCurLens, size));
    p->labelMaxesSize = size;
    return QV_OK;
}

// The entry above the top; null when there has been none yet.
LEVEL* entryAbove(JMAP_PRIVATE* p) {
    return p->lhead == nullptr ? p->ltail : p->lhead->prev;
}

LEVEL* makeEntryAbove(JMAP_PRIVATE* p) {
    LEVEL* l = entryAbove(p);
    if (l != nullptr) {
        return l;
    }
    l = poolNew<LEVEL>(p->cpool);
    if (l != nullptr) {
        l->next = p->lhead;
        (p->lhead == nullptr ? p->ltail : p->lhead->prev) = l;
    }
    return l;
}

// Counts a label, and enters its length in the lengths by depth.
QVStatus countLabel(JMAP_PRIVATE* p, QVStrSize nameLen) {
    ++p->labelCount;
    if (p->labelCount == p->labelMaxesSize) [[unlikely]] {
        QV_TRY(growLabelArrays(p));
    }
    noteLabelArrays(p, nameLen);
    const int32_t len = static_cast<int32_t>(nameLen);
    int32_t& longest = p->labelMaxes[p->labelCount];
    longest = std::max(longest, len);
    p->labelCurLens[p->labelCount] = len;
    p->labelCountMax = std::max(p->labelCountMax, p->labelCount);
    noteLabelArrays(p, nameLen);
    return QV_OK;
}

QVStatus push(JMAP_PRIVATE* p, LEVEL* l, WHAT what, std::string_view name, PATHNODE* node) {
    l->what = what;
    l->name = name.data();
    l->nameLen = lengthOf(name);
    l->node = node;
    p->lhead = l;
    dumpLevels(p);
    return QV_OK;
}

QVStatus pushMember(JMAP_PRIVATE* p, LEVEL* l, PATHNODE* node) {
    p->pathAt->lastMember = branchOf(node);
    p->pathAt = branchOf(node);
    return push(p, l, WHAT_LABEL, nameOf(node), node);
}

[[gnu::noinline]] QVStatus newLevelSlowly(JMAP_PRIVATE* p, WHAT what) {
    LEVEL* l = makeEntryAbove(p);
    return l == nullptr ? QV_NOMEM : push(p, l, what, {}, nullptr);
}

[[gnu::noinline]] QVStatus newLabelSlowly(JMAP_PRIVATE* p, std::string_view name) {
    LEVEL* l = makeEntryAbove(p);
    PATHNODE* node = l == nullptr ? nullptr : memberNode(p, name);
    if (node == nullptr) {
        return QV_NOMEM;
    }
    QV_TRY(countLabel(p, node->nameLen));
    p->emptyName = p->emptyName || node->nameLen == 0;
    expectMember(p->pathAt, node);
    return pushMember(p, l, node);
}

}  // namespace

QVStatus newLevel(JMAP_PRIVATE* p, WHAT what) {
    LEVEL* l = entryAbove(p);
    if (l == nullptr || p->debugLevel) [[unlikely]] {
        return newLevelSlowly(p, what);
    }
    return push(p, l, what, {}, nullptr);
}

QVStatus newLabel(JMAP_PRIVATE* p, std::string_view name) {
    PATHNODE* node = expectedMember(p->pathAt, name);
    if (node == nullptr || entryAbove(p) == nullptr || !inStep(p, node->labels) ||
        node->nameLen == 0 || p->awaited != nullptr || p->debugLevel || p->debugAllData)
        [[unlikely]] {
        settleLabel(p);
        return newLabelSlowly(p, name);
    }
    // The label has been counted before; only the current length of its depth may have changed.
    p->labelCurLens[p->labelCount + 1] = static_cast<int32_t>(node->nameLen);
    p->pathAt->lastMember = branchOf(node);
    p->awaited = node;
    return QV_OK;
}

void pushAwaited(JMAP_PRIVATE* p) {
    ++p->labelCount;
    (void)pushMember(p, entryAbove(p), std::exchange(p->awaited, nullptr));
}

QVStatus newElementLabel(JMAP_PRIVATE* p, PATHNODE* node) {
    LEVEL* l = makeEntryAbove(p);
    if (l == nullptr) {
        return QV_NOMEM;
    }
    QV_TRY(countLabel(p, node->nameLen));
    return push(p, l, WHAT_LABEL, nameOf(node), node);
}

QVStatus keepLabelLength(JMAP_PRIVATE* p, int32_t depth, int32_t len) {
    while (depth >= p->labelMaxesSize) {
        QV_TRY(growLabelArrays(p));
    }
    int32_t& longest = p->labelMaxes[depth];
    longest = std::max(longest, len);
    p->labelCountMax = std::max(p->labelCountMax, depth);
    return QV_OK;
}

LEVEL* popLevel(JMAP_PRIVATE* p) {
    LEVEL* l = p->lhead;
    if (l == nullptr) {
        return nullptr;
    }
    p->lhead = l->next;
    if (l->node != nullptr) {
        p->pathAt = l->node->parent;
    }
    if (l->nameLen != 0) {  // see inStep
        --p->labelCount;
    }
    return l;
}

void noteLevels(JMAP_PRIVATE* p) {
    myLogNote(p, U"--- level dump ---");
    if (p->lhead == nullptr) {
        myLogNote(p, U"  empty");
    }
    for (const LEVEL& l : each(p->lhead)) {
        switch (l.what) {
            case WHAT_LABEL:
                myLogNote(p, U"   Label [%.*hs]", noteLen(l.nameLen), l.name);
                break;
            case WHAT_ARRAY:
                myLogNote(p, U"   Array");
                break;
            case WHAT_OBJECT:
                myLogNote(p, U"   Object");
                break;
            default:
                myLogNote(p, U" WHAT???");
        }
    }
    myLogNote(p, U"---");
}

QVStatus growVarstr(JMAP_PRIVATE* p, VARSTR* v, QVStrSize need) {
    const QVStrSize alloc = std::max(v->len + need + kVarstrSlack, kVarstrStart);
    void* grown = p->cpool->reallocate(p->cpool, v->str, alloc, 0);  // a null `str` is allocated
    if (grown == nullptr) {
        return QV_NOMEM;
    }
    v->str = static_cast<char*>(grown);
    v->alloc = alloc;
    return QV_OK;
}

}  // namespace jmap
