// Dates and times: parts of them put together, the forms of ISO 8601, and the numbers they become.
//
//     date           days since 1970-01-01
//     date and time  seconds since 1970-01-01T00:00:00Z, with a fraction
//     time           seconds since midnight, with a fraction
//
// Fractions are exact to the microsecond; further digits are rounded.  A library converts between
// dates and day numbers; no code here counts days.
//
// Tested by tests/host/fmt_test.cpp
#pragma once

#include "qvtypes.h"

#include "host/fmt/calendar_library.h"
#include "host/fmt/scanner.h"

#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace qvhost {

using Microseconds = date::sys_time<std::chrono::microseconds>;  // a point in time

// What a text says about a date and a time, part by part.
class DateParts {
   public:
    enum Part : uint8_t {
        YEAR,
        MONTH,
        DAY,
        DAY_OF_YEAR,
        WEEK_YEAR,  // the year that an ISO week belongs to
        WEEK,
        WEEKDAY,  // 1 (Monday) to 7
        HOUR,
        HOUR12,
        HALF,  // of the day: 0 am, 1 pm
        MINUTE,
        SECOND,
        MICROS,  // up to a million, which is what rounding may give
        ZONE,    // minutes east of UTC
        PARTS
    };

    DateParts() noexcept { values_.fill(kUnset); }

    // False when the part was set to something else before.
    [[nodiscard]] bool set(Part part, int value) noexcept;

    // None when the parts are no date: the 30th of February, a weekday that it did not fall on.
    [[nodiscard]] std::optional<date::sys_days> day() const noexcept;
    // Microseconds since midnight.  Parts that are not set are 0.  None when there is no such time.
    [[nodiscard]] std::optional<int64_t> timeOfDay() const noexcept;
    // In UTC; without a zone the parts are taken for UTC.
    [[nodiscard]] std::optional<Microseconds> moment() const noexcept;

   private:
    static constexpr int kUnset = -1'000'000;
    [[nodiscard]] bool has(Part part) const noexcept { return values_[part] != kUnset; }
    [[nodiscard]] int valueOr(Part part, int other) const noexcept {
        return has(part) ? values_[part] : other;
    }
    [[nodiscard]] std::optional<int> hour() const noexcept;

    std::array<int, PARTS> values_;
};

// The number nearest to so many microseconds, in seconds.
[[nodiscard]] double secondsOf(int64_t micros) noexcept;

// ".25" or ",25" as microseconds, if there is one.
[[nodiscard]] bool readFraction(Scanner& scanner, DateParts& parts) noexcept;
// "Z", "+hh", "+hhmm" or "+hh:mm".
[[nodiscard]] bool readZone(Scanner& scanner, DateParts& parts) noexcept;

// A whole text, without blanks around, as its number.
[[nodiscard]] std::optional<double> readIsoDate(std::string_view text) noexcept;
[[nodiscard]] std::optional<double> readIsoDateTime(std::string_view text) noexcept;
[[nodiscard]] std::optional<double> readIsoTime(std::string_view text) noexcept;

// The way back.  None outside of the years 0 to 9999, which are those that ISO 8601 writes with
// four digits.
[[nodiscard]] std::optional<date::sys_days> dayOfNumber(double days) noexcept;  // of a whole number
[[nodiscard]] std::optional<Microseconds> momentOfNumber(double seconds) noexcept;

// Append the ISO form; `decimals` (up to 6) digits of a second's fraction, the others cut.
void appendIsoDate(date::sys_days day, std::string& out);
void appendIsoTime(std::chrono::microseconds timeOfDay, uint64_t decimals, std::string& out);
void appendIsoDateTime(Microseconds moment, uint64_t decimals, std::string& out);

}  // namespace qvhost
