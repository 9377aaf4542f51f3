// Scanning runs of bytes, 16 at a time.  SSE2 belongs to every x86-64 machine, so this is the
// kernel in use there; what is left of a buffer behind the last 16 bytes goes to the portable
// kernel.
//
// Wider vectors are not used: most runs of a document (names, numbers, short strings) end within 16
// bytes, and bench_parser shows no gain from 32.
//
// Tested by tests/json/scan_test.cpp, against the portable kernel
#pragma once

#if defined(__SSE2__)

#include "host/json/scan_portable.h"

#include <emmintrin.h>

#include <bit>
#include <cstdint>

namespace qvhost {

struct ScanSse2 {
    template <bool kUtf8>
    static const uint8_t* text(const uint8_t* p, const uint8_t* end) {
        for (; end - p >= 16; p += 16) {
            const unsigned stops = textStops16<kUtf8>(p);
            if (stops != 0) {
                return p + std::countr_zero(stops);
            }
        }
        return ScanPortable::text<kUtf8>(p, end);
    }

    template <bool kUtf8>
    static uint64_t textStops(const uint8_t* block) {
        const auto part = [block](int i) -> uint64_t {
            return static_cast<uint64_t>(textStops16<kUtf8>(block + 16 * i)) << 16 * i;
        };
        return part(0) | part(1) | part(2) | part(3);
    }

    static DecimalRun decimal(const uint8_t* p, const uint8_t* end) {
        if (end - p < 16) {
            return ScanPortable::decimal(p, end);
        }
        const unsigned others = notDigits16(p);
        const uint8_t* point = others != 0 ? p + std::countr_zero(others) : digits(p + 16, end);
        if (point == end || *point != '.') {
            return {point, point};
        }
        const unsigned behind = others & (others - 1);
        return {point, behind != 0 ? p + std::countr_zero(behind)
                                   : digits(others != 0 ? p + 16 : point + 1, end)};
    }

    static const uint8_t* space(const uint8_t* p, const uint8_t* end, LineEnds& lines) {
        for (; end - p >= 16; p += 16) {
            const __m128i bytes = load(p);
            const __m128i feeds = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n'));
            const __m128i blanks =
                _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(' ')),
                             _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r')),
                                          _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\t'))));
            const unsigned stops = mask(_mm_or_si128(feeds, blanks)) ^ 0xFFFFU;
            const int run = std::countr_zero(stops | 0x10000U);
            const unsigned passed = mask(feeds) & ((1U << run) - 1);
            if (passed != 0) {
                lines.count += std::popcount(passed);
                lines.last = p + (std::bit_width(passed) - 1);
            }
            if (stops != 0) {
                return p + run;
            }
        }
        return ScanPortable::space(p, end, lines);
    }

   private:
    static const uint8_t* digits(const uint8_t* p, const uint8_t* end) {
        for (; end - p >= 16; p += 16) {
            if (const unsigned others = notDigits16(p); others != 0) {
                return p + std::countr_zero(others);
            }
        }
        return ScanPortable::digits(p, end);
    }
    static unsigned notDigits16(const uint8_t* p) {
        const __m128i values = _mm_sub_epi8(load(p), _mm_set1_epi8('0'));
        const __m128i digits = _mm_cmpeq_epi8(_mm_min_epu8(values, _mm_set1_epi8(9)), values);
        return mask(digits) ^ 0xFFFFU;
    }
    template <bool kUtf8>
    static unsigned textStops16(const uint8_t* block) {
        const __m128i bytes = load(block);
        const __m128i quotes = _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')),
                                            _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\')));
        // Signed, 0x80 and above are negative: one comparison finds them and the controls.
        const __m128i others =
            kUtf8 ? _mm_cmpgt_epi8(_mm_set1_epi8(0x20), bytes)
                  : _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(0x1F)), bytes);
        return mask(_mm_or_si128(quotes, others));
    }
    static __m128i load(const uint8_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    static unsigned mask(__m128i bytes) { return static_cast<unsigned>(_mm_movemask_epi8(bytes)); }
};

}  // namespace qvhost

#endif
