// See skim.h.
#include "client/partition/skim.h"

#include <bit>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace qvej {
namespace {

// Where each kind of byte stands in a block.
struct Bytes {
    uint64_t quotes, backslashes, opens, closes, feeds;
};

// '[' and ']' are '{' and '}' without this bit.
constexpr uint8_t kBrace = 0x20;

// The bytes that a backslash escapes.  Subtracting the starts of runs of backslashes from the odd
// places makes every second one of a run an escaped one.
[[gnu::always_inline]] inline uint64_t escapedBytes(uint64_t backslashes, uint64_t& carry) {
    if ((backslashes | carry) == 0) [[likely]] {
        return 0;
    }
    constexpr uint64_t kOdd = 0xAAAAAAAAAAAAAAAA;
    const uint64_t maybeEscaping = backslashes & ~carry;
    const uint64_t codes = (((maybeEscaping << 1) | kOdd) - maybeEscaping) ^ kOdd;
    const uint64_t escaped = codes ^ (backslashes | carry);
    carry = (codes & backslashes) >> 63;
    return escaped;
}

// Whether each element that ends in the block `p` is followed by the next one at once.
[[gnu::always_inline]] inline bool goesOn(const uint8_t* p, int64_t depth, uint64_t opens,
                                          uint64_t closes) {
    for (; closes != 0; closes &= closes - 1) {
        const int at = std::countr_zero(closes);
        --depth;
        if (depth + std::popcount(opens & ((uint64_t{1} << at) - 1)) == 0 &&
            (at + 2 >= kSkimBytes || p[at + 1] != ',' || p[at + 2] != '{')) {
            return false;
        }
    }
    return true;
}

// Inlined into a routine for each kernel, so that all of it uses the instructions of that kernel.
template <class Kernel>
[[gnu::always_inline]] inline const uint8_t* skim(const uint8_t* p, const uint8_t* end,
                                                  const uint8_t* due, SkimState& state,
                                                  SkimBlock& block) {
    SkimState now = state;
    for (; end - p >= kSkimBytes; p += kSkimBytes) {
        const Bytes bytes = Kernel::find(p);
        const uint64_t quotes = bytes.quotes & ~escapedBytes(bytes.backslashes, now.escaped);
        const uint64_t inString = Kernel::prefixXor(quotes) ^ now.inString;
        now.inString = uint64_t{0} - (inString >> 63);
        const uint64_t opens = bytes.opens & ~inString;
        const uint64_t closes = bytes.closes & ~inString;
        now.feeds += std::popcount(bytes.feeds);
        now.feedBlock = bytes.feeds != 0 ? p : now.feedBlock;
        const int64_t closed = std::popcount(closes);
        if (now.depth <= closed &&
            (now.depth == 0 || due - p < kSkimBytes || !goesOn(p, now.depth, opens, closes))) {
            block = {quotes, opens, closes, bytes.feeds};
            break;
        }
        now.depth += std::popcount(opens) - closed;
    }
    state = now;
    return p;
}

// Eight bytes at a time.
struct Portable {
    static Bytes find(const uint8_t* p) {
        Bytes found = {};
        for (int i = 0; i < 8; ++i) {
            uint64_t bytes = 0;
            for (int j = 0; j < 8; ++j) {
                bytes |= uint64_t{p[8 * i + j]} << 8 * j;
            }
            const uint64_t braces = bytes | kOnes * kBrace;
            found.quotes |= equal(bytes, '"') << 8 * i;
            found.backslashes |= equal(bytes, '\\') << 8 * i;
            found.opens |= equal(braces, '{') << 8 * i;
            found.closes |= equal(braces, '}') << 8 * i;
            found.feeds |= equal(bytes, '\n') << 8 * i;
        }
        return found;
    }

    // Bit i of the result: an odd number of the bits 0 to i is set.
    static uint64_t prefixXor(uint64_t bits) {
        for (int by = 1; by < 64; by *= 2) {
            bits ^= bits << by;
        }
        return bits;
    }

   private:
    static constexpr uint64_t kOnes = 0x0101010101010101;

    // The sum carries from no byte to the next.  It sets the top bit of a byte whose low bits
    // differ.
    static uint64_t equal(uint64_t bytes, uint8_t byte) {
        constexpr uint64_t kTop = kOnes * 0x80;
        const uint64_t differ = bytes ^ kOnes * byte;
        const uint64_t same = ~(((differ & ~kTop) + ~kTop) | differ) & kTop;
        return (same >> 7) * 0x0102040810204080 >> 56;  // the top bits, one after the other
    }
};

const uint8_t* skimPortable(const uint8_t* p, const uint8_t* end, const uint8_t* due,
                            SkimState& state, SkimBlock& block) {
    return skim<Portable>(p, end, due, state, block);
}

#if defined(__x86_64__)

// Belongs to every such machine.
struct Sse2 {
    static Bytes find(const uint8_t* p) {
        Bytes found = {};
        for (int i = 0; i < 4; ++i) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * i));
            const __m128i braces = _mm_or_si128(bytes, _mm_set1_epi8(kBrace));
            found.quotes |= equal(bytes, '"') << 16 * i;
            found.backslashes |= equal(bytes, '\\') << 16 * i;
            found.opens |= equal(braces, '{') << 16 * i;
            found.closes |= equal(braces, '}') << 16 * i;
            found.feeds |= equal(bytes, '\n') << 16 * i;
        }
        return found;
    }
    static uint64_t prefixXor(uint64_t bits) { return Portable::prefixXor(bits); }

   private:
    static uint64_t equal(__m128i bytes, char byte) {
        return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte))));
    }
};

const uint8_t* skimSse2(const uint8_t* p, const uint8_t* end, const uint8_t* due, SkimState& state,
                        SkimBlock& block) {
    return skim<Sse2>(p, end, due, state, block);
}

#define QVEJ_AVX2 gnu::target("avx2,bmi,pclmul,popcnt")

struct Avx2 {
    static bool offered() {
        return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi") != 0 &&
               __builtin_cpu_supports("pclmul") != 0 && __builtin_cpu_supports("popcnt") != 0;
    }

    [[QVEJ_AVX2]] static Bytes find(const uint8_t* p) {
        const __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
        const __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32));
        const __m256i brace = _mm256_set1_epi8(kBrace);
        const __m256i lowBraces = _mm256_or_si256(low, brace);
        const __m256i highBraces = _mm256_or_si256(high, brace);
        return {equal(low, high, '"'), equal(low, high, '\\'), equal(lowBraces, highBraces, '{'),
                equal(lowBraces, highBraces, '}'), equal(low, high, '\n')};
    }

    // The product without carries by a number of ones.
    [[QVEJ_AVX2]] static uint64_t prefixXor(uint64_t bits) {
        const __m128i product = _mm_clmulepi64_si128(_mm_set_epi64x(0, static_cast<int64_t>(bits)),
                                                     _mm_set1_epi8(static_cast<char>(0xFF)), 0);
        return static_cast<uint64_t>(_mm_cvtsi128_si64(product));
    }

   private:
    [[QVEJ_AVX2]] static uint64_t equal(__m256i low, __m256i high, char byte) {
        return mask(low, byte) | uint64_t{mask(high, byte)} << 32;
    }
    [[QVEJ_AVX2]] static uint32_t mask(__m256i bytes, char byte) {
        return static_cast<uint32_t>(
            _mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(byte))));
    }
};

[[QVEJ_AVX2]] const uint8_t* skimAvx2(const uint8_t* p, const uint8_t* end, const uint8_t* due,
                                      SkimState& state, SkimBlock& block) {
    return skim<Avx2>(p, end, due, state, block);
}

#endif

}  // namespace

Skim skimRoutine(SkimKernel kernel) {
#if defined(__x86_64__)
    if ((kernel == SkimKernel::BEST || kernel == SkimKernel::AVX2) && Avx2::offered()) {
        return skimAvx2;
    }
    if (kernel != SkimKernel::PORTABLE) {
        return skimSse2;
    }
#endif
    (void)kernel;
    return skimPortable;
}

}  // namespace qvej
