// The rows that a pass is making, one for each of its tables.
//
// A cell is a view of the value in its record.  Only what a row sets is written down and cleared,
// so a row costs what it holds, however wide its table.  Some texts get memory of their own,
// "held": blocks that are loaded go again, and a value that outlives its block is copied then; a
// column that keeps its values copies at once, since its cell is in no list when the block goes.
//
// Tested by tests/reader/table_pass_test.cpp
#pragma once

#include "qvejmapx.h"

#include "core/status.h"
#include "core/text.h"

#include <cstdint>
#include <string_view>

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
    const PASSPATH* path;
};

// A table of a pass and its row.  The cells of its columns come first; after them each ordinal with
// an informat has another one for the text, since its own shows the count.
struct PASSTABLE {
    JMAPPassCell* cells;    // [cellCount]
    uint32_t* set;          // [cellCount] fresh cells, in order of arrival
    HELDTEXT* held;         // [cellCount], or null before the first
    const bool* retained;   // [cellCount] those that keep their value
    PASSUSE** uses;         // [columnCount] what takes their values; null: nothing does
    PASSORDINAL* ordinals;  // [ordinalCount]
    uint32_t columnCount;
    uint32_t cellCount;
    uint32_t ordinalCount;
    uint32_t setCount;
    uint32_t parkedCount;    // entries of `set` whose texts will not go with the block
    bool inVariables;        // the row has received a value
    bool open;               // its table path is on the stack of seen table paths
    bool strayed;            // the row has received a value when it was not
    bool ordinalsOnly;       // every column is an ordinal: counting makes rows
    bool touched;            // in the list of those with texts in the block
    uint64_t countedBefore;  // `ordinalsOnly`: sum of its counts when the row began
    PASSTABLE* samePath;     // the next table with the same table path
    PASSTABLE* nextEnded;    // in the queue of complete rows
    PASSTABLE* nextTouched;
};

// What the rows of a pass share.
struct PASSROWS {
    QVPoolh pool;        // owns all
    bool blockGoes;      // the records at hand will be overwritten by the next block
    PASSTABLE* touched;  // tables with texts in such a block
};

namespace jmap {

// Copies the text of a cell into memory of its own, if it is not there.  QV_NOMEM.
[[nodiscard]] QVStatus holdText(const PASSROWS& rows, PASSTABLE& table, uint32_t column);

// Sees to it that a text in a block that goes is not lost.  QV_NOMEM.
[[nodiscard]] QVStatus keepText(PASSROWS& rows, PASSTABLE& table, uint32_t column);

// Copies what open rows hold of the block, which goes now.  QV_NOMEM.
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
    return rows.blockGoes ? keepText(rows, table, column) : QV_OK;
}

// The same for a cell of ALLDATA that keeps its value.
//   Kept: what the cell held behind the end of a shorter text stays, as in the row buffer of Read.
[[nodiscard]] QVStatus overlayText(const PASSROWS& rows, PASSTABLE& table, uint32_t column,
                                   int32_t kind, std::string_view text);

}  // namespace jmap
