// The rows of many tables, made from the events of a scan.
//
// Tested by tests/reader/row_walk_test.cpp
#include "row_walk.h"

#include "core/guard.h"
#include "core/pool.h"
#include "scan/events.h"
#include "scan/record_format.h"

#include <algorithm>
#include <cstddef>

static_assert(offsetof(ROWWALK, machine) == 0);

namespace jmap {
namespace {

constexpr QVStrSize kTextBytes = 65536;  // room for copies, more when one text needs it

// ---- Paths ----------------------------------------------------------------------------------

// Finds by its text what a node means that comes for the first time.
[[gnu::noinline]] PASSPATH* findMeaning(ROWWALK* walk, PATHNODE* node) {
    const std::string_view path = pathText(walk->machine.p, node, node->textLen);
    if (path.data() == nullptr) {
        walk->status = QV_NOMEM;
        return &walk->nothing;
    }
    PASSPATH* found = lookUpPath(walk->machine.paths, path);
    if (found == nullptr) {
        found = &walk->nothing;
    }
    found->node = node;  // the only one, unless texts decide
    node->meaning = found;
    return found;
}

PASSPATH* meaningOf(ROWWALK* walk, PATHNODE* node) {
    return node->meaning != nullptr ? node->meaning : findMeaning(walk, node);
}

bool isBelow(const PATHNODE* node, const PATHNODE* above) {
    const PATHNODE* at = node;
    while (at->labels > above->labels) {
        at = &at->parent->node;
    }
    return at == above && at != node;
}

// Ends the rows that a marker at a node ends.  Two nodes may have the same text once the tree says
// so; then texts decide.
QVStatus endRowsAtNode(ROWMACHINE* machine, const PATHNODE* node) {
    if (machine->p->byText) [[unlikely]] {
        const std::string_view path = pathText(machine->p, node, node->textLen);
        if (path.data() == nullptr) {
            return QV_NOMEM;
        }
        endRowsAt(machine, path);
        return QV_OK;
    }
    while (machine->top != nullptr && !isBelow(node, machine->top->node)) {
        endTop(machine, machine->top->node == node);
    }
    return QV_OK;
}

// ---- Texts ----------------------------------------------------------------------------------

// Makes room for one more copy.
[[gnu::noinline]] QVStatus textRoom(ROWWALK* walk, QVStrSize size) {
    VARSTR* texts = &walk->texts;
    QVPoolh pool = walk->machine.rows.pool;
    QV_TRY(parkRows(walk->machine.rows));
    texts->len = 0;
    if (size <= texts->alloc) {
        return QV_OK;
    }
    (void)poolFree(pool, texts->str);  // replaced even if this fails
    texts->alloc = 0;
    texts->str = poolBytes(pool, std::max(size, kTextBytes));
    if (texts->str == nullptr) {
        return QV_NOMEM;
    }
    texts->alloc = std::max(size, kTextBytes);
    return QV_OK;
}

// Makes the text of a value one that is valid until the rows are parked.
QVStatus keepValue(ROWWALK* walk, VALTYPE kind, std::string_view* text) {
    const uintptr_t offset = reinterpret_cast<uintptr_t>(text->data()) - walk->buf;
    const bool isWord = kind == VAL_BOOLEAN || kind == VAL_NULL;  // static
    if (offset < walk->bufLen || isWord) [[likely]] {
        return QV_OK;
    }
    VARSTR* texts = &walk->texts;
    const QVStrSize size = lengthOf(*text);
    if (size > texts->alloc - texts->len) [[unlikely]] {
        QV_TRY(textRoom(walk, size));
    }
    char* const copy = texts->str + texts->len;
    std::copy_n(text->data(), text->size(), copy);
    texts->len += size;
    *text = view(copy, size);
    return QV_OK;
}

// ---- Events ---------------------------------------------------------------------------------

[[gnu::noinline]] QVStatus handOutItems(ROWWALK* walk) {
    JMAPPassItem item;
    while (walk->status == QV_OK && handOut(&walk->machine, &item)) {
        walk->status = walk->take(walk->arg, &item);
        startHanded(&walk->machine);
    }
    return walk->status;
}

QVStatus handOutAll(ROWWALK* walk) {
    return hasItem(walk->machine) ? handOutItems(walk) : QV_OK;
}

QVStatus takeMarker(ROWWALK* walk, PATHNODE* node, bool root) {
    ROWMACHINE* machine = &walk->machine;
    QV_TRY(endRowsAtNode(machine, node));
    QV_TRY(handOutAll(walk));
    machine->roots += root ? 1 : 0;
    if (PASSPATH* found = meaningOf(walk, node); found != &walk->nothing) {
        countMarker(machine, found);
    }
    return walk->status;
}

QVStatus takeValue(ROWWALK* walk, PASSPATH* found, std::string_view text, VALTYPE kind) {
    const bool cut =
        kind == VAL_STRING && lengthOf(text) == kMaxStringLen && walk->machine.p->valueCut;
    if (found->uses != nullptr) {
        QV_TRY(keepValue(walk, kind, &text));
    }
    QV_TRY(storeValue(&walk->machine, *found, kind, text, cut));
    return handOutAll(walk);
}

// What a scan does that makes rows: see events.h.
struct WalkSink {
    static QVStatus marker(JMAP_PRIVATE* p) {
        ROWWALK* walk = p->walk;
        QV_TRY(walk->status);
        PATHNODE* node = &p->pathAt->node;
        const bool root = node == &p->pathRoot.node;
        p->rootMarkers += root ? 1 : 0;
        walk->status =
            fitsBlock(node->textLen, p->labelCount) ? takeMarker(walk, node, root) : QV_NOMEM;
        return walk->status;
    }

    static QVStatus value(JMAP_PRIVATE* p, PATHNODE* node, std::string_view text, VALTYPE kind) {
        ROWWALK* walk = p->walk;
        QV_TRY(walk->status);
        // A label "" does not show in the path of a value: it counts for the path before it.
        const bool named = node->nameLen != 0;
        PATHNODE* place = named ? node : &node->parent->node;
        if (!fitsBlock(place->textLen + 1 + lengthOf(text), p->labelCount + (named ? 1 : 0)))
            [[unlikely]] {
            walk->status = QV_NOMEM;
            return QV_NOMEM;
        }
        PASSPATH* found = meaningOf(walk, place);
        if (found != &walk->nothing) {
            walk->status = takeValue(walk, found, text, kind);
        }
        return walk->status;
    }

    // A failure is told by the next event, or at the end of the buffer.
    static bool known(JMAP_PRIVATE* p, PATHNODE* node, std::string_view text, VALTYPE kind) {
        if (node->meaning == nullptr) [[unlikely]] {
            return false;
        }
        (void)value(p, node, text, kind);
        return true;
    }

    static QVStatus placeholder(JMAP_PRIVATE* p, const PATHNODE* node) {
        constexpr QVStrSize kValueBytes = 1 + 3;  // a blank and "VAR"
        ROWWALK* walk = p->walk;
        if (!fitsBlock(node->textLen + kValueBytes, p->labelCount + 1)) {
            walk->status = QV_NOMEM;
        }
        return walk->status;
    }
};

}  // namespace

QVStatus openWalk(JMAP_PRIVATE* p, const DSINFO* alldata, DSINFO* const* tables,
                  QVStrSize tableCount, uint64_t flags, ROWWALK** out) {
    if (alldata != nullptr &&
        std::find(tables, tables + tableCount, alldata) != tables + tableCount) {
        return JMAP_NOTABLE;
    }
    QVPoolh pool = newPool(U"qvejmap walk");
    if (pool == nullptr) {
        return QV_NOMEM;
    }
    auto* walk = poolNew<ROWWALK>(pool);
    if (walk == nullptr) {
        (void)destroyHandle(pool);  // nothing is in it yet
        return QV_NOMEM;
    }
    walk->machine.walks = true;
    walk->machine.rows.textsGo = true;
    const QVStatus rc = openMachine(&walk->machine, p, pool, nullptr, tables, tableCount, flags);
    if (rc != QV_OK) {
        closeMachine(&walk->machine);
        (void)destroyHandle(pool);  // the first failure is returned
        return rc;
    }
    p->walk = walk;
    installScanCallbacks<WalkSink>(&p->parseCB);
    *out = walk;
    return QV_OK;
}

void beginWalkPart(ROWWALK* walk) {
    ROWMACHINE* machine = &walk->machine;
    if (walk->status == QV_OK) {
        walk->status = endRowsAtNode(machine, &machine->p->pathAt->node);
    }
    if (walk->status == QV_OK) {
        (void)handOutAll(walk);  // its status is that of the walk
    }
    forgetAll(machine);
    walk->begun = false;
}

QVStatus endWalkPart(ROWWALK* walk) {
    JMAP_PRIVATE* p = walk->machine.p;
    const PATHNODE* node = &p->pathAt->node;
    const std::string_view path = pathText(p, node, node->textLen);
    walk->next = path.data() == nullptr ? nullptr : poolCopy(walk->machine.rows.pool, path);
    walk->nextLen = lengthOf(path);
    return walk->next == nullptr ? QV_NOMEM : QV_OK;
}

void beginBuffer(ROWWALK* walk, const void* buf, QVStrSize bufLen) {
    if (!walk->begun) {
        walk->begun = true;
        startCounting(&walk->machine);
    }
    walk->buf = reinterpret_cast<uintptr_t>(buf);
    walk->bufLen = static_cast<uintptr_t>(bufLen);
}

QVStatus endBuffer(ROWWALK* walk) {
    const QVStatus parked = parkRows(walk->machine.rows);
    walk->bufLen = 0;
    walk->texts.len = 0;
    QV_TRY(walk->status);
    walk->status = parked == QV_OK ? askGuardOfMemory(walk->machine.p, 0) : parked;
    return walk->status;
}

QVStatus endWalk(ROWWALK* walk) {
    if (walk->next != nullptr) {
        endRowsAt(&walk->machine, view(walk->next, walk->nextLen));
    } else {
        endAll(&walk->machine);
    }
    return handOutAll(walk);
}

bool hasLeft(const ROWWALK* walk) noexcept {
    return hasValuesLeft(walk->machine, view(walk->next, walk->nextLen));
}

uint64_t* walkCount(ROWWALK* walk, QVStrSize table, QVStrSize column) {
    const PASSTABLE& of = walk->machine.tables[table];
    for (uint32_t i = 0; i < of.ordinalCount; ++i) {
        if (of.ordinals[i].column == static_cast<uint32_t>(column)) {
            return &of.ordinals[i].path->count;
        }
    }
    return nullptr;
}

QVStatus closeWalk(ROWWALK* walk) {
    walk->machine.p->walk = nullptr;
    closeMachine(&walk->machine);
    QVPoolh pool = walk->machine.rows.pool;
    (void)destroyHandle(pool);  // the walk is gone with it
    return QV_OK;
}

}  // namespace jmap
