// The routines that scan runs of bytes, chosen once for a parser: by what the machine offers and by
// the encoding of the document.
//
// Tested by tests/json/parser_test.cpp
#pragma once

#include "host/json/scan_portable.h"

#include <cstddef>
#include <cstdint>

namespace qvhost {

// How bytes are scanned.
enum class ScanKernel : uint8_t {
    BEST,  // the widest that the machine offers
    PORTABLE,
    SSE2,
    AVX2
};

// The routines of one kernel; ScanPortable says what each does.
struct ScanRoutines {
    const uint8_t* (*text)(const uint8_t* p, const uint8_t* end);
    void (*textStops)(const uint8_t* p, std::size_t blocks, uint64_t* stops);
    DecimalRun (*decimal)(const uint8_t* p, const uint8_t* end);
    const uint8_t* (*space)(const uint8_t* p, const uint8_t* end, LineEnds& lines);
};

// The routines of `kernel`, or of the next narrower one where the machine does not offer it.
const ScanRoutines& scanRoutines(ScanKernel kernel, bool utf8);

}  // namespace qvhost
