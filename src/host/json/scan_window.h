// Where the text of strings stops, found for a stretch of a buffer at a time.
//
// Most strings are short, so a vector load for each would make every token wait for the one before
// it.  Here all stops of a stretch are found ahead, one bit for each byte.  To find the next stop
// after a byte then takes one load, one shift and one bit count.
//
// Tested by tests/json/parser_test.cpp
#pragma once

#include "host/json/scan_routines.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qvhost {

// The stops among the next bytes from a place on, at least 57 bytes.
class NearStops {
   public:
    // Bit i of `stops` is for from[i].
    NearStops(const uint8_t* from, uint64_t stops) : from_(from), stops_(stops) {}

    // The first stop from `p` on, null when it is not near.  `p` is not before the place.
    [[nodiscard]] const uint8_t* from(const uint8_t* p) const {
        const auto skipped = static_cast<std::size_t>(p - from_);
        const uint64_t ahead = skipped < 64 ? stops_ >> skipped : 0;
        return ahead != 0 ? p + static_cast<unsigned>(std::countr_zero(ahead)) : nullptr;
    }

   private:
    const uint8_t* from_;
    uint64_t stops_;
};

class TextWindow {
   public:
    // A window on the bytes from `begin` to `end`.
    TextWindow(const ScanRoutines& scan, const uint8_t* begin, const uint8_t* end)
        : scan_(scan), base_(begin), known_(begin), end_(end) {}

    // The bytes from `p` on that are no plain text (see ScanPortable::text), none where that is not
    // known yet.  `p` is never before what was given last.
    [[nodiscard]] NearStops near(const uint8_t* p) const {
        return {p, p < known_ ? stopsFrom(p) : 0};
    }

    // The first of them, wherever it is; the end of the buffer when there is none.
    const uint8_t* stop(const uint8_t* p) {
        while (p != end_) {
            if (p >= known_) {
                find(p);
            }
            while (p != known_) {
                if (const uint8_t* found = near(p).from(p); found != nullptr) {
                    return found;
                }
                p += std::min(kSeen, known_ - p);
            }
        }
        return p;
    }

   private:
    static constexpr std::size_t kBytes = 1024;
    static constexpr std::ptrdiff_t kSeen = 57;  // bytes that a NearStops covers, at least

    // The stops among the next kSeen bytes or more: bit i is for p[i].  Taken from the byte of
    // stops_ that holds bit 0, which is why the order of its bytes matters.
    uint64_t stopsFrom(const uint8_t* p) const {
        const auto at = static_cast<std::size_t>(p - base_);
        uint64_t stops;
        std::memcpy(&stops, reinterpret_cast<const uint8_t*>(stops_) + at / 8, sizeof stops);
        return stops >> at % 8;
    }

    // Finds the stops from `p` on.
    void find(const uint8_t* p) {
        const std::size_t bytes = std::min(kBytes, static_cast<std::size_t>(end_ - p));
        const std::size_t blocks = bytes / 64;
        scan_.textStops(p, blocks, stops_);
        stops_[blocks] = 0;
        if (const std::size_t left = bytes % 64; left != 0) {
            uint8_t last[64] = {};
            std::memcpy(last, p + blocks * 64, left);
            scan_.textStops(last, 1, stops_ + blocks);
            stops_[blocks] &= ~(~uint64_t{0} << left);
            stops_[blocks + 1] = 0;
        }
        base_ = p;
        known_ = p + bytes;
    }

    static_assert(std::endian::native == std::endian::little);

    const ScanRoutines& scan_;
    const uint8_t* base_;              // the stretch
    const uint8_t* known_;             // and its end
    const uint8_t* end_;               // of the buffer
    uint64_t stops_[kBytes / 64 + 1];  // bit i of stops_[n]: the text stops at base_[64 * n + i];
                                       // after the stretch all are 0
};

}  // namespace qvhost
