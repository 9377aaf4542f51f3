// Scanning runs of bytes, one byte at a time: the kernel of machines without SSE2, and the one that
// checks the others.
//
// A kernel is a structure of static routines.  Each looks at the bytes from `p` on, never at or
// behind `end`, and returns where the run ends; `end` when all of it belongs to the run.
//
// Tested by tests/json/scan_test.cpp
#pragma once

#include <cstdint>

namespace qvhost {

// Line ends that a run of white space has passed.
struct LineEnds {
    int64_t count = 0;
    const uint8_t* last = nullptr;  // the last line feed, null when there was none
};

// The digits of a number.
struct DecimalRun {
    const uint8_t* point;  // behind the first digits
    const uint8_t* end;    // behind all; the same when there is no point
};

struct ScanPortable {
    // The text of a string: up to a quote, a backslash, a control character or, in UTF-8, a byte
    // that is not ASCII.
    template <bool kUtf8>
    static const uint8_t* text(const uint8_t* p, const uint8_t* end) {
        while (p != end && *p >= 0x20 && *p != '"' && *p != '\\' && !(kUtf8 && *p >= 0x80)) {
            ++p;
        }
        return p;
    }

    // The same for 64 bytes: bit i tells that the text stops at block[i].
    template <bool kUtf8>
    static uint64_t textStops(const uint8_t* block) {
        uint64_t stops = 0;
        for (int i = 0; i < 8; ++i) {
            stops |= textStops8<kUtf8>(block + 8 * i) << 8 * i;
        }
        return stops;
    }

    static const uint8_t* digits(const uint8_t* p, const uint8_t* end) {
        while (p != end && *p >= '0' && *p <= '9') {
            ++p;
        }
        return p;
    }

    // Digits, and behind a point more of them.
    static DecimalRun decimal(const uint8_t* p, const uint8_t* end) {
        const uint8_t* point = digits(p, end);
        return {point, point != end && *point == '.' ? digits(point + 1, end) : point};
    }

    // White space.  Adds its line feeds to `lines`.
    static const uint8_t* space(const uint8_t* p, const uint8_t* end, LineEnds& lines) {
        for (; p != end && (*p == ' ' || *p == '\n' || *p == '\r' || *p == '\t'); ++p) {
            if (*p == '\n') {
                ++lines.count;
                lines.last = p;
            }
        }
        return p;
    }

   private:
    // Eight bytes at once, without a carry from one to the next: the sums below set a byte's top
    // bit when its seven low bits differ from a character, or are 0x20 and above.
    template <bool kUtf8>
    static uint64_t textStops8(const uint8_t* block) {
        constexpr uint64_t kOnes = 0x0101010101010101;
        constexpr uint64_t kTop = kOnes * 0x80;
        uint64_t bytes = 0;
        for (int i = 0; i < 8; ++i) {
            bytes |= static_cast<uint64_t>(block[i]) << 8 * i;
        }
        const uint64_t low = bytes & ~kTop;
        const uint64_t noQuote = (low ^ kOnes * '"') + kOnes * 0x7F;
        const uint64_t noBackslash = (low ^ kOnes * '\\') + kOnes * 0x7F;
        const uint64_t noControl = low + kOnes * 0x60;
        const uint64_t asciiStops = ~((noQuote & noBackslash & noControl) | bytes) & kTop;
        const uint64_t stops = kUtf8 ? asciiStops | (bytes & kTop) : asciiStops;
        return (stops >> 7) * 0x0102040810204080 >> 56;  // the top bits, one behind the other
    }
};

}  // namespace qvhost
