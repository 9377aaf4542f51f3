// The rows of many tables in one pass over the record stream.
//
// Tested by tests/reader/table_pass_test.cpp
#include "table_pass.h"

#include "block_reader.h"
#include "core/list.h"
#include "core/pool.h"
#include "scan/record_format.h"

#include <cstddef>

static_assert(offsetof(TABLEPASS, machine) == 0);

namespace jmap {
namespace {

// Memory this far after the current record is prefetched, as in Read.
constexpr QVStrSize kPrefetchBytes = 2048;

// ---- Records --------------------------------------------------------------------------------

// Whether the record keeps only the beginning of its value.  Call it once for each record with a
// value, in order.
bool isCut(TABLEPASS* pass, const RECORD& record) {
    if (record.valLen != kMaxStringLen || record.kind != VAL_STRING) [[likely]] {
        return false;
    }
    ++pass->longStrings;
    if (pass->whole == nullptr || pass->whole->number != pass->longStrings) {
        return true;
    }
    pass->whole = pass->whole->next;
    return false;
}

// Handles a value.
QVStatus takeValue(TABLEPASS* pass, const RECORD& record) {
    if (record.kind == VAL_FAKEVARIABLE) {
        return QV_OK;
    }
    ROWMACHINE* machine = &pass->machine;
    const bool cut = isCut(pass, record);
    PASSPATH* found = findPath(&machine->paths, pathOf(record));
    if (found != nullptr) {
        QV_TRY(storeValue(machine, *found, record.kind, valueOf(record), cut));
    }
    return machine->alldata == nullptr ? QV_OK : makeAlldataRows(machine, record, cut);
}

// Handles a marker, in two calls if it ends rows: first it ends them, and when they have been
// handed out it counts in the rows after it.  `*passed`: the marker is done.
QVStatus takeMarker(TABLEPASS* pass, const RECORD& record, bool* passed) {
    ROWMACHINE* machine = &pass->machine;
    const std::string_view path = pathOf(record);
    if (!pass->asked) {
        endRowsAt(machine, path);
        QV_TRY(makeAlldataRows(machine, record, false));
    }
    *passed = !hasItem(*machine);
    pass->asked = !*passed;
    if (*passed) {
        machine->roots += path.size() == kRoot.size() ? 1 : 0;
        if (PASSPATH* found = findPath(&machine->paths, path); found != nullptr) {
            countMarker(machine, found);
        }
    }
    return QV_OK;
}

// Replays the records of the block until there is something to hand out.
QVStatus replayBlock(TABLEPASS* pass) {
    BLOCKREADER& blocks = pass->blocks;
    const char* at = blocks.records + blocks.pBufi;
    const char* const end = blocks.records + blocks.pBufLen;
    while (at < end && !hasItem(pass->machine)) {
        __builtin_prefetch(at + kPrefetchBytes);
        const RECORD record = parseRecord(at);
        bool passed = true;
        if (record.kind == VAL_NOVAL) {
            QV_TRY(takeMarker(pass, record, &passed));
        } else {
            QV_TRY(takeValue(pass, record));
        }
        at += passed ? record.size : 0;
    }
    blocks.pBufi = at - blocks.records;
    return QV_OK;
}

// Replays records until there is something to hand out, or the next block is loaded.
QVStatus replay(TABLEPASS* pass) {
    BLOCKREADER& blocks = pass->blocks;
    if (blocks.pBufi < blocks.pBufLen) {
        return replayBlock(pass);
    }
    QV_TRY(parkRows(pass->machine.rows));
    COMPPATHS* next = nextBlock(blocks);
    if (next == nullptr) {
        endAll(&pass->machine);
        return hasItem(pass->machine) ? QV_OK : QV_EOF;
    }
    QV_TRY(loadBlock(&blocks, next));
    pass->machine.rows.textsGo = blockGoes(blocks);
    return QV_OK;
}

bool textsStay(const TABLEPASS* pass) noexcept {
    for (const COMPPATHS& block : each(pass->machine.p->chead)) {
        if (block.onDisk || block.compressed) {
            return false;
        }
    }
    return pass->machine.alldata == nullptr ||
           !pass->machine.retain;  // overlaid texts are the pass's own
}

QVStatus fillPass(TABLEPASS* pass, JMAP_PRIVATE* p, QVPoolh pool, DSINFO* const* tables,
                  QVStrSize tableCount, uint64_t flags) {
    QV_TRY(openMachine(&pass->machine, p, pool, p->alldataDs, tables, tableCount, flags));
    QV_TRY(openBlocks(&pass->blocks, p, pool));
    pass->whole = p->wholeHead;
    pass->machine.textsStay = textsStay(pass);
    return QV_OK;
}

}  // namespace

QVStatus openPass(JMAP_PRIVATE* p, DSINFO* const* tables, QVStrSize tableCount, uint64_t flags,
                  ROWMACHINE** out) {
    QVPoolh pool = newPool(U"qvejmap pass");
    if (pool == nullptr) {
        return QV_NOMEM;
    }
    auto* pass = poolNew<TABLEPASS>(pool);
    if (pass == nullptr) {
        (void)destroyHandle(pool);  // nothing is in it yet
        return QV_NOMEM;
    }
    const QVStatus rc = fillPass(pass, p, pool, tables, tableCount, flags);
    if (rc != QV_OK) {
        (void)closePass(pass);  // the first failure is returned
        return rc;
    }
    *out = &pass->machine;
    return QV_OK;
}

QVStatus nextItem(TABLEPASS* pass, JMAPPassItem* item) {
    startHanded(&pass->machine);
    QV_TRY(pass->status);
    while (!handOut(&pass->machine, item)) {
        pass->status = replay(pass);
        QV_TRY(pass->status);
    }
    return QV_OK;
}

QVStatus closePass(TABLEPASS* pass) {
    closeMachine(&pass->machine);
    const QVStatus rc = closeBlocks(&pass->blocks);
    QVPoolh pool = pass->machine.rows.pool;
    (void)destroyHandle(pool);  // the pass is gone with it
    return rc;
}

}  // namespace jmap
