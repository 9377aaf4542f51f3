// Small pieces that live as long as their pool, cut one after the other from larger ones.
//
// Tested by tests/core/helpers_test.cpp
#pragma once

#include "pool.h"

#include <algorithm>

// All zero: empty.
struct ARENA {
    char* at;        // the next piece
    QVStrSize left;  // bytes behind it
};

namespace jmap {

// `size` bytes, not cleared, aligned for pointers; null without memory.
[[nodiscard]] inline char* arenaBytes(ARENA* arena, QVPoolh pool, QVStrSize size) noexcept {
    constexpr QVStrSize kPieceBytes = 16384 - 16;  // and what a pool puts in front: 16 KiB
    constexpr QVStrSize kAlignment = 8;
    const QVStrSize need = (size + kAlignment - 1) / kAlignment * kAlignment;
    if (need > arena->left) [[unlikely]] {
        const QVStrSize bytes = std::max(need, kPieceBytes);
        char* piece = poolBytes(pool, bytes);
        if (piece == nullptr || need > kPieceBytes / 4) {
            return piece;  // a large one leaves the present piece in use
        }
        *arena = {piece, bytes};
    }
    char* const begin = arena->at;
    arena->at += need;
    arena->left -= need;
    return begin;
}

}  // namespace jmap
