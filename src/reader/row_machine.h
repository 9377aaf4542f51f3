// The rows of many tables, made from values and markers in the order of the document.
//
// A value goes only to the columns of its path.  A marker concerns only the tables on the current
// path: a row can end only when its table path has been seen in it, and from then on every marker
// that does not end the row is the table path or lies below it.  So the seen table paths lie on the
// way from the root to the last marker.  Each is a prefix of the next: they are a stack.  A marker
// ends rows from the top of the stack down, until it meets its own path or one that it lies below.
// All tables of one path are seen at the same time: after a marker at their path it has been seen,
// whether the row ended or not.
//
// Two feed it: a pass replays records (table_pass.h), a walk takes the events of a scan
// (row_walk.h).  For a value:
//
//     storeValue    then items of numbers
//
// For a marker:
//
//     endTop        for each path on top of the stack that the marker ends
//                   then items of rows
//     countMarker   in the rows that go on or begin with it
//
// Items are taken with `handOut`, and `startHanded` is called after each, until there is none.
//
// Tested by tests/reader/table_pass_test.cpp and tests/reader/row_walk_test.cpp
#pragma once

#include "pass_paths.h"
#include "pass_rows.h"

// The handle of a pass (jmapPassOpen) and of a walk (jmapWalkOpen).  It lives in its pool.
struct ROWMACHINE {
    JMAP_PRIVATE* p;  // the document that feeds it
    bool walks;       // it is that of a ROWWALK, else of a TABLEPASS
    PASSROWS rows;
    PASSPATHS paths;
    PASSTABLE* tables;  // [tableCount]
    QVStrSize tableCount;
    PASSTABLE* alldata;    // those that read ALLDATA, through `samePath`
    bool retain;           // the flag
    bool textsStay;        // see jmapPassTextsStay
    PASSPATH* top;         // of the stack of seen table paths
    PASSTABLE* endedHead;  // queue of complete rows for the caller
    PASSTABLE* endedTail;
    PASSTABLE* handed;         // the caller has its row
    uint64_t roots;            // markers of the root component that have been counted
    const PASSUSE* notNumber;  // columns that may have got `notNumberText`; not reported yet
    const char* notNumberText;
    QVStrSize notNumberLen;
};

namespace jmap {

struct RECORD;  // scan/record_format.h

// Makes a machine for the tables, in a pool.  It is zero-filled and closed whatever this returns.
//   p        the document that feeds it
//   alldata  the table ALLDATA; null: it is not among the tables
//   flags    those of QVEJMAPReadInitParms
// Returns QV_OK, QV_NOMEM or a status of the guard.
[[nodiscard]] QVStatus openMachine(ROWMACHINE* machine, JMAP_PRIVATE* p, QVPoolh pool,
                                   const DSINFO* alldata, DSINFO* const* tables,
                                   QVStrSize tableCount, uint64_t flags);

// Ends what is not in the pool.
void closeMachine(ROWMACHINE* machine);

// Pops the top of the stack, and ends the rows of its tables.
//   again  the marker is at this very path: a row without values goes on
void endTop(ROWMACHINE* machine, bool again);

// Ends the rows that a marker at `path` ends, and pops the table paths that it does not lie below.
// Its own path is popped too; `countMarker` pushes it again.
void endRowsAt(ROWMACHINE* machine, std::string_view path);

// Ends all rows that have begun, at the end of the document.
void endAll(ROWMACHINE* machine);

// Counts a marker in the rows that go on or begin with it.
inline void countMarker(ROWMACHINE* machine, PASSPATH* found) noexcept {
    found->count += 1;
    if (found->tables != nullptr) {  // it is not on the stack: `endTop` has popped it
        found->above = machine->top;
        machine->top = found;
        for (PASSTABLE* table = found->tables; table != nullptr; table = table->samePath) {
            table->open = true;
        }
    }
}

// Counts a value that finds its cell set, or its table not open.
void countMishap(PASSUSE* use) noexcept;

// Notes that columns of numbers may have got a text that is none.
void lookForNumber(ROWMACHINE* machine, const PASSPATH& found, std::string_view value, bool cut);

// Gives a value to the columns of its path.
//   cut  the text is only the beginning of the value.  QV_NOMEM.
[[nodiscard]] inline QVStatus storeValue(ROWMACHINE* machine, PASSPATH& found, VALTYPE kind,
                                         std::string_view value, bool cut) {
    ++found.values;
    for (PASSUSE* use = found.uses; use != nullptr; use = use->next) {
        use->table->inVariables = true;
        if (use->table->cells[use->cell].fresh || !use->table->open) [[unlikely]] {
            countMishap(use);
        }
        const int32_t cellKind = cut ? int32_t{JMAP_CELL_CUT} : kind;
        QV_TRY(setText(machine->rows, *use->table, use->cell, cellKind, value));
    }
    // Values of all other kinds are numbers, or words for one.
    if (kind == VAL_STRING && found.numbers) {
        lookForNumber(machine, found, value, cut);
    }
    return QV_OK;
}

// Every record but a placeholder and the root's marker is a row of ALLDATA.
[[nodiscard]] QVStatus makeAlldataRows(ROWMACHINE* machine, const RECORD& record, bool cut);

// Whether there is something to hand out.
[[nodiscard]] inline bool hasItem(const ROWMACHINE& machine) noexcept {
    return machine.endedHead != nullptr || machine.notNumber != nullptr;
}

// Hands out one item.  False when there is none.
[[nodiscard]] bool handOut(ROWMACHINE* machine, JMAPPassItem* item);

// Begins the next row of the table whose row has been handed out.
void startHanded(ROWMACHINE* machine);

// Forgets what has come but for the rows that are open: all counts are 0 again, other rows are as
// when they begin.  What is to be handed out has been.
void forgetAll(ROWMACHINE* machine);

// To be called once the first counts of ordinals are set.
void startCounting(ROWMACHINE* machine);

// Whether a value that has come before an element at the path `next` gets into a row after it, and
// that cannot be had by walking what comes before all elements: see jmapWalkLeft.
[[nodiscard]] bool hasValuesLeft(const ROWMACHINE& machine, std::string_view next) noexcept;

// See jmapPassColumn.
void passColumn(const ROWMACHINE* machine, QVStrSize table, QVStrSize column,
                JMAPPassColumn* info) noexcept;

}  // namespace jmap
