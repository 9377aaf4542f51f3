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
//   other    a block could not be loaded; a further call goes on behind it
QVStatus Read(QVEJMAPReadContexth rctx);

// Makes `block` the current one and loads it: `records`, `pBufi` and `pBufLen` are set.  Records
// that lie in memory as they are stay there: copying them would cost as much as replaying them.
//   Kept: after a failure it stays the current one, with no records, so that the next call goes on
//   behind it.
[[nodiscard]] QVStatus loadBlock(JMAP_READPRIVATE* rp, COMPPATHS* block);

}  // namespace jmap
