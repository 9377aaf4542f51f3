// The rows of many tables in one walk over the record stream.
//
// A value goes only to the columns of its path.  A marker concerns only the tables on the current
// path: a row can end only when its table path has been seen in it, and from then on every marker
// that does not end the row is the table path or lies below it.  So the seen table paths lie on the
// way from the root to the last marker.  Each is a prefix of the next: they are a stack.  A marker
// ends rows from the top of the stack down, until it meets its own path or one that it lies below.
// All tables of one path are seen at the same time: after a marker at their path it has been seen,
// whether the row ended or not.
//
// Tested by tests/reader/table_pass_test.cpp
#pragma once

#include "core/readctx.h"
#include "pass_paths.h"
#include "pass_rows.h"

// An open pass; it lives in its pool.
struct JMAPPass {
    JMAP_PRIVATE* p;  // the document
    BLOCKREADER blocks;
    QVStatus status;  // what ended the pass; QV_OK: nothing yet
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
    bool asked;                // the current marker has ended its rows
    uint64_t longStrings;      // strings of kMaxStringLen bytes so far
    const WHOLESTRING* whole;  // the next of them that is not cut
    const PASSUSE* notNumber;  // columns that may have got `notNumberText`; not reported yet
    const char* notNumberText;
    QVStrSize notNumberLen;
};

namespace jmap {

// Opens a pass; see jmapPassOpen.
[[nodiscard]] QVStatus openPass(JMAP_PRIVATE* p, DSINFO* const* tables, QVStrSize tableCount,
                                uint64_t flags, JMAPPass** out);

// The next item; see jmapPassNext.
[[nodiscard]] QVStatus nextItem(JMAPPass* pass, JMAPPassItem* item);

// See jmapPassColumn.
void passColumn(const JMAPPass* pass, QVStrSize table, QVStrSize column,
                JMAPPassColumn* info) noexcept;

// Ends the pass and frees it.  Returns the status of closing the cache file.
QVStatus closePass(JMAPPass* pass);

}  // namespace jmap
