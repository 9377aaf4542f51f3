// The rows of many tables in one pass over the record stream.
//
// Tested by tests/reader/table_pass_test.cpp
#pragma once

#include "core/readctx.h"
#include "row_machine.h"

// An open pass: replays records into the machine.
struct TABLEPASS {
    ROWMACHINE machine;  // must be first: its address is the handle
    BLOCKREADER blocks;
    QVStatus status;           // what ended the pass; QV_OK: nothing yet
    bool asked;                // the current marker has ended its rows
    uint64_t longStrings;      // strings of kMaxStringLen bytes so far
    const WHOLESTRING* whole;  // the next of them that is not cut
};

namespace jmap {

// Opens a pass; see jmapPassOpen.
[[nodiscard]] QVStatus openPass(JMAP_PRIVATE* p, DSINFO* const* tables, QVStrSize tableCount,
                                uint64_t flags, ROWMACHINE** out);

// The next item; see jmapPassNext.
[[nodiscard]] QVStatus nextItem(TABLEPASS* pass, JMAPPassItem* item);

// Ends the pass and frees it.  Returns the status of closing the cache file.
QVStatus closePass(TABLEPASS* pass);

}  // namespace jmap
