// The rows that are being made, one for each table of a pass or a walk.
//
// A cell is a view of the value, in its record or in the document.  Only cells that a row sets are
// listed and cleared, so the cost of a row does not depend on the width of its table.  Some texts
// get memory of their own, "held".  A buffer with a loaded block, or with a part of the document,
// is overwritten by the next one, so values that are needed after that are copied first.  A
// retained column copies its value at once, since its cell is in no list when the buffer is
// overwritten.
//
// Tested by tests/reader/table_pass_test.cpp and tests/reader/row_walk_test.cpp
#pragma once

#include "qvejmapx.h"

#include "core/status.h"
#include "core/text.h"

#include <cstdint>
#include <string_view>

struct JMAP_PRIVATE;
struct PASSPATH;
struct PASSUSE;

// Own memory of a cell; used while `text` is the cell's.
struct HELDTEXT {
    char* text;
    QVStrSize alloc;  // 0: none
};

// An ordinal of a table: it counts a path.
struct PASSORDINAL {
    uint32_t column;
    PASSPATH* path;
};

// A table of a pass and its row.  The cells of its columns come first.  After them each ordinal
// with an informat has another cell for the text, since its own shows the count.
struct PASSTABLE {
    JMAPPassCell* cells;    // [cellCount]
    uint32_t* set;          // [cellCount] fresh cells, in order of arrival
    HELDTEXT* held;         // [cellCount]; null: no cell has any yet
    const bool* retained;   // [cellCount] those that keep their value
    PASSUSE** uses;         // [columnCount] the use of its path; null: it takes no values
    PASSORDINAL* ordinals;  // [ordinalCount]
    uint32_t columnCount;
    uint32_t cellCount;
    uint32_t ordinalCount;
    uint32_t setCount;
    uint32_t parkedCount;    // first entries of `set`, whose texts are not in the current buffer
    bool inVariables;        // the row has received a value
    bool open;               // its table path is on the stack of seen table paths
    bool strayed;            // the row has received a value while `open` was false
    bool ordinalsOnly;       // every column is an ordinal: counting makes rows
    bool touched;            // in the list of tables with texts in the buffer
    uint64_t countedBefore;  // `ordinalsOnly`: sum of its counts when the row began
    PASSTABLE* samePath;     // the next table with the same table path
    PASSTABLE* nextEnded;    // in the queue of complete rows
    PASSTABLE* nextTouched;
};

// What the rows of all tables share.
struct PASSROWS {
    JMAP_PRIVATE* p;     // the document that feeds them
    QVPoolh pool;        // owns all
    QVStrSize unasked;   // bytes of texts since the guard was asked
    bool textsGo;        // the texts of values are overwritten later; `parkRows` is called before
    PASSTABLE* touched;  // then: tables with texts that have not been copied
};

namespace jmap {

// Copies the text of a cell into memory of its own, unless it is there already.  QV_NOMEM,
// or a status of the guard: an open row can hold any number of texts.
[[nodiscard]] QVStatus holdText(PASSROWS& rows, PASSTABLE& table, uint32_t column);

// Makes sure that the text survives the buffer: copies it, or lists its table.  As
// holdText.
[[nodiscard]] QVStatus keepText(PASSROWS& rows, PASSTABLE& table, uint32_t column);

// Copies the texts that open rows have in the buffer, before it is overwritten.  As holdText.
[[nodiscard]] QVStatus parkRows(PASSROWS& rows);

// Begins the table's next row: empties every cell that is not retained.
void clearRow(const PASSROWS& rows, PASSTABLE& table);

[[nodiscard]] inline JMAPPassCell& freshCell(PASSTABLE& table, uint32_t column) noexcept {
    JMAPPassCell& cell = table.cells[column];
    if (!cell.fresh) {
        cell.fresh = 1;
        table.set[table.setCount++] = column;
    }
    return cell;
}

inline void setCountCell(PASSTABLE& table, uint32_t column, uint64_t count) noexcept {
    JMAPPassCell& cell = freshCell(table, column);
    cell.kind = JMAP_CELL_COUNT;
    cell.count = count;
}

// Gives a cell its value, whatever it had.  QV_NOMEM.
[[nodiscard]] inline QVStatus setText(PASSROWS& rows, PASSTABLE& table, uint32_t column,
                                      int32_t kind, std::string_view text) {
    JMAPPassCell& cell = freshCell(table, column);
    cell.kind = kind;
    cell.text = text.data();
    cell.textLen = lengthOf(text);
    return rows.textsGo ? keepText(rows, table, column) : QV_OK;
}

// The same for a cell of ALLDATA that keeps its value.
//   Kept: a shorter text leaves the bytes after it in the cell, as in the row buffer of Read.
[[nodiscard]] QVStatus overlayText(PASSROWS& rows, PASSTABLE& table, uint32_t column, int32_t kind,
                                   std::string_view text);

}  // namespace jmap
