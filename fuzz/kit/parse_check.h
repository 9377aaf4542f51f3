// The property that the targets of the parser share: any cut into buffers and any routine for
// scanning give the same status, place and events, and what is accepted is what a reference
// accepts, with its events.
//
// Input: a byte for the cut, a byte for the routine, the text.
#pragma once

#include "kit/input.h"
#include "kit/reference_parser.h"
#include "kit/require.h"
#include "tests/json/event_log.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace jmap::fuzz {

inline constexpr uint64_t kMaxParseDepth = 64;

// `reference` gives the events of a text as referenceEvents does.
template <class Reference>
void checkParse(const uint8_t* data, std::size_t size, test::ParseOptions options,
                const Reference& reference) {
    constexpr qvhost::ScanKernel kKernels[] = {qvhost::ScanKernel::PORTABLE,
                                               qvhost::ScanKernel::SSE2, qvhost::ScanKernel::BEST};
    Input input(data, size);
    const std::size_t cut = input.byte();
    const auto kernel = kKernels[input.byte() % 3];
    const std::string_view text = input.rest();

    options.maxDepth = kMaxParseDepth;
    const std::string whole = test::parseIn(text, 0, options);
    options.kernel = kernel;
    requireEqual(whole, test::parseIn(text, cut % 67, options), "buffers of one size");
    requireEqual(whole, test::parseParts(text, cut, text.npos, options), "two buffers");

    const std::optional<std::string> expected = reference(text);
    constexpr std::string_view kAccepted = "QV_OK ";
    const bool accepted = whole.starts_with(kAccepted);
    if (accepted != expected.has_value()) {
        show("result", whole);
    }
    require(accepted == expected.has_value(), "accepted like the reference");
    if (accepted && *expected != kEventsUnknown) {
        const std::size_t at = whole.find(' ', kAccepted.size()) + 1;
        requireEqual(*expected, std::string_view(whole).substr(at), "events of the reference");
    }
}

}  // namespace jmap::fuzz
