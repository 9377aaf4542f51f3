// Memory of a host pool.
//
// All routines return null when memory cannot be had.  Sizes are 64-bit; the pool accepts 0.
//
// Tested by tests/core/helpers_test.cpp
#pragma once

#include "qvehost.h"

#include <cstring>
#include <string_view>
#include <type_traits>

namespace jmap {

// A zero-filled record, or an array of them.
template <class T>
[[nodiscard]] T* poolNew(QVPoolh pool, QVStrSize count = 1) noexcept {
    static_assert(std::is_trivially_default_constructible_v<T> &&
                  std::is_trivially_destructible_v<T>);
    // NOLINTNEXTLINE(bugprone-sizeof-expression): T may be a pointer
    const auto size = static_cast<QVStrSize>(sizeof(T));
    return static_cast<T*>(pool->allocate(pool, size * count, QV_ZERO));
}

// Bytes, not cleared.
[[nodiscard]] inline char* poolBytes(QVPoolh pool, QVStrSize size) noexcept {
    return static_cast<char*>(pool->allocate(pool, size, 0));
}

// A copy of a text, not terminated.
[[nodiscard]] inline char* poolCopy(QVPoolh pool, std::string_view text) noexcept {
    char* copy = poolBytes(pool, static_cast<QVStrSize>(text.size()));
    if (copy != nullptr && !text.empty()) {
        std::memcpy(copy, text.data(), text.size());
    }
    return copy;
}

// Gives a piece back; null is allowed.
inline QVStatus poolFree(QVPoolh pool, void* mem) noexcept {
    return mem == nullptr ? QV_OK : pool->release(pool, mem);
}

// Ends any host object and clears the handle; null is allowed.
template <class H>
QVStatus destroyHandle(H*& handle) noexcept {
    if (handle == nullptr) {
        return QV_OK;
    }
    QVGeneric* generic = reinterpret_cast<QVGeneric*>(handle);  // every object begins with it
    handle = nullptr;
    return generic->destroy(generic);
}

// Creates a pool of the global host as the engine makes all of its pools.
[[nodiscard]] inline QVPoolh newPool(std::u32string_view name) noexcept {
    const QVPoolParms parms = {1, 0, QV_NO_NUMA};
    QVHndlp host = qvGlobalHandle();
    return host->createPool(host, &parms, name.data(), static_cast<QVStrSize>(name.size()));
}

}  // namespace jmap
