// Pieces of a pool's memory: their sizes, their heads, and lists of free ones.
//
// Each piece has a head in the 8 bytes before it: the size asked for, times 256, plus its class.  A
// large piece has its usable size in the 8 bytes before the head.
//
// With the address sanitizer everything but the bytes asked for is poisoned, and a red zone stands
// after each piece.
//
// Tested by tests/host/pool_test.cpp
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SANITIZE_ADDRESS__)
#define QV_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QV_ASAN 1
#endif
#endif

#ifdef QV_ASAN
#include <sanitizer/asan_interface.h>
#define QV_UNCHECKED __attribute__((no_sanitize("address"), noinline))
#else
#define QV_UNCHECKED
#endif

namespace qvhost::piece {

#ifdef QV_ASAN
inline constexpr std::size_t kRedZone = 16;
inline void hide(const void* mem, std::size_t size) {
    __asan_poison_memory_region(mem, size);
}
inline void reveal(const void* mem, std::size_t size) {
    __asan_unpoison_memory_region(mem, size);
}
#else
inline constexpr std::size_t kRedZone = 0;
inline void hide(const void* /*mem*/, std::size_t /*size*/) {}
inline void reveal(const void* /*mem*/, std::size_t /*size*/) {}
#endif

inline constexpr std::size_t kKiB = 1024;
inline constexpr std::size_t kMiB = 1024 * kKiB;

inline constexpr std::size_t kHeadSize = 8;
inline constexpr std::size_t kStep = 16;               // alignment of pieces
inline constexpr std::size_t kFineLimit = 1 * kKiB;    // slots up to here go in steps of kStep
inline constexpr std::size_t kSmallLimit = 64 * kKiB;  // longest slot of a small piece
inline constexpr std::size_t kLargeLimit = 4 * kMiB;   // longest large piece
inline constexpr std::size_t kAbsurd = std::size_t{1} << 46;
inline constexpr std::size_t kLargeAlignment = 64;
inline constexpr int kFitTries = 8;  // free large pieces looked at for one request

// Slots of small pieces come in kClasses lengths: steps of kStep up to kFineLimit, then four to
// each doubling, so that at most a fifth is lost.
inline constexpr std::size_t kFineClasses = kFineLimit / kStep;
inline constexpr std::size_t kClasses = kFineClasses + 24;  // 6 doublings up to kSmallLimit
inline constexpr std::size_t kMagnitudes = 8;               // of large pieces: 64 KiB to 4 MiB
inline constexpr uint8_t kLargeClass = 254;
inline constexpr uint8_t kHugeClass = 255;

constexpr std::size_t roundUp(std::size_t n, std::size_t to) {
    return (n + to - 1) & ~(to - 1);
}

// The class of a slot whose length is a multiple of kStep.
constexpr std::size_t classOf(std::size_t slot) {
    if (slot <= kFineLimit) {
        return slot / kStep - 1;
    }
    const auto width = static_cast<std::size_t>(std::bit_width(slot - 1));
    return kFineClasses + (width - 11) * 4 + ((slot - 1) >> (width - 3)) - 4;
}

// The length of the slots of a class.
constexpr std::size_t slotOf(std::size_t slotClass) {
    if (slotClass < kFineClasses) {
        return (slotClass + 1) * kStep;
    }
    const std::size_t quarter = slotClass - kFineClasses;
    return (5 + quarter % 4) << (8 + quarter / 4);
}

constexpr bool classesAgree() {
    for (std::size_t i = 0; i < kClasses; ++i) {
        if (classOf(slotOf(i)) != i || (i > 0 && classOf(slotOf(i - 1) + kStep) != i)) {
            return false;
        }
    }
    return slotOf(kClasses - 1) == kSmallLimit;
}
static_assert(classesAgree());

// Short pieces are cleared by a few overlapping stores: a call would cost more than the work.
inline void clear(std::byte* piece, std::size_t size) {
    if (size < 16 || size > 64) {
        std::memset(piece, 0, size);
    } else if (size <= 32) {
        std::memset(piece, 0, 16);
        std::memset(piece + size - 16, 0, 16);
    } else {
        std::memset(piece, 0, 32);
        std::memset(piece + size - 32, 0, 32);
    }
}

struct Head {
    uint64_t size;       // bytes asked for
    uint8_t pieceClass;  // a slot class, kLargeClass or kHugeClass
};

QV_UNCHECKED inline Head headOf(const std::byte* piece) {
    uint64_t word;
    std::memcpy(&word, piece - kHeadSize, sizeof word);
    return {word >> 8, static_cast<uint8_t>(word)};
}

QV_UNCHECKED inline void setHead(std::byte* piece, uint64_t size, uint8_t pieceClass) {
    const uint64_t word = size << 8 | pieceClass;
    std::memcpy(piece - kHeadSize, &word, sizeof word);
}

QV_UNCHECKED inline uint64_t largeUsable(const std::byte* piece) {
    uint64_t usable;
    std::memcpy(&usable, piece - 2 * kHeadSize, sizeof usable);
    return usable;
}

QV_UNCHECKED inline void setLargeUsable(std::byte* piece, uint64_t usable) {
    std::memcpy(piece - 2 * kHeadSize, &usable, sizeof usable);
}

// Free pieces: each holds the address of the next in its first bytes.
class FreeList {
   public:
    void push(std::byte* piece) {
        setNext(piece, first_);
        first_ = piece;
    }
    // Null when the list is empty.
    std::byte* pop() {
        std::byte* const piece = first_;
        if (piece != nullptr) {
            first_ = next(piece);
        }
        return piece;
    }
    // The first of a few that `fits`, or null.
    template <class Fits>
    std::byte* popIf(Fits fits) {
        std::byte* before = nullptr;
        std::byte* piece = first_;
        for (int i = 0; i < kFitTries && piece != nullptr;
             ++i, before = piece, piece = next(piece)) {
            if (!fits(piece)) {
                continue;
            }
            if (before == nullptr) {
                return pop();
            }
            setNext(before, next(piece));
            return piece;
        }
        return nullptr;
    }

   private:
    static std::byte* next(const std::byte* piece) {
        std::byte* result;
        reveal(piece, sizeof result);
        std::memcpy(&result, piece, sizeof result);
        hide(piece, sizeof result);
        return result;
    }
    static void setNext(std::byte* piece, std::byte* to) {
        reveal(piece, sizeof to);
        std::memcpy(piece, &to, sizeof to);
        hide(piece, sizeof to);
    }
    std::byte* first_ = nullptr;
};

}  // namespace qvhost::piece
