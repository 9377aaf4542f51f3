// The rows of many tables, made from values and markers in the order of the document.
//
// Tested by tests/reader/table_pass_test.cpp and tests/reader/row_walk_test.cpp
#include "row_machine.h"

#include "consume.h"
#include "core/guard.h"
#include "core/pool.h"
#include "number_cell.h"
#include "row_boundary.h"
#include "scan/record_format.h"

#include <algorithm>
#include <span>
#include <utility>

namespace jmap {
namespace {

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

void endRow(ROWMACHINE* machine, PASSTABLE* table) noexcept {
    if (table->strayed) [[unlikely]] {
        countStrayed(*table);
    }
    table->nextEnded = nullptr;
    if (machine->endedHead == nullptr) {
        machine->endedHead = table;
    } else {
        machine->endedTail->nextEnded = table;
    }
    machine->endedTail = table;
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

// Whether a cell keeps a value of an earlier row.
bool keepsTexts(const PASSTABLE& table) noexcept {
    const JMAPPassCell* cells = table.cells;
    return std::any_of(cells, cells + table.cellCount, [&](const JMAPPassCell& cell) {
        return table.retained[&cell - cells] && cell.kind != JMAP_CELL_MISSING &&
               cell.kind != JMAP_CELL_COUNT;
    });
}

// Whether something at a path or below it can get into a row, or make one.
bool takesFrom(const PASSTABLE& table, std::string_view path, char sep) noexcept {
    const bool takesValues = std::any_of(
        table.uses, table.uses + table.columnCount,
        [&](const PASSUSE* use) { return use != nullptr && liesWithin(*use->path, path, sep); });
    return takesValues ||
           (table.ordinalsOnly &&
            std::any_of(table.ordinals, table.ordinals + table.ordinalCount,
                        [&](const PASSORDINAL& of) { return liesWithin(*of.path, path, sep); }));
}

// Makes all that the table counts 0.
void clearCounts(const PASSTABLE& table) noexcept {
    for (uint32_t i = 0; i < table.ordinalCount; ++i) {
        table.ordinals[i].path->count = 0;
        table.cells[table.ordinals[i].column] = {};
    }
    for (uint32_t i = 0; i < table.columnCount; ++i) {
        if (PASSUSE* use = table.uses[i]; use != nullptr) {
            use->path->values = 0;
            use->overwritten = use->firstOverwritten = use->strayed = 0;
        }
    }
}

void startRow(ROWMACHINE* machine, PASSTABLE* table) {
    clearRow(machine->rows, *table);
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

// Written in place: a copy of the item would wait for its own stores.
void fillItem(const ROWMACHINE* machine, int32_t kind, PASSTABLE* table,
              JMAPPassItem* item) noexcept {
    showOrdinals(table);
    item->kind = kind;
    item->table = table - machine->tables;
    item->cells = table->cells;
    item->cellCount = table->columnCount;
    item->textCount = table->cellCount - table->columnCount;
    item->column = 0;
    item->text = nullptr;
    item->textLen = 0;
}

// ---- Values ---------------------------------------------------------------------------------

bool isNoNumber(const ROWMACHINE* machine, std::string_view text) {
    const NUMBERCELL number = numberCell(machine->p->smh, text);
    return number.status == QV_NOTNUM && number.word == nullptr;
}

QVStatus setAlldataText(ROWMACHINE* machine, PASSTABLE& table, uint32_t column,
                        std::string_view text, bool cut = false) {
    const int32_t kind = cut ? int32_t{JMAP_CELL_CUT} : int32_t{JMAP_KIND_STRING};
    return machine->retain ? overlayText(machine->rows, table, column, kind, text)
                           : setText(machine->rows, table, column, kind, text);
}

// Every record but a placeholder and the root's marker is a row of ALLDATA.
QVStatus makeAlldataRow(ROWMACHINE* machine, PASSTABLE* table, const RECORD& record, bool cut) {
    endRow(machine, table);
    const int32_t most = machine->p->labelCountMax + 1;  // labels that the table has columns for
    const auto flagColumn = static_cast<uint32_t>(most + 1);
    if (table->columnCount <= flagColumn + 1) {
        return QV_OK;  // the table could not be laid out in full
    }
    setCountCell(*table, 0, static_cast<uint64_t>(record.labelCount));
    std::string_view rest = labelsOf(view(record.text, record.textLen));
    for (int32_t i = 0; i < std::min(record.labelCount, most); ++i) {
        const std::string_view label = takeLabel(rest, record.labelLens[i]);
        QV_TRY(setAlldataText(machine, *table, static_cast<uint32_t>(i + 1), label));
    }
    setCountCell(*table, flagColumn, record.kind == VAL_NOVAL ? 0 : 1);
    if (record.kind == VAL_NOVAL) {
        return QV_OK;
    }
    return setAlldataText(machine, *table, flagColumn + 1, valueOf(record), cut);
}

QVStatus addTables(ROWMACHINE* machine, const DSINFO* alldata, DSINFO* const* tables) {
    uint64_t columns = 0;  // since the guard was asked
    for (QVStrSize i = 0; i < machine->tableCount; ++i) {
        columns += tables[i]->varcount + 1;
        if (columns >= kColumnsBetween) {
            QV_TRY(askGuardOfMemory(machine->p, static_cast<uint64_t>(i)));
            columns = 0;
        }
        PASSTABLE* table = machine->tables + i;
        QV_TRY(addTable(&machine->paths, machine->rows.pool, *tables[i], machine->retain, table));
        if (tables[i] == alldata) {
            table->samePath = machine->alldata;  // it has no table path
            machine->alldata = table;
        }
    }
    return QV_OK;
}

}  // namespace

QVStatus openMachine(ROWMACHINE* machine, JMAP_PRIVATE* p, QVPoolh pool, const DSINFO* alldata,
                     DSINFO* const* tables, QVStrSize tableCount, uint64_t flags) {
    machine->p = p;
    machine->rows.p = p;
    machine->rows.pool = pool;
    machine->tableCount = tableCount;
    machine->retain = (flags & QVEJMAP_RETAIN) != 0;
    machine->tables = poolNew<PASSTABLE>(pool, tableCount);
    if (machine->tables == nullptr) {
        return QV_NOMEM;
    }
    QV_TRY(openPaths(&machine->paths, p));
    return addTables(machine, alldata, tables);
}

void closeMachine(ROWMACHINE* machine) {
    (void)destroyHandle(machine->paths.byPath);
}

void endTop(ROWMACHINE* machine, bool again) {
    for (PASSTABLE* table = machine->top->tables; table != nullptr; table = table->samePath) {
        if (!again || inVariables(*table)) {
            endRow(machine, table);
        }
        table->open = false;
    }
    machine->top = machine->top->above;
}

void endRowsAt(ROWMACHINE* machine, std::string_view path) {
    while (machine->top != nullptr) {
        const std::string_view tablePath = view(machine->top->path, machine->top->pathLen);
        const BOUNDARY boundary = rowBoundary(path, tablePath, machine->p->sep, true, true);
        if (boundary == BOUNDARY::INSIDE) {
            return;  // likewise for all paths further down
        }
        endTop(machine, boundary == BOUNDARY::AGAIN);
    }
}

void endAll(ROWMACHINE* machine) {
    while (machine->top != nullptr) {
        endTop(machine, true);
    }
}

// Called before a column takes a value.  When the cell has a value of this row, that one is
// overwritten.  When the table is not open, the value strays: its array wrote no marker, since
// elements had been counted before, and the next row of the table gets the value, whatever its
// parents are.  Columns of ancestors and of other places may take values at any time.
void countMishap(PASSUSE* use) noexcept {
    JMAPPassCell& cell = use->table->cells[use->cell];
    if (cell.fresh && use->overwritten++ == 0) {
        use->firstOverwritten = use->path->values - 1;  // the one before the last of its path
    }
    cell.strayed = use->below && !use->table->open;
    use->table->strayed |= cell.strayed != 0;
}

void lookForNumber(ROWMACHINE* machine, const PASSPATH& found, std::string_view value, bool cut) {
    // A text that is cut never counts as a number, even if its beginning is one.
    if (cut || isNoNumber(machine, value)) {
        machine->notNumber = found.uses;
        machine->notNumberText = value.data();
        machine->notNumberLen = lengthOf(value);
    }
}

QVStatus makeAlldataRows(ROWMACHINE* machine, const RECORD& record, bool cut) {
    if (record.kind == VAL_NOVAL && record.labelCount == 0) {
        return QV_OK;
    }
    for (PASSTABLE* table = machine->alldata; table != nullptr; table = table->samePath) {
        QV_TRY(makeAlldataRow(machine, table, record, cut));
    }
    return QV_OK;
}

bool handOut(ROWMACHINE* machine, JMAPPassItem* item) {
    while (machine->notNumber != nullptr) {
        const PASSUSE* use = std::exchange(machine->notNumber, machine->notNumber->next);
        if (use->number) {
            fillItem(machine, JMAP_PASS_NOT_NUMBER, use->table, item);
            item->column = use->cell;
            item->text = machine->notNumberText;
            item->textLen = machine->notNumberLen;
            return true;
        }
    }
    PASSTABLE* const table = machine->endedHead;
    if (table == nullptr) {
        return false;
    }
    machine->endedHead = table->nextEnded;
    machine->handed = table;
    fillItem(machine, JMAP_PASS_ROW, table, item);
    return true;
}

void startHanded(ROWMACHINE* machine) {
    if (machine->handed != nullptr) {
        startRow(machine, std::exchange(machine->handed, nullptr));
    }
}

void forgetAll(ROWMACHINE* machine) {
    machine->roots = 0;
    const std::span tables(machine->tables, static_cast<std::size_t>(machine->tableCount));
    for (PASSTABLE& table : tables) {
        if (!table.open) {
            clearRow(machine->rows, table);
        }
        // What an open row has counted is the difference, which stays.
        table.countedBefore = table.open ? table.countedBefore - countedBy(table) : 0;
    }
    for (const PASSTABLE& table : tables) {
        clearCounts(table);
    }
}

void startCounting(ROWMACHINE* machine) {
    for (QVStrSize i = 0; i < machine->tableCount; ++i) {
        machine->tables[i].countedBefore += countedBy(machine->tables[i]);
    }
}

// The rows that are open around the elements are those of the root component: nothing else is known
// to be around them in each part.
bool hasValuesLeft(const ROWMACHINE& machine, std::string_view next) noexcept {
    const PASSPATH* top = machine.top;
    if (top != nullptr && (top->above != nullptr || top->pathLen != lengthOf(kRoot))) {
        return true;
    }
    return std::any_of(machine.tables, machine.tables + machine.tableCount,
                       [&](const PASSTABLE& table) {
                           return table.open ? takesFrom(table, next, machine.p->sep)
                                             : inVariables(table) || keepsTexts(table);
                       });
}

void passColumn(const ROWMACHINE* machine, QVStrSize table, QVStrSize column,
                JMAPPassColumn* info) noexcept {
    *info = {};
    if (const PASSUSE* use = machine->tables[table].uses[column]; use != nullptr) {
        *info = {use->path->values, use->overwritten, use->firstOverwritten, use->strayed,
                 use->below};
    }
}

}  // namespace jmap
