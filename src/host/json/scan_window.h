// Where the text of strings stops, 64 bytes of a buffer at a time.
//
// Most strings are short, so a vector load for each would make every token wait for the one before
// it.  A window is loaded from a place that does not depend on where tokens end; within it the next
// stop is one shift and one bit count away.
//
// Tested by tests/json/parser_test.cpp
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qvhost {

template <class Scan, bool kUtf8>
class TextWindow {
   public:
    TextWindow(const uint8_t* begin, const uint8_t* end) : base_(begin), end_(end) { load(); }

    // The first byte from `p` on that is no plain text (see ScanPortable::textStops), or the end of
    // the buffer.  `p` is never before what was given last.
    const uint8_t* stop(const uint8_t* p) {
        if (p - base_ < kBytes) {
            const uint64_t ahead = stops_ >> (p - base_);
            if (ahead != 0) [[likely]] {
                return p + static_cast<unsigned>(std::countr_zero(ahead));
            }
        }
        return stopFurther(p);
    }

   private:
    static constexpr std::ptrdiff_t kBytes = 64;

    // The same when the stop is not in this window.
    [[gnu::noinline]] const uint8_t* stopFurther(const uint8_t* p) {
        const std::ptrdiff_t passed = (p - base_) / kBytes;
        if (passed == 1) {
            advance();
        } else if (passed > 1) {
            base_ += passed * kBytes;
            load();
        }
        uint64_t ahead = stops_ & ~uint64_t{0} << (p - base_);
        while (ahead == 0) {
            advance();
            ahead = stops_;
        }
        return base_ + static_cast<unsigned>(std::countr_zero(ahead));
    }

    void load() {
        stops_ = stopsAt(base_);
        nextStops_ = stopsBehind();
    }
    // The window behind is known by now; the one after it is computed while tokens go on.
    void advance() {
        base_ += kBytes;
        stops_ = nextStops_;
        nextStops_ = stopsBehind();
    }
    [[nodiscard]] uint64_t stopsBehind() const {
        return end_ - base_ > kBytes ? stopsAt(base_ + kBytes) : ~uint64_t{0};
    }
    // The end of the buffer stops every text, so the bits at and behind it are set.
    [[nodiscard]] uint64_t stopsAt(const uint8_t* block) const {
        const std::ptrdiff_t left = end_ - block;
        if (left >= kBytes) [[likely]] {
            return Scan::template textStops<kUtf8>(block);
        }
        uint8_t last[kBytes] = {};
        std::memcpy(last, block, static_cast<std::size_t>(left));
        return Scan::template textStops<kUtf8>(last) | ~uint64_t{0} << left;
    }

    const uint8_t* base_;
    const uint8_t* end_;
    uint64_t stops_ = 0;      // bit i: the text stops at base_[i]
    uint64_t nextStops_ = 0;  // the same for the 64 bytes behind
};

}  // namespace qvhost
