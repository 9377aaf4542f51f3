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

}  // namespace jmap
