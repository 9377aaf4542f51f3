// Dates and times by a pattern of strftime letters, such as "%d/%m/%Y %H:%M".
//
// A pattern without a letter of the time of day stands for days, with one for seconds: since
// 1970-01-01T00:00:00Z when it has letters of the date too, else since midnight.
//
//     letter        reads                                 writes
//     Y  y          four / two digits (69 is 1969)        the same
//     m  d  e       one or two digits                     two, e with a blank for a zero
//     j             day of the year, up to three digits   three digits
//     b  B          an English month, short or whole      short / whole
//     a  A          an English weekday, likewise          short / whole
//     u  w          weekday, 1 is Monday / 0 is Sunday    the same
//     G  V          year and number of an ISO week        the same
//     C  g  U  W    -                                     century; ISO year of the week, two
//     digits;
//                                                         weeks counted from Sunday / Monday
//     H  I  M  S    one or two digits, S with a fraction  two digits
//     p             am, pm                                AM, PM
//     z  Z          as in ISO 8601 / UTC, GMT, Z          +0000 / UTC
//     %             %                                     %
//     F D x T X R r c h n t                               stand for others: %F is %Y-%m-%d
//
// Blanks of a pattern read one or more blanks; all else reads itself.
//
// Tested by tests/host/fmt_test.cpp
#pragma once

#include "qvstatus.h"

#include "host/fmt/calendar.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qvhost {

class Pattern {
   public:
    enum class Use { READ, WRITE };

    // None when the pattern has an unknown letter, none at all, or one that cannot be read, and,
    // for reading, when it does not say which day or time it is.
    [[nodiscard]] static std::optional<Pattern> make(std::string_view pattern, Use use);

    // A whole text, without blanks around, as its number.
    [[nodiscard]] std::optional<double> read(std::string_view text) const noexcept;

    // Appends a number as the pattern shows it.  QV_FMT_VALUE for days that are not whole,
    // QV_FMT_RANGE outside of the calendar; then nothing is appended.
    [[nodiscard]] QVStatus write(double value, std::string& out);

   private:
    class Stream;
    struct StreamDeleter {
        void operator()(Stream* stream) const noexcept;
    };
    explicit Pattern(std::string expanded) : text_(std::move(expanded)) {}
    [[nodiscard]] bool readInto(Scanner& scanner, DateParts& parts) const noexcept;

    std::string text_;  // no letter in it stands for others
    bool hasDate_ = false;
    bool hasTime_ = false;
    std::unique_ptr<Stream, StreamDeleter> stream_;  // made by the first `write`
};

}  // namespace qvhost
