// Blocks of the record stream.  A full block is closed, deflated if asked for, and kept in memory
// or in the cache file.  Readers load one block at a time.
//
// The cache file holds the blocks on disk back to back in stream order and nothing else.  Once a
// block is on disk, all later ones are too.
//
// Tested by tests/scan/record_block_test.cpp
#pragma once

#include "core/readctx.h"

namespace jmap {

// Closes the open block: appends it to `chead`/`ctail` and empties the buffer.  Without records
// nothing happens.
// Returns QV_OK; QV_NOMEM (also when deflate does not finish); a status of the guard, of zlib or of
// the cache file.  After these the block is not linked and the buffer is as it was.
// Kept: a status of the memory query, or of ending the deflate stream, is returned although the
// block is closed and linked.
[[nodiscard]] QVStatus compressPathBuffer(JMAP_PRIVATE* p);

// Loads block `n` into `outbuf` (at least kBlockBytes) with the inflate state and the file of
// `reader`. Blocks on disk must be loaded in stream order, each once until `rfp` is closed.  When
// one cannot be read, it and all later ones give the same status. Returns QV_OK; QV_NOMEM (also
// when inflate does not finish); QV_IO_SHORT or QV_IO_CHANGED when the file gives back another
// length or other bytes than were written; a status of zlib or of the cache file.
[[nodiscard]] QVStatus uncompressPathBuffer(BLOCKREADER* reader, COMPPATHS* n, char* outbuf);

}  // namespace jmap
