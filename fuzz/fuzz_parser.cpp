// Property: the parser accepts what Boost.JSON accepts, with the same events, and rejects what it
// rejects.  Any cut into buffers and any routine for scanning give the same status, place and
// events.
//
// Input: as in kit/parse_check.h.
//
// Not compared: which mistake it is and where, since Boost.JSON describes mistakes in its own way;
// events of numbers with an exponent that it cannot hold (kit/reference_parser.cpp).  The nesting
// limit is the same on both sides.
#include "fuzz_one.h"
#include "kit/parse_check.h"

int fuzzOne(const uint8_t* data, std::size_t size) {
    using namespace jmap::fuzz;
    checkParse(data, size, {},
               [](std::string_view text) { return referenceEvents(text, kMaxParseDepth); });
    return 0;
}
