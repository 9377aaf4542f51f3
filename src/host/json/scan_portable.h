// Scanning runs of bytes, one or eight at a time: the kernel of machines that offer no wider one,
// and the one that checks the others.
//
// A kernel is a structure of static routines.  Each looks at the bytes from `p` on, never at or
// after `end`, and returns where the run ends; `end` when all of it belongs to the run.
//
// Tested by tests/json/parser_test.cpp
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace qvhost {

// Line ends that a run of white space has passed.
struct LineEnds {
    int64_t count = 0;
    const uint8_t* last = nullptr;  // the last line feed, null when there was none

    // Adds the line feeds among the bytes from `p` on: bit i for p[i].
    void add(const uint8_t* p, uint32_t feeds) {
        if (feeds != 0) {
            count += std::popcount(feeds);
            last = p + (std::bit_width(feeds) - 1);
        }
    }
};

// The digits of a number.
struct DecimalRun {
    const uint8_t* point;  // after the first digits
    const uint8_t* end;    // after all; the same when there is no point
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

    // The same for blocks of 64 bytes: bit i of stops[n] tells that text stops at p[64 * n + i].
    template <bool kUtf8>
    static void textStops(const uint8_t* p, std::size_t blocks, uint64_t* stops) {
        for (std::size_t n = 0; n < blocks; ++n, p += 64) {
            stops[n] = 0;
            for (std::ptrdiff_t i = 0; i < 8; ++i) {
                stops[n] |= textStops8<kUtf8>(p + 8 * i) << 8 * i;
            }
        }
    }

    // Digits, and after a point more of them.
    static DecimalRun decimal(const uint8_t* p, const uint8_t* end) {
        const uint8_t* point = digits(p, end);
        return {point, point != end && *point == '.' ? digits(point + 1, end) : point};
    }
    // The same where the first 32 bytes have been compared: bit i of `others` for p[i] no digit.
    static DecimalRun decimal(const uint8_t* p, const uint8_t* end, uint32_t others) {
        const uint32_t after = others & (others - 1);
        if (after == 0) {
            return decimal(p, end);
        }
        const uint8_t* point = p + std::countr_zero(others);
        return {point, *point == '.' ? p + std::countr_zero(after) : point};
    }

    // White space.  Adds its line feeds to `lines`.
    static const uint8_t* space(const uint8_t* p, const uint8_t* end, LineEnds& lines) {
        for (; p != end && (*p == ' ' || *p == '\n' || *p == '\r' || *p == '\t'); ++p) {
            lines.add(p, *p == '\n' ? 1 : 0);
        }
        return p;
    }

   private:
    static const uint8_t* digits(const uint8_t* p, const uint8_t* end) {
        while (p != end && *p >= '0' && *p <= '9') {
            ++p;
        }
        return p;
    }

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
        return (stops >> 7) * 0x0102040810204080 >> 56;  // the top bits, one after the other
    }
};

}  // namespace qvhost
