// Allocates small pieces from larger ones.  A piece lives as long as the pool.
//
// Tested by tests/core/helpers_test.cpp
#pragma once

#include "pool.h"

#include <algorithm>

// All zero: empty.
struct ARENA {
    char* at;        // the next piece
    QVStrSize left;  // bytes from there to the end
};

namespace jmap {

// `size` bytes, not cleared, aligned for pointers; null without memory.
[[nodiscard]] inline char* arenaBytes(ARENA* arena, QVPoolh pool, QVStrSize size) noexcept {
    constexpr QVStrSize kPieceBytes = 16384 - 16;  // 16 KiB with the head that a pool adds
    constexpr QVStrSize kAlignment = 8;
    const QVStrSize need = (size + kAlignment - 1) / kAlignment * kAlignment;
    if (need > arena->left) [[unlikely]] {
        const QVStrSize bytes = std::max(need, kPieceBytes);
        char* piece = poolBytes(pool, bytes);
        if (piece == nullptr || need > kPieceBytes / 4) {
            return piece;  // a large one does not replace the current piece
        }
        *arena = {piece, bytes};
    }
    char* const begin = arena->at;
    arena->at += need;
    arena->left -= need;
    return begin;
}

}  // namespace jmap
