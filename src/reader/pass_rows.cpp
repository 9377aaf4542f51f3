// The rows that are being made, one for each table of a pass or a walk.
//
// Tested by tests/reader/table_pass_test.cpp and tests/reader/row_walk_test.cpp
#include "pass_rows.h"

#include "core/guard.h"
#include "core/pool.h"

#include <algorithm>

namespace jmap {
namespace {

// The least memory of a cell that has its own, even for an empty text.
constexpr QVStrSize kLeastHeld = 16;

// Bytes of texts that are copied between two questions to the guard.
constexpr QVStrSize kBytesBetween = 1 << 20;

// Gives a cell memory of its own for `size` bytes.  When it must grow its text is lost.
QVStatus makeRoom(PASSROWS& rows, PASSTABLE& table, uint32_t column, QVStrSize size) {
    if (table.held == nullptr) {
        table.held = poolNew<HELDTEXT>(rows.pool, table.cellCount);
        if (table.held == nullptr) {
            return QV_NOMEM;
        }
    }
    HELDTEXT& held = table.held[column];
    if (held.alloc >= std::max(size, kLeastHeld)) {
        return QV_OK;
    }
    (void)poolFree(rows.pool, held.text);  // replaced even if this fails
    held = {};
    char* const text = poolBytes(rows.pool, std::max(size, kLeastHeld));
    if (text == nullptr) {
        return QV_NOMEM;
    }
    held = {text, std::max(size, kLeastHeld)};
    rows.unasked += held.alloc;
    if (rows.unasked < kBytesBetween) {
        return QV_OK;
    }
    rows.unasked = 0;
    return askGuardOfMemory(rows.p, 0);
}

bool hasRoom(const PASSTABLE& table, uint32_t column) noexcept {
    return table.held != nullptr && table.held[column].alloc != 0;
}

}  // namespace

QVStatus holdText(PASSROWS& rows, PASSTABLE& table, uint32_t column) {
    JMAPPassCell& cell = table.cells[column];
    if (hasRoom(table, column) && cell.text == table.held[column].text) {
        return QV_OK;
    }
    QV_TRY(makeRoom(rows, table, column, cell.textLen));
    char* const text = table.held[column].text;
    std::copy_n(cell.text, cell.textLen, text);
    cell.text = text;
    return QV_OK;
}

QVStatus keepText(PASSROWS& rows, PASSTABLE& table, uint32_t column) {
    // A cell that has memory copies at once: parkRows may have passed its place in the list.
    if (table.retained[column] || hasRoom(table, column)) {
        return holdText(rows, table, column);
    }
    if (!table.touched) {
        table.touched = true;
        table.nextTouched = rows.touched;
        rows.touched = &table;
    }
    return QV_OK;
}

QVStatus parkRows(PASSROWS& rows) {
    while (rows.touched != nullptr) {
        PASSTABLE& table = *rows.touched;
        for (; table.parkedCount < table.setCount; ++table.parkedCount) {
            const uint32_t column = table.set[table.parkedCount];
            if (table.cells[column].kind != JMAP_CELL_COUNT) {
                QV_TRY(holdText(rows, table, column));
            }
        }
        table.touched = false;
        rows.touched = table.nextTouched;
    }
    return QV_OK;
}

void clearRow(const PASSROWS& rows, PASSTABLE& table) {
    for (uint32_t i = 0; i < table.setCount; ++i) {
        const uint32_t column = table.set[i];
        if (table.retained[column]) {
            table.cells[column].fresh = 0;
            table.cells[column].strayed = 0;
            continue;
        }
        table.cells[column] = {};
        if (hasRoom(table, column)) {
            (void)poolFree(rows.pool, table.held[column].text);  // a failure has no effect
            table.held[column] = {};
        }
    }
    table.setCount = 0;
    table.parkedCount = 0;
    table.inVariables = false;
    table.strayed = false;
}

QVStatus overlayText(PASSROWS& rows, PASSTABLE& table, uint32_t column, int32_t kind,
                     std::string_view text) {
    JMAPPassCell& cell = freshCell(table, column);
    const bool missing = cell.kind == JMAP_CELL_MISSING;
    cell.kind = kind;
    if (missing || lengthOf(text) >= cell.textLen) {
        cell.text = text.data();
        cell.textLen = lengthOf(text);
        return holdText(rows, table, column);
    }
    std::copy_n(text.data(), text.size(), table.held[column].text);
    return QV_OK;
}

}  // namespace jmap
