// Loads the blocks of the record stream one after the other.
//
// Tested by tests/reader/row_loop_test.cpp
#pragma once

#include "core/readctx.h"

namespace jmap {

// Begins before the first block of a document.  The room for a block comes from the pool. QV_NOMEM.
[[nodiscard]] QVStatus openBlocks(BLOCKREADER* reader, JMAP_PRIVATE* p, QVPoolh pool);

// The block after the current one; null: there is none.
[[nodiscard]] inline COMPPATHS* nextBlock(const BLOCKREADER& reader) noexcept {
    return reader.curr == nullptr ? reader.p->chead : reader.curr->next;
}

// Makes `block` the current one and loads it: sets `records`, `pBufi` and `pBufLen`.  A block that
// is in memory and not compressed is not copied: that would cost as much as replaying it.
//   Kept: after a failure the block stays the current one, with no records.  The next call goes on
//   after it, and its values are missing.
[[nodiscard]] QVStatus loadBlock(BLOCKREADER* reader, COMPPATHS* block);

// Whether the records of the current block are in `pBuf`, so that the next block overwrites them.
[[nodiscard]] inline bool blockGoes(const BLOCKREADER& reader) noexcept {
    return reader.records == reader.pBuf;
}

// Goes back before the first block.
void rewindBlocks(BLOCKREADER* reader);

// Returns the status of closing the cache file.
QVStatus closeBlocks(BLOCKREADER* reader);

}  // namespace jmap
