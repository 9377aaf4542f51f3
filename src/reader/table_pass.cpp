// The rows of many tables in one walk over the record stream.
//
// Tested by tests/reader/table_pass_test.cpp
#include "table_pass.h"

#include "block_reader.h"
#include "consume.h"
#include "core/guard.h"
#include "core/list.h"
#include "core/pool.h"
#include "number_cell.h"
#include "row_boundary.h"
#include "scan/record_format.h"

#include <algorithm>
#include <utility>

namespace jmap {
namespace {

// Memory this far after the current record is prefetched, as in Read.
constexpr QVStrSize kPrefetchBytes = 2048;

// ---- Rows -----------------------------------------------------------------------------------

// Counts the strayed values of a complete row.
void countStrayed(const PASSTABLE& table) noexcept {
    for (uint32_t i = 0; i < table.setCount; ++i) {
        const uint32_t cell = table.set[i];
        if (table.cells[cell].strayed) {
            table.uses[cell]->strayed += 1;  // a column's cell; the text of an ordinal never strays
        }
    }
}

void endRow(JMAPPass* pass, PASSTABLE* table) noexcept {
    if (table->strayed) [[unlikely]] {
        countStrayed(*table);
    }
    table->nextEnded = nullptr;
    if (pass->endedHead == nullptr) {
        pass->endedHead = table;
    } else {
        pass->endedTail->nextEnded = table;
    }
    pass->endedTail = table;
}

uint64_t countedBy(const PASSTABLE& table) noexcept {
    uint64_t sum = 0;
    for (uint32_t i = 0; i < table.ordinalCount; ++i) {
        sum += table.ordinals[i].path->count;
    }
    return sum;
}

// Whether the row has received a value.  In a table of ordinals counting makes a row.
bool inVariables(const PASSTABLE& table) noexcept {
    return table.inVariables || (table.ordinalsOnly && countedBy(table) != table.countedBefore);
}

void startRow(JMAPPass* pass, PASSTABLE* table) {
    clearRow(pass->rows, *table);
    if (table->ordinalsOnly) {
        table->countedBefore = countedBy(*table);
    }
}

// An ordinal shows its count in every row, once there is one.
void showOrdinals(PASSTABLE* table) noexcept {
    for (uint32_t i = 0; i < table->ordinalCount; ++i) {
        const PASSORDINAL& ordinal = table->ordinals[i];
        if (ordinal.path->count != 0) {
            JMAPPassCell& cell = table->cells[ordinal.column];
            cell.kind = JMAP_CELL_COUNT;
            cell.fresh = 1;
            cell.count = ordinal.path->count;
        }
    }
}

JMAPPassItem itemOf(const JMAPPass* pass, int32_t kind, PASSTABLE* table) noexcept {
    showOrdinals(table);
    JMAPPassItem item = {};
    item.kind = kind;
    item.table = table - pass->tables;
    item.cells = table->cells;
    item.cellCount = table->columnCount;
    item.textCount = table->cellCount - table->columnCount;
    return item;
}

// ---- Records --------------------------------------------------------------------------------

// Ends the rows that a marker ends, and pops the table paths that it does not lie below.  Its own
// path is popped too; `countMarker` pushes it again.
void endRows(JMAPPass* pass, std::string_view path) {
    for (; pass->top != nullptr; pass->top = pass->top->above) {
        const std::string_view tablePath = view(pass->top->path, pass->top->pathLen);
        for (PASSTABLE* table = pass->top->tables; table != nullptr; table = table->samePath) {
            const BOUNDARY boundary =
                rowBoundary(path, tablePath, pass->p->sep, true, inVariables(*table));
            if (boundary == BOUNDARY::INSIDE) {
                return;  // likewise for all tables of this path and of those further down
            }
            if (endsRow(boundary)) {
                endRow(pass, table);
            }
            table->open = false;
        }
    }
}

// Counts a marker in the rows that go on or begin with it.
void countMarker(JMAPPass* pass, PASSPATH* found) noexcept {
    found->count += 1;
    if (found->tables != nullptr) {  // it is not on the stack: `endRows` has popped it
        found->above = pass->top;
        pass->top = found;
        for (PASSTABLE* table = found->tables; table != nullptr; table = table->samePath) {
            table->open = true;
        }
    }
}

bool isNoNumber(const JMAPPass* pass, std::string_view text) {
    const NUMBERCELL number = numberCell(pass->p->smh, text);
    return number.status == QV_NOTNUM && number.word == nullptr;
}

// Called before a column takes a value.  When the cell has a value of this row, that one is
// overwritten.  When the table is not open, the value strays: its array wrote no marker, since
// elements had been counted before, and the next row of the table gets the value, whatever its
// parents are.  Columns of ancestors and of other places may take values at any time.
[[gnu::noinline]] void countMishap(PASSUSE* use) noexcept {
    JMAPPassCell& cell = use->table->cells[use->cell];
    if (cell.fresh && use->overwritten++ == 0) {
        use->firstOverwritten = use->path->values - 1;  // the one before the last of its path
    }
    cell.strayed = use->below && !use->table->open;
    use->table->strayed |= cell.strayed != 0;
}

// Whether the record keeps only the beginning of its value.  Call it once for each record with a
// value, in order.
bool isCut(JMAPPass* pass, const RECORD& record) {
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

QVStatus storeValue(JMAPPass* pass, PASSPATH& found, const RECORD& record, bool cut) {
    const std::string_view value = valueOf(record);
    ++found.values;
    for (PASSUSE* use = found.uses; use != nullptr; use = use->next) {
        use->table->inVariables = true;
        if (use->table->cells[use->cell].fresh || !use->table->open) [[unlikely]] {
            countMishap(use);
        }
        const int32_t kind = cut ? int32_t{JMAP_CELL_CUT} : record.kind;
        QV_TRY(setText(pass->rows, *use->table, use->cell, kind, value));
    }
    // Values of all other kinds are numbers, or words for one.  A text that is cut never counts as
    // a number, even if its beginning is one.
    if (record.kind == VAL_STRING && found.numbers && (cut || isNoNumber(pass, value))) {
        pass->notNumber = found.uses;
        pass->notNumberText = value.data();
        pass->notNumberLen = lengthOf(value);
    }
    return QV_OK;
}

QVStatus setAlldataText(JMAPPass* pass, PASSTABLE& table, uint32_t column, std::string_view text,
                        bool cut = false) {
    const int32_t kind = cut ? int32_t{JMAP_CELL_CUT} : int32_t{JMAP_KIND_STRING};
    return pass->retain ? overlayText(pass->rows, table, column, kind, text)
                        : setText(pass->rows, table, column, kind, text);
}

// Every record but a placeholder and the root's marker is a row of ALLDATA.
QVStatus makeAlldataRow(JMAPPass* pass, PASSTABLE* table, const RECORD& record, bool cut) {
    endRow(pass, table);
    const int32_t most = pass->p->labelCountMax + 1;  // labels that the table has columns for
    const auto flagColumn = static_cast<uint32_t>(most + 1);
    if (table->columnCount <= flagColumn + 1) {
        return QV_OK;  // the table could not be laid out in full
    }
    setCountCell(*table, 0, static_cast<uint64_t>(record.labelCount));
    std::string_view rest = labelsOf(view(record.text, record.textLen));
    for (int32_t i = 0; i < std::min(record.labelCount, most); ++i) {
        const std::string_view label = takeLabel(rest, record.labelLens[i]);
        QV_TRY(setAlldataText(pass, *table, static_cast<uint32_t>(i + 1), label));
    }
    setCountCell(*table, flagColumn, record.kind == VAL_NOVAL ? 0 : 1);
    if (record.kind == VAL_NOVAL) {
        return QV_OK;
    }
    return setAlldataText(pass, *table, flagColumn + 1, valueOf(record), cut);
}

QVStatus makeAlldataRows(JMAPPass* pass, const RECORD& record, bool cut = false) {
    if (record.kind == VAL_NOVAL && record.labelCount == 0) {
        return QV_OK;
    }
    for (PASSTABLE* table = pass->alldata; table != nullptr; table = table->samePath) {
        QV_TRY(makeAlldataRow(pass, table, record, cut));
    }
    return QV_OK;
}

// Handles a value.
QVStatus takeValue(JMAPPass* pass, const RECORD& record) {
    if (record.kind == VAL_FAKEVARIABLE) {
        return QV_OK;
    }
    const bool cut = isCut(pass, record);
    PASSPATH* found = findPath(&pass->paths, pathOf(record));
    if (found != nullptr) {
        QV_TRY(storeValue(pass, *found, record, cut));
    }
    return pass->alldata == nullptr ? QV_OK : makeAlldataRows(pass, record, cut);
}

// Handles a marker, in two calls if it ends rows: first it ends them, and when they have been
// handed out it counts in the rows after it.  `*passed`: the marker is done.
QVStatus takeMarker(JMAPPass* pass, const RECORD& record, bool* passed) {
    const std::string_view path = pathOf(record);
    if (!pass->asked) {
        endRows(pass, path);
        QV_TRY(makeAlldataRows(pass, record));
    }
    *passed = pass->endedHead == nullptr;
    pass->asked = !*passed;
    if (*passed) {
        pass->roots += path.size() == kRoot.size() ? 1 : 0;
        if (PASSPATH* found = findPath(&pass->paths, path); found != nullptr) {
            countMarker(pass, found);
        }
    }
    return QV_OK;
}

// Replays the records of the block until there is something to hand out.
QVStatus replayBlock(JMAPPass* pass) {
    BLOCKREADER& blocks = pass->blocks;
    const char* at = blocks.records + blocks.pBufi;
    const char* const end = blocks.records + blocks.pBufLen;
    while (at < end && pass->endedHead == nullptr && pass->notNumber == nullptr) {
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

// At the end of the records: rows may be pending.
QVStatus endStream(JMAPPass* pass) {
    for (; pass->top != nullptr; pass->top = pass->top->above) {
        for (PASSTABLE* table = pass->top->tables; table != nullptr; table = table->samePath) {
            if (inVariables(*table)) {
                endRow(pass, table);
            }
        }
    }
    return pass->endedHead == nullptr ? QV_EOF : QV_OK;
}

// Replays records until there is something to hand out, or the next block is loaded.
QVStatus replay(JMAPPass* pass) {
    BLOCKREADER& blocks = pass->blocks;
    if (blocks.pBufi < blocks.pBufLen) {
        return replayBlock(pass);
    }
    QV_TRY(parkRows(pass->rows));
    COMPPATHS* next = nextBlock(blocks);
    if (next == nullptr) {
        return endStream(pass);
    }
    QV_TRY(loadBlock(&blocks, next));
    pass->rows.blockGoes = blockGoes(blocks);
    return QV_OK;
}

// ---- Items ----------------------------------------------------------------------------------

// Hands out one item.  False when there is none.
bool handOut(JMAPPass* pass, JMAPPassItem* item) {
    while (pass->notNumber != nullptr) {
        const PASSUSE* use = std::exchange(pass->notNumber, pass->notNumber->next);
        if (use->number) {
            *item = itemOf(pass, JMAP_PASS_NOT_NUMBER, use->table);
            item->column = use->cell;
            item->text = pass->notNumberText;
            item->textLen = pass->notNumberLen;
            return true;
        }
    }
    PASSTABLE* const table = pass->endedHead;
    if (table == nullptr) {
        return false;
    }
    pass->endedHead = table->nextEnded;
    pass->handed = table;
    *item = itemOf(pass, JMAP_PASS_ROW, table);
    return true;
}

QVStatus addTables(JMAPPass* pass, DSINFO* const* tables) {
    uint64_t columns = 0;  // since the guard was asked
    for (QVStrSize i = 0; i < pass->tableCount; ++i) {
        columns += tables[i]->varcount + 1;
        if (columns >= kColumnsBetween) {
            QV_TRY(askGuardOfMemory(pass->p, static_cast<uint64_t>(i)));
            columns = 0;
        }
        PASSTABLE* table = pass->tables + i;
        QV_TRY(addTable(&pass->paths, pass->rows.pool, *tables[i], pass->retain, table));
        if (tables[i] == pass->p->alldataDs) {
            table->samePath = pass->alldata;  // it has no table path
            pass->alldata = table;
        }
    }
    return QV_OK;
}

bool textsStay(const JMAPPass* pass) noexcept {
    for (const COMPPATHS& block : each(pass->p->chead)) {
        if (block.onDisk || block.compressed) {
            return false;
        }
    }
    return pass->alldata == nullptr || !pass->retain;  // overlaid texts are the pass's own
}

QVStatus fillPass(JMAPPass* pass, DSINFO* const* tables) {
    QV_TRY(openBlocks(&pass->blocks, pass->p, pass->rows.pool));
    pass->tables = poolNew<PASSTABLE>(pass->rows.pool, pass->tableCount);
    if (pass->tables == nullptr) {
        return QV_NOMEM;
    }
    QV_TRY(openPaths(&pass->paths, pass->p));
    QV_TRY(addTables(pass, tables));
    pass->textsStay = textsStay(pass);
    return QV_OK;
}

}  // namespace

QVStatus openPass(JMAP_PRIVATE* p, DSINFO* const* tables, QVStrSize tableCount, uint64_t flags,
                  JMAPPass** out) {
    QVPoolh pool = newPool(U"qvejmap pass");
    if (pool == nullptr) {
        return QV_NOMEM;
    }
    auto* pass = poolNew<JMAPPass>(pool);
    if (pass == nullptr) {
        (void)destroyHandle(pool);  // nothing is in it yet
        return QV_NOMEM;
    }
    pass->p = p;
    pass->rows.pool = pool;
    pass->tableCount = tableCount;
    pass->retain = (flags & QVEJMAP_RETAIN) != 0;
    pass->whole = p->wholeHead;
    const QVStatus rc = fillPass(pass, tables);
    if (rc != QV_OK) {
        (void)closePass(pass);  // the first failure is returned
        return rc;
    }
    *out = pass;
    return QV_OK;
}

QVStatus nextItem(JMAPPass* pass, JMAPPassItem* item) {
    if (pass->handed != nullptr) {
        startRow(pass, std::exchange(pass->handed, nullptr));
    }
    QV_TRY(pass->status);
    while (!handOut(pass, item)) {
        pass->status = replay(pass);
        QV_TRY(pass->status);
    }
    return QV_OK;
}

void passColumn(const JMAPPass* pass, QVStrSize table, QVStrSize column,
                JMAPPassColumn* info) noexcept {
    *info = {};
    if (const PASSUSE* use = pass->tables[table].uses[column]; use != nullptr) {
        *info = {use->path->values, use->overwritten, use->firstOverwritten, use->strayed,
                 use->below};
    }
}

QVStatus closePass(JMAPPass* pass) {
    (void)destroyHandle(pass->paths.byPath);
    const QVStatus rc = closeBlocks(&pass->blocks);
    QVPoolh pool = pass->rows.pool;
    (void)destroyHandle(pool);  // the pass is gone with it
    return rc;
}

}  // namespace jmap
