// The rows of many tables, made from the events of a scan.  No records are written.
//
// The scanned document gives the tree of paths, and the walk is told where the texts of its values
// are; the tables belong to another document, of which nothing is changed.  A node knows what its
// path means to the tables, so a value goes to its cells without its path being built or compared.
//
// The text of a value in the buffer that is being parsed is valid until its end.  Other texts are
// valid until their event returns, so they are copied; the copies are valid just as long.  At the
// end of the buffer, or when there is no room for more copies, the rows that are open copy theirs.
//
// Tested by tests/reader/row_walk_test.cpp
#pragma once

#include "row_machine.h"

struct ROWWALK {
    ROWMACHINE machine;  // must be first: its address is the handle
    QVStatus (*take)(void* arg, const JMAPPassItem* item);  // the caller's
    void* arg;
    QVStatus status;    // what ended the walk; QV_OK: nothing yet
    bool begun;         // its first buffer has come
    PASSPATH nothing;   // what a path means that means nothing to any table
    uintptr_t buf;      // the buffer that is being parsed
    uintptr_t bufLen;   // 0: none is
    VARSTR texts;       // copies of other texts
    const char* next;   // path of the elements, of which the next part has more; null: there is no
    QVStrSize nextLen;  // next part
};

namespace jmap {

// Opens a walk; see jmapWalkOpen.
//   p        the document to scan
//   alldata  the table ALLDATA of the other document, which no walk can make
[[nodiscard]] QVStatus openWalk(JMAP_PRIVATE* p, const DSINFO* alldata, DSINFO* const* tables,
                                QVStrSize tableCount, uint64_t flags, ROWWALK** out);

// What has come is not of the part; see jmapBeginPart.  A failure is told by the next event.
void beginWalkPart(ROWWALK* walk);

// See jmapEndPart.
[[nodiscard]] QVStatus endWalkPart(ROWWALK* walk);

// To be called before and after a buffer is parsed.  Returns what ended the walk, or QV_OK.
void beginBuffer(ROWWALK* walk, const void* buf, QVStrSize bufLen);
[[nodiscard]] QVStatus endBuffer(ROWWALK* walk);

// To be called after the last buffer: hands out the rows that are open.
[[nodiscard]] QVStatus endWalk(ROWWALK* walk);

// See jmapWalkLeft and jmapWalkCount.
[[nodiscard]] bool hasLeft(const ROWWALK* walk) noexcept;
[[nodiscard]] uint64_t* walkCount(ROWWALK* walk, QVStrSize table, QVStrSize column);

// Ends the walk and frees it.  Nothing more of its document can be scanned.
QVStatus closeWalk(ROWWALK* walk);

}  // namespace jmap
