// Asks the caller's guard (JMAPGuard) whether a document may grow on, and how much memory it has.
#pragma once

#include "context.h"

namespace jmap {

// Columns that are made between two questions, about a megabyte; a table is as one more.  Tables
// alone say little: each can have as many ordinals as its path is deep.
inline constexpr uint64_t kColumnsBetween = 4096;

// QV_OK, also without a guard, or the status that ends the scan.
//   tables  made so far; 0 during the scan
[[nodiscard]] inline QVStatus askGuard(const JMAP_PRIVATE* p, uint64_t tables,
                                       uint64_t spilledBytes) {
    const JMAPGrowth growth = {p->pathNodes, p->uncompressedPathBytes, spilledBytes, tables};
    return p->guard == nullptr ? QV_OK : p->guard->check(p->guard->arg, &growth);
}
[[nodiscard]] inline QVStatus askGuard(const JMAP_PRIVATE* p, uint64_t tables) {
    return askGuard(p, tables, p->spilledPathBytes);
}

// The same when no record is written any more, so that the disk does not matter.
[[nodiscard]] inline QVStatus askGuardOfMemory(const JMAP_PRIVATE* p, uint64_t tables) {
    return askGuard(p, tables, 0);
}

// Bytes of memory that are available: to this document, or to all when the guard does not say.
[[nodiscard]] inline QVStatus availableMemory(const JMAP_PRIVATE* p, uint64_t* bytes) {
    if (p->guard != nullptr && p->guard->available != nullptr) {
        return p->guard->available(p->guard->arg, bytes);
    }
    QVHndlp host = qvGlobalHandle();
    return host->qvmrlmem(host, bytes);
}

}  // namespace jmap
