// Scanning runs of bytes, 16 at a time.  SSE2 belongs to every x86-64 machine, so this is the
// kernel in use there when nothing wider is offered; what is left of a buffer after the last 16
// bytes goes to the portable kernel.
//
// Tested by tests/json/parser_test.cpp
#pragma once

#if defined(__SSE2__)

#include "host/json/scan_portable.h"

#include <emmintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>

namespace qvhost {

struct ScanSse2 {
    template <bool kUtf8>
    static const uint8_t* text(const uint8_t* p, const uint8_t* end) {
        for (; end - p >= 16; p += 16) {
            if (const uint32_t stops = textStops16<kUtf8>(p); stops != 0) {
                return p + std::countr_zero(stops);
            }
        }
        return ScanPortable::text<kUtf8>(p, end);
    }

    template <bool kUtf8>
    static void textStops(const uint8_t* p, std::size_t blocks, uint64_t* stops) {
        for (std::size_t n = 0; n < blocks; ++n, p += 64) {
            const auto part = [p](std::ptrdiff_t i) -> uint64_t {
                return uint64_t{textStops16<kUtf8>(p + 16 * i)} << 16 * i;
            };
            stops[n] = part(0) | part(1) | part(2) | part(3);
        }
    }

    static DecimalRun decimal(const uint8_t* p, const uint8_t* end) {
        return end - p < 32
                   ? ScanPortable::decimal(p, end)
                   : ScanPortable::decimal(p, end, notDigits16(p) | notDigits16(p + 16) << 16);
    }

    static const uint8_t* space(const uint8_t* p, const uint8_t* end, LineEnds& lines) {
        for (; end - p >= 16; p += 16) {
            const __m128i bytes = load(p);
            const __m128i feeds = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n'));
            const __m128i blanks =
                _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(' ')),
                             _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r')),
                                          _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\t'))));
            const uint32_t stops = mask(_mm_or_si128(feeds, blanks)) ^ 0xFFFF;
            const uint32_t passed = ~stops & (stops - 1);  // all when nothing stops
            lines.add(p, mask(feeds) & passed);
            if (stops != 0) {
                return p + std::countr_zero(stops);
            }
        }
        return ScanPortable::space(p, end, lines);
    }

   private:
    template <bool kUtf8>
    static uint32_t textStops16(const uint8_t* block) {
        const __m128i bytes = load(block);
        const __m128i quotes = _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')),
                                            _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\')));
        // Signed, 0x80 and above are negative: one comparison finds them and the controls.
        const __m128i others =
            kUtf8 ? _mm_cmpgt_epi8(_mm_set1_epi8(0x20), bytes)
                  : _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(0x1F)), bytes);
        return mask(_mm_or_si128(quotes, others));
    }
    static uint32_t notDigits16(const uint8_t* p) {
        const __m128i values = _mm_sub_epi8(load(p), _mm_set1_epi8('0'));
        const __m128i digits = _mm_cmpeq_epi8(_mm_min_epu8(values, _mm_set1_epi8(9)), values);
        return mask(digits) ^ 0xFFFF;
    }
    static __m128i load(const uint8_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    static uint32_t mask(__m128i bytes) { return static_cast<uint32_t>(_mm_movemask_epi8(bytes)); }
};

}  // namespace qvhost

#endif
