// The nesting stack: the containers and member names around the value being scanned.
//
// Tested by tests/scan/nesting_test.cpp
#include "nesting.h"

#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"

#include <algorithm>
#include <cstring>

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

// Gives one array of label lengths room for `size` depths and a spare entry.  The spare one stays
// 0: the length byte of "FAKE" below the deepest label is taken from it.
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

// An entry; its name follows it in the same piece of memory, since entries come and go with every
// member.
LEVEL* makeLevel(JMAP_PRIVATE* p, WHAT what, std::string_view name) {
    constexpr auto kLevelBytes = static_cast<QVStrSize>(sizeof(LEVEL));
    auto* l = static_cast<LEVEL*>(p->cpool->allocate(p->cpool, kLevelBytes + lengthOf(name), 0));
    if (l == nullptr) {
        return nullptr;
    }
    *l = {};
    l->what = what;
    if (what == WHAT_LABEL) {
        l->name = reinterpret_cast<char*>(l + 1);
        l->nameLen = lengthOf(name);
        std::memcpy(l->name, name.data(), name.size());
    }
    return l;
}

// Takes a label into the lengths by depth.
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

QVStatus pushText(JMAP_PRIVATE* p, std::string_view name) {
    QV_TRY(beginPath(p));
    QV_TRY(jmapVarstrCheck(p, &p->path, lengthOf(name) + 2));
    put(&p->path, p->sep);
    put(&p->path, name);
    return QV_OK;
}

}  // namespace

QVStatus newLevel(JMAP_PRIVATE* p, WHAT what, const char* name, QVStrSize nameLen) {
    LEVEL* l = makeLevel(p, what, view(name, nameLen));
    if (l == nullptr) {
        return QV_NOMEM;
    }
    if (what == WHAT_LABEL) {
        // Kept: after a failure the entry is not freed and the label may be counted already.
        QV_TRY(countLabel(p, nameLen));
        QV_TRY(pushText(p, view(name, nameLen)));
    }
    if (p->lhead == nullptr) {
        p->ltail = l;
    } else {
        l->next = p->lhead;
        p->lhead->prev = l;
    }
    p->lhead = l;
    dumpLevels(p);
    return QV_OK;
}

LEVEL* popLevel(JMAP_PRIVATE* p) {
    LEVEL* l = p->lhead;
    if (l == nullptr) {
        return nullptr;
    }
    if (l->next != nullptr) {
        l->next->prev = nullptr;
    }
    p->lhead = l->next;
    if (l->what == WHAT_LABEL) {
        p->path.len -= l->nameLen + 1;
    }
    // Kept: the member name "" is counted when pushed but not when popped, so that every later
    // record of the document counts one label too many.
    if (l->nameLen != 0) {
        --p->labelCount;
    }
    return l;
}

QVStatus freeLevel(JMAP_PRIVATE* p, LEVEL* l) {
    return poolFree(p->cpool, l);
}

void dumpLevels(JMAP_PRIVATE* p) {
    if (!p->debugLevel) [[likely]] {
        return;
    }
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
