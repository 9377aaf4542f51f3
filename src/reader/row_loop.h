// The next row of an open table, from the record stream.
//
// Tested by tests/reader/row_loop_test.cpp
#pragma once

#include "core/readctx.h"

namespace jmap {

// Operation of the public table: replays records from where the last call stopped until one closes
// the row.
//   QV_OK    a row is in the row buffer
//   QV_EOF   no more rows, until ReadReset
//   other    a block could not be loaded; the next call goes on after it
QVStatus Read(QVEJMAPReadContexth rctx);

// Makes `block` the current one and loads it: sets `records`, `pBufi` and `pBufLen`.  A block that
// is in memory and not compressed is not copied: that would cost as much as replaying it.
//   Kept: after a failure the block stays the current one, with no records.  The next call goes on
//   after it, and its values are missing.
[[nodiscard]] QVStatus loadBlock(JMAP_READPRIVATE* rp, COMPPATHS* block);

}  // namespace jmap
