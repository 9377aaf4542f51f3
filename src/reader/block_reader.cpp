// Loads the blocks of the record stream one after the other.
//
// Tested by tests/reader/row_loop_test.cpp
#include "block_reader.h"

#include "core/pool.h"
#include "core/status.h"
#include "scan/record_block.h"

#include <algorithm>

namespace jmap {

QVStatus openBlocks(BLOCKREADER* reader, JMAP_PRIVATE* p, QVPoolh pool) {
    *reader = {};
    reader->p = p;
    reader->pBuf = poolBytes(pool, kBlockBytes);
    return reader->pBuf == nullptr ? QV_NOMEM : QV_OK;
}

QVStatus loadBlock(BLOCKREADER* reader, COMPPATHS* block) {
    reader->curr = block;
    reader->pBufi = 0;
    reader->pBufLen = 0;
    uint64_t loaded = block->uncompressedLen;
    if (block->onDisk || block->compressed) {
        QV_TRY(uncompressPathBuffer(reader, block, reader->pBuf));
        reader->records = reader->pBuf;
        if (block->compressed) {
            // Fewer bytes than expected (a file read out of step) are noted only.  What the buffer
            // held before is not read as records.
            loaded = std::min<uint64_t>(loaded, reader->z.total_out);
        }
    } else {
        reader->records = block->buf;
    }
    reader->pBufLen = static_cast<QVStrSize>(loaded);
    return QV_OK;
}

void rewindBlocks(BLOCKREADER* reader) {
    reader->curr = nullptr;
    reader->pBufi = 0;
    (void)destroyHandle(reader->rfp);  // read only: nothing can be lost
    reader->rfpStatus = QV_OK;
}

QVStatus closeBlocks(BLOCKREADER* reader) {
    return destroyHandle(reader->rfp);
}

}  // namespace jmap
