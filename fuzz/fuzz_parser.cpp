// Property: the parser accepts what Boost.JSON accepts, with the same events, and rejects what it
// rejects.  Any cut into buffers and any routine for scanning give the same status, place and
// events.
//
// Input: a byte for the cut, a byte for the routine, the text.
//
// Not compared: which mistake it is and where, since Boost.JSON describes mistakes in its own way;
// events of numbers with an exponent that it cannot hold (kit/reference_parser.cpp).  The nesting
// limit is the same on both sides.
#include "fuzz_one.h"
#include "kit/input.h"
#include "kit/reference_parser.h"
#include "kit/require.h"
#include "tests/json/event_log.h"

namespace {

using namespace jmap;

constexpr uint64_t kMaxDepth = 64;

}  // namespace

int fuzzOne(const uint8_t* data, std::size_t size) {
    constexpr qvhost::ScanKernel kKernels[] = {qvhost::ScanKernel::PORTABLE,
                                               qvhost::ScanKernel::SSE2, qvhost::ScanKernel::BEST};
    fuzz::Input input(data, size);
    const std::size_t cut = input.byte();
    const auto kernel = kKernels[input.byte() % 3];
    const std::string_view text = input.rest();

    const std::string whole = test::parseIn(text, 0, {.maxDepth = kMaxDepth});
    const test::ParseOptions options = {.kernel = kernel, .maxDepth = kMaxDepth};
    fuzz::requireEqual(whole, test::parseIn(text, cut % 67, options), "buffers of one size");
    fuzz::requireEqual(whole, test::parseParts(text, cut, text.npos, options), "two buffers");

    const auto reference = fuzz::referenceEvents(text, kMaxDepth);
    constexpr std::string_view kAccepted = "QV_OK ";
    const bool accepted = whole.starts_with(kAccepted);
    if (accepted != reference.has_value()) {
        fuzz::show("result", whole);
    }
    fuzz::require(accepted == reference.has_value(), "accepted like the reference");
    if (accepted && *reference != fuzz::kEventsUnknown) {
        const std::size_t at = whole.find(' ', kAccepted.size()) + 1;
        fuzz::requireEqual(*reference, std::string_view(whole).substr(at),
                           "events of the reference");
    }
    return 0;
}
