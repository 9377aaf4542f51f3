// What Boost.JSON makes of a text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace jmap::fuzz {

// Stands for events that are not known.
inline constexpr const char* kEventsUnknown = "?";

// The events in the notation of tests/json/event_log.h, or none when the text is rejected.
std::optional<std::string> referenceEvents(std::string_view text, uint64_t maxDepth);

}  // namespace jmap::fuzz
