// See iso_time.h.
#include "client/schema/iso_time.h"

#include <chrono>
#include <cmath>
#include <cstdio>

namespace qvej {
namespace {

constexpr int kMostFraction = 9;
constexpr int64_t kDaySeconds = 86400;

constexpr int64_t kPowers[] = {1,      10,      100,      1000,      10000,
                               100000, 1000000, 10000000, 100000000, 1000000000};

// Reads a text of known layout from its beginning.
class Reader {
   public:
    explicit Reader(std::string_view text) : text_(text) {}

    // `count` digits as a number; negative: they are not there.
    int digits(std::size_t count) {
        if (text_.size() < count) {
            return -1;
        }
        int number = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned digit = static_cast<unsigned char>(text_[i]) - unsigned{'0'};
            if (digit > 9) {
                return -1;
            }
            number = number * 10 + static_cast<int>(digit);
        }
        text_.remove_prefix(count);
        return number;
    }
    bool take(char c) {
        if (text_.empty() || text_.front() != c) {
            return false;
        }
        text_.remove_prefix(1);
        return true;
    }
    // How many digits come next.
    [[nodiscard]] std::size_t digitsAhead() const {
        const std::size_t end = text_.find_first_not_of("0123456789");
        return end == std::string_view::npos ? text_.size() : end;
    }
    [[nodiscard]] bool atEnd() const { return text_.empty(); }

   private:
    std::string_view text_;
};

std::optional<int32_t> readDate(Reader& in) {
    namespace chrono = std::chrono;
    const int year = in.digits(4);
    if (year < 1 || !in.take('-')) {
        return std::nullopt;
    }
    const int month = in.digits(2);
    if (month < 0 || !in.take('-')) {
        return std::nullopt;
    }
    const int day = in.digits(2);
    if (day < 0) {
        return std::nullopt;
    }
    const chrono::year_month_day date = {chrono::year(year),
                                         chrono::month(static_cast<unsigned>(month)),
                                         chrono::day(static_cast<unsigned>(day))};
    if (!date.ok()) {
        return std::nullopt;
    }
    return static_cast<int32_t>(chrono::sys_days(date).time_since_epoch().count());
}

// The time of the day and what follows it.
bool readTime(Reader& in, IsoTime& time) {
    const int hour = in.digits(2);
    if (hour < 0 || hour > 23 || !in.take(':')) {
        return false;
    }
    const int minute = in.digits(2);
    if (minute < 0 || minute > 59) {
        return false;
    }
    int second = 0;
    if (in.take(':')) {
        second = in.digits(2);
        if (second < 0 || second > 59) {
            return false;
        }
        if (in.take('.')) {
            const std::size_t count = in.digitsAhead();
            if (count == 0 || count > kMostFraction) {
                return false;
            }
            time.fraction = static_cast<uint8_t>(count);
            time.nanoseconds = in.digits(count) * kPowers[kMostFraction - count];
        }
    }
    time.nanoseconds += (hour * 3600 + minute * 60 + second) * kPowers[kMostFraction];
    time.kind = in.take('Z') ? IsoTime::UTC : IsoTime::NAIVE;
    return in.atEnd();
}

}  // namespace

std::optional<IsoTime> parseIsoTime(std::string_view text) {
    constexpr std::size_t kDateSize = 10;
    if (text.size() < kDateSize || text[4] != '-') {
        return std::nullopt;  // most texts
    }
    Reader in(text);
    const std::optional<int32_t> days = readDate(in);
    if (!days) {
        return std::nullopt;
    }
    IsoTime time = {IsoTime::DATE, 0, *days, 0};
    if (in.atEnd()) {
        return time;
    }
    return in.take('T') && readTime(in, time) ? std::optional(time) : std::nullopt;
}

std::optional<int64_t> unitsSince1970(const IsoTime& time, int digits) {
    const int64_t ofDay = time.nanoseconds / kPowers[kMostFraction - digits];
    int64_t units = 0;
    // A day before 1970 is less than all of its units.
    const bool before = time.days < 0;
    const int64_t days = int64_t{time.days} + (before ? 1 : 0);
    const int64_t aDay = kDaySeconds * kPowers[digits];
    if (__builtin_mul_overflow(days, aDay, &units) ||
        __builtin_add_overflow(units, before ? ofDay - aDay : ofDay, &units)) {
        return std::nullopt;
    }
    return units;
}

std::optional<int64_t> microsecondsOf(double seconds) {
    constexpr double kFirst = -62167219200;
    constexpr double kEnd = 253402300800;
    if (!(seconds >= kFirst && seconds < kEnd)) {
        return std::nullopt;
    }
    // In the largest unit that has it: the number of these is exact, and so is what follows from
    // it.
    for (const int64_t units : {int64_t{1}, kPowers[3], kPowers[6]}) {
        const double count = std::round(seconds * static_cast<double>(units));
        if (count / static_cast<double>(units) == seconds) {
            return static_cast<int64_t>(count) * (kPowers[6] / units);
        }
    }
    return std::nullopt;
}

std::string isoText(int64_t unitsSince1970, int digits) {
    namespace chrono = std::chrono;
    const int64_t aDay = kDaySeconds * kPowers[digits];
    int64_t days = unitsSince1970 / aDay;
    int64_t rest = unitsSince1970 % aDay;
    if (rest < 0) {
        --days;
        rest += aDay;
    }
    const chrono::year_month_day date{chrono::sys_days(chrono::days(days))};
    const auto seconds = static_cast<int>(rest / kPowers[digits]);
    char text[48];
    int size = std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d", int(date.year()),
                             unsigned(date.month()), unsigned(date.day()), seconds / 3600,
                             seconds / 60 % 60, seconds % 60);
    if (digits != 0) {
        size += std::snprintf(text + size, sizeof text - static_cast<std::size_t>(size), ".%0*lld",
                              digits, static_cast<long long>(rest % kPowers[digits]));
    }
    return std::string(text, static_cast<std::size_t>(size)) + "Z";
}

}  // namespace qvej
