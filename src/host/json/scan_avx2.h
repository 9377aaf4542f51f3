// Scanning runs of bytes, 32 at a time, on machines that offer AVX2.
//
// Every routine is compiled for AVX2 by itself, not the file that includes it: nothing that is
// shared with the rest of the program can come to hold an instruction that a machine lacks.
//
// Tested by tests/json/parser_test.cpp
#pragma once

#if defined(__SSE2__)

#include "host/json/scan_portable.h"

#include <immintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>

namespace qvhost {

struct ScanAvx2 {
    // Whether this machine can run the other routines.
    static bool offered() { return __builtin_cpu_supports("avx2") != 0; }

    template <bool kUtf8>
    [[gnu::target("avx2")]] static const uint8_t* text(const uint8_t* p, const uint8_t* end) {
        for (; end - p >= 32; p += 32) {
            if (const uint32_t stops = textStops32<kUtf8>(p); stops != 0) {
                return p + std::countr_zero(stops);
            }
        }
        return ScanPortable::text<kUtf8>(p, end);
    }

    template <bool kUtf8>
    [[gnu::target("avx2")]] static void textStops(const uint8_t* p, std::size_t blocks,
                                                  uint64_t* stops) {
        for (std::size_t n = 0; n < blocks; ++n, p += 64) {
            stops[n] = uint64_t{textStops32<kUtf8>(p + 32)} << 32 | textStops32<kUtf8>(p);
        }
    }

    [[gnu::target("avx2")]] static DecimalRun decimal(const uint8_t* p, const uint8_t* end) {
        if (end - p < 32) {
            return ScanPortable::decimal(p, end);
        }
        const __m256i values = _mm256_sub_epi8(load(p), _mm256_set1_epi8('0'));
        const __m256i digits =
            _mm256_cmpeq_epi8(_mm256_min_epu8(values, _mm256_set1_epi8(9)), values);
        return ScanPortable::decimal(p, end, ~mask(digits));
    }

    [[gnu::target("avx2")]] static const uint8_t* space(const uint8_t* p, const uint8_t* end,
                                                        LineEnds& lines) {
        for (; end - p >= 32; p += 32) {
            const __m256i bytes = load(p);
            const __m256i feeds = _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('\n'));
            const __m256i blanks =
                _mm256_or_si256(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(' ')),
                                _mm256_or_si256(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('\r')),
                                                _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('\t'))));
            const uint32_t stops = ~mask(_mm256_or_si256(feeds, blanks));
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
    [[gnu::target("avx2")]] static uint32_t textStops32(const uint8_t* block) {
        const __m256i bytes = load(block);
        const __m256i quotes = _mm256_or_si256(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('"')),
                                               _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('\\')));
        // As in the narrower kernel: signed, 0x80 and above are negative.
        const __m256i others =
            kUtf8 ? _mm256_cmpgt_epi8(_mm256_set1_epi8(0x20), bytes)
                  : _mm256_cmpeq_epi8(_mm256_min_epu8(bytes, _mm256_set1_epi8(0x1F)), bytes);
        return mask(_mm256_or_si256(quotes, others));
    }
    [[gnu::target("avx2")]] static __m256i load(const uint8_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    [[gnu::target("avx2")]] static uint32_t mask(__m256i bytes) {
        return static_cast<uint32_t>(_mm256_movemask_epi8(bytes));
    }
};

}  // namespace qvhost

#endif
