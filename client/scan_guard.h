// Ends a scan before the machine suffers: there are too many distinct paths, the records would fill
// the disk, or memory is short although the records are in a file.  The caller can end it, too.
//
// The engine asks with every block of records, 1 MiB, and every few thousand columns of the map or
// of a pass.  A document of a few kilobytes can grow to any size: what counts is what it has
// become.
//
// Tested by tests/client/scan_guard_test.cpp
#pragma once

#include "qvejmapx.h"

#include "error.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace qvej {

// What the guard looks at outside of the document.
struct Surroundings {
    std::function<uint64_t()> availableMemory;
    std::function<std::optional<uint64_t>()> freeDisk;  // where the cache file is; none: not known
    std::function<bool()> stopped = {};                 // see DocumentOptions; may be empty
};

// Bytes free on the file system of a file, or of a directory whose name ends in "/".
[[nodiscard]] std::optional<uint64_t> freeDiskOf(const std::string& path);

class ScanGuard {
   public:
    // `leastMemory`: with less memory available the scan ends.  `maxPaths` 0: any number.
    ScanGuard(uint64_t maxPaths, uint64_t leastMemory, Surroundings surroundings);

    // QV_OK, or why the scan must end; `failure` has the sentence then.
    [[nodiscard]] QVStatus check(const JMAPGrowth& growth) noexcept;

    // Bytes of memory that the document may still take, or why they are not known.
    [[nodiscard]] QVStatus available(uint64_t& bytes) noexcept;

    // Memory alone, for `what` is held beyond the engine, and `more` bytes will be.  Throws the
    // failure.
    void checkMemory(const std::string& what, uint64_t more = 0);

    [[nodiscard]] const std::optional<Error>& failure() const { return failure_; }

   private:
    QVStatus look(const JMAPGrowth& growth);
    QVStatus lookAtMemory(const std::string& what, uint64_t more = 0);
    QVStatus lookAtDisk(uint64_t spilled);
    QVStatus fail(QVStatus status, const std::string& sentence);

    uint64_t maxPaths_;
    uint64_t leastMemory_;
    Surroundings surroundings_;
    std::optional<uint64_t> leastDisk_;  // set when the first block has gone there
    std::optional<Error> failure_;
};

}  // namespace qvej
