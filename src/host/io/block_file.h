// A file of blocks, back to back and nothing between them: the bytes are on disk, the lengths of
// the blocks in memory.
//
// One descriptor serves the writer and every later reader, so the name may be removed as soon as
// the file is open.  Readers keep their own place.  All calls are made by one thread at a time.
//
// Tested by tests/host/io_test.cpp
#pragma once

#include "qvehost.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace qvhost {

struct Syscalls;

class BlockFile {
   public:
    // A path that ends with "/" is a directory: the file is made there without a name, so that
    // nothing of it stays, whatever ends the program.  Where a file system has no such files it
    // gets a name that is removed at once.
    // Any other path: makes the file, mode 0600, or takes an existing one if it is regular, empty,
    // of this user, has one link and no other block file holds it.  A symbolic link is refused when
    // it is the last component of the path; on the way there links are followed, as everywhere.
    // QV_IO_REFUSED leaves the existing file as it was.  QV_IO_FULL, QV_IO_OPEN.
    [[nodiscard]] static QVStatus create(const Syscalls& calls, const std::string& path,
                                         std::shared_ptr<BlockFile>& file);
    ~BlockFile();
    BlockFile(const BlockFile&) = delete;
    BlockFile& operator=(const BlockFile&) = delete;

    // Adds one block.  After a failure the file ends with the block before.
    // QV_IO_FULL, QV_IO_WRITE.
    [[nodiscard]] QVStatus append(std::span<const char> block);

    // Tells the system that the last block was written.  QV_IO_CLOSE when it may have lost bytes.
    [[nodiscard]] QVStatus finish();

    struct Block {
        int64_t offset;
        int64_t length;
    };
    [[nodiscard]] const std::vector<Block>& blocks() const noexcept { return blocks_; }

    // Reads a block whole into `room`, which has its length.  QV_IO_SHORT, QV_IO_READ.
    [[nodiscard]] QVStatus read(const Block& block, char* room) const;

   private:
    BlockFile(const Syscalls& calls, int fd) noexcept : calls_(calls), fd_(fd) {}
    [[nodiscard]] QVStatus claim();

    const Syscalls& calls_;
    int fd_;
    int64_t size_ = 0;  // of all blocks
    std::vector<Block> blocks_;
};

}  // namespace qvhost
