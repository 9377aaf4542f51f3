// Dates and times as ISO 8601 writes them in full:
//
//     2024-02-29
//     2024-02-29T13:05  2024-02-29T13:05:00  2024-02-29T13:05:00.25Z
//
// A text is one of these and nothing else: no other separators, no offset but Z, no leap second, no
// hour 24, years 0001 to 9999, at most nine digits after the second.
//
// Tested by tests/client/iso_time_test.cpp
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qvej {

struct IsoTime {
    enum Kind : uint8_t { DATE, NAIVE, UTC };
    Kind kind;
    uint8_t fraction;     // digits after the second
    int32_t days;         // since 1970-01-01
    int64_t nanoseconds;  // of the day
};

// Nothing: the text is no date or time.
[[nodiscard]] std::optional<IsoTime> parseIsoTime(std::string_view text);

// The units from 1970-01-01T00:00 to a time, of which a second has 10 to the power of `digits`;
// nothing when 64 bits have no room for the number.
[[nodiscard]] std::optional<int64_t> unitsSince1970(const IsoTime& time, int digits);

// Of seconds since 1970, as microseconds; nothing when they are not exact, or outside the years 0
// to 9999.
[[nodiscard]] std::optional<int64_t> microsecondsOf(double seconds);

// The instant as ISO 8601 has it: "2024-02-29T13:05:00.250Z" of 3 digits.
[[nodiscard]] std::string isoText(int64_t unitsSince1970, int digits);

}  // namespace qvej
