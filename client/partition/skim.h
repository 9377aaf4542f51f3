// Passes over the inside of a value without parsing it: only quotes, backslashes and brackets
// count.
//
// The text is taken in blocks of 64 bytes, as bit sets: bit i is for byte i.  Which quotes are
// escaped, and what is in a string, is arithmetic on such sets (Langdale and Lemire, Parsing
// Gigabytes of JSON per Second, 2019).  A block with fewer closing brackets than there are open
// ones cannot end the value, so nobody has to look where in it they are (Jiang and Zhao, JSONSki,
// 2022).
//
// Tested by tests/client/partition_test.cpp
#pragma once

#include <cstddef>
#include <cstdint>

namespace qvej {

constexpr std::ptrdiff_t kSkimBytes = 64;

// What is known between two blocks.
struct SkimState {
    uint64_t inString = 0;  // all ones: the next block begins in a string
    uint64_t escaped = 0;   // 1: its first byte comes after a backslash that escapes it
    int64_t depth = 0;      // brackets that are open
    int64_t feeds = 0;      // line feeds so far, those in strings too
    const uint8_t* feedBlock = nullptr;  // the last block that has one
};

// A block in which the caller looks for the byte that it wants.
struct SkimBlock {
    uint64_t quotes;  // that begin or end a string
    uint64_t opens;   // brackets outside strings
    uint64_t closes;
    uint64_t feeds;
};

// Passes whole blocks from `p` on, as long as the depth stays above zero in them.  Up to `due` it
// also passes from an element to the next one, where only a comma is between them: with small
// elements nearly every block has such a place.  Returns the first other block: it is in `block`,
// and in `state` but for its depth.  Else returns where less than a block is left.
using Skim = const uint8_t* (*)(const uint8_t* p, const uint8_t* end, const uint8_t* due,
                                SkimState& state, SkimBlock& block);

enum class SkimKernel : uint8_t {
    BEST,  // the fastest that the machine offers
    PORTABLE,
    SSE2,
    AVX2
};

// The routine of `kernel`, or of the next slower one where the machine does not offer it.
Skim skimRoutine(SkimKernel kernel);

}  // namespace qvej
