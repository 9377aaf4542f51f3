// Pools: the memory that the host hands out.
//
// Tested by tests/host/pool_test.cpp
#pragma once

#include "qvehost.h"

namespace qvhost {

class Host;

// A new, empty pool, or null.  It takes memory from the system at its first allocation, or at once
// for `parms.initialSize`.  `flags` must be 1.
[[nodiscard]] QVPoolh createPool(Host& host, const QVPoolParms& parms, const QVChar* name,
                                 QVStrSize nameLen);

// Calls of allocate and reallocate that succeeded in this pool so far.
[[nodiscard]] uint64_t poolCalls(const QVGeneric& pool) noexcept;

}  // namespace qvhost
