// ISO 8601 is read and written digit by digit, since it is what nearly every column of dates holds;
// the library says which dates exist and which day is which number.
//
// Tested by tests/host/fmt_test.cpp
#include "host/fmt/calendar.h"

#include "host/nls/number.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace qvhost {
namespace {

constexpr int64_t kMicrosPerSecond = 1'000'000;
constexpr int64_t kMicrosPerMinute = 60 * kMicrosPerSecond;
constexpr int kMicroDigits = 6;

// The days that four digits of a year can name.
constexpr date::sys_days kFirstDay = date::year{0} / date::January / 1;
constexpr date::sys_days kLastDay = date::year{9999} / date::December / 31;

// "hh:mm", "hh:mm:ss.f" or without the colons.
bool readIsoTime(Scanner& scanner, DateParts& parts) noexcept {
    int hour = 0;
    int minute = 0;
    int second = 0;
    if (!scanner.takeNumber(2, 2, hour)) {
        return false;
    }
    const bool colons = scanner.take(':');
    if (!scanner.takeNumber(2, 2, minute) || !parts.set(DateParts::HOUR, hour) ||
        !parts.set(DateParts::MINUTE, minute)) {
        return false;
    }
    if (colons ? !scanner.take(':') : !isDigit(scanner.next())) {
        return true;
    }
    return scanner.takeNumber(2, 2, second) && parts.set(DateParts::SECOND, second) &&
           readFraction(scanner, parts);
}

// "yyyy-mm-dd" or "yyyymmdd".
bool readIsoDate(Scanner& scanner, DateParts& parts) noexcept {
    int year = 0;
    int month = 0;
    int day = 0;
    if (!scanner.takeNumber(4, 4, year)) {
        return false;
    }
    const bool dashes = scanner.take('-');
    return scanner.takeNumber(2, 2, month) && (!dashes || scanner.take('-')) &&
           scanner.takeNumber(2, 2, day) && parts.set(DateParts::YEAR, year) &&
           parts.set(DateParts::MONTH, month) && parts.set(DateParts::DAY, day);
}

void appendPadded(int64_t number, int digits, std::string& out) {
    std::array<char, 20> text;
    char* at = text.data() + digits;
    for (char* const begin = text.data(); at != begin; number /= 10) {
        *--at = static_cast<char>('0' + number % 10);
    }
    out.append(text.data(), static_cast<std::size_t>(digits));
}

}  // namespace

bool DateParts::set(Part part, int value) noexcept {
    const bool agrees = !has(part) || values_[part] == value;
    values_[part] = value;
    return agrees;
}

std::optional<date::sys_days> DateParts::day() const noexcept {
    std::optional<date::sys_days> result;
    const auto settle = [&result](date::sys_days day) {
        const bool agrees = !result || *result == day;
        result = day;
        return agrees;
    };
    const auto partOf = [this](Part part) { return static_cast<unsigned>(valueOr(part, 0)); };
    const date::year year(valueOr(YEAR, 0));
    if (has(MONTH)) {
        const auto ymd = year / date::month(partOf(MONTH)) / date::day(partOf(DAY));
        if (!ymd.ok() || !settle(ymd)) {
            return std::nullopt;
        }
    }
    if (has(DAY_OF_YEAR)) {
        const date::sys_days day =
            date::sys_days(year / date::January / 1) + date::days(values_[DAY_OF_YEAR] - 1);
        if (date::year_month_day(day).year() != year || !settle(day)) {
            return std::nullopt;
        }
    }
    if (has(WEEK)) {
        const auto yww = iso_week::year(valueOr(WEEK_YEAR, 0)) / iso_week::weeknum(partOf(WEEK)) /
                         iso_week::weekday(partOf(WEEKDAY));
        if (!yww.ok() || !settle(yww)) {
            return std::nullopt;
        }
    }
    if (result && has(WEEKDAY) && date::weekday(*result).iso_encoding() != partOf(WEEKDAY)) {
        return std::nullopt;
    }
    return result;
}

std::optional<int> DateParts::hour() const noexcept {
    if (!has(HOUR12)) {
        return valueOr(HOUR, 0);
    }
    const int hour = values_[HOUR12] % 12 + 12 * valueOr(HALF, 0);
    const bool exists = values_[HOUR12] >= 1 && values_[HOUR12] <= 12;
    return exists && valueOr(HOUR, hour) == hour ? std::optional(hour) : std::nullopt;
}

std::optional<int64_t> DateParts::timeOfDay() const noexcept {
    const std::optional<int> hours = hour();
    const int minutes = valueOr(MINUTE, 0);
    const int seconds = valueOr(SECOND, 0);
    if (!hours || *hours > 23 || minutes > 59 || seconds > 59) {
        return std::nullopt;
    }
    return (*hours * 60 + minutes) * kMicrosPerMinute + seconds * kMicrosPerSecond +
           valueOr(MICROS, 0);
}

std::optional<Microseconds> DateParts::moment() const noexcept {
    const std::optional<date::sys_days> date = day();
    const std::optional<int64_t> time = timeOfDay();
    if (!date || !time) {
        return std::nullopt;
    }
    return *date + std::chrono::microseconds(*time) - std::chrono::minutes(valueOr(ZONE, 0));
}

double secondsOf(int64_t micros) noexcept {
    // As a text: beyond 2^53 a division would round a second time.
    std::array<char, 32> text;
    char* end = std::to_chars(text.data(), text.data() + text.size(), micros).ptr;
    *end++ = 'e';
    *end++ = '-';
    *end++ = '6';
    return textToDouble({text.data(), static_cast<std::size_t>(end - text.data())}).value_or(0);
}

bool readFraction(Scanner& scanner, DateParts& parts) noexcept {
    if ((scanner.next() != '.' && scanner.next() != ',') || !isDigit(scanner.next(1))) {
        return true;
    }
    (void)(scanner.take('.') || scanner.take(','));  // one of the two is there
    const std::string_view digits = scanner.takeDigits();
    int micros = 0;
    for (std::size_t i = 0; i < kMicroDigits; ++i) {
        micros = micros * 10 + (i < digits.size() ? digits[i] - '0' : 0);
    }
    const bool up = digits.size() > kMicroDigits && digits[kMicroDigits] >= '5';
    return parts.set(DateParts::MICROS, micros + (up ? 1 : 0));
}

bool readZone(Scanner& scanner, DateParts& parts) noexcept {
    if (scanner.takeWord("z")) {
        return parts.set(DateParts::ZONE, 0);
    }
    const bool west = scanner.take('-');
    int hours = 0;
    int minutes = 0;
    if ((!west && !scanner.take('+')) || !scanner.takeNumber(2, 2, hours)) {
        return false;
    }
    const bool colon = scanner.take(':');
    if ((colon || isDigit(scanner.next())) && !scanner.takeNumber(2, 2, minutes)) {
        return false;
    }
    const int offset = hours * 60 + minutes;
    return hours < 24 && minutes < 60 && parts.set(DateParts::ZONE, west ? -offset : offset);
}

std::optional<double> readIsoDate(std::string_view text) noexcept {
    Scanner scanner(text);
    DateParts parts;
    if (!readIsoDate(scanner, parts) || !scanner.atEnd()) {
        return std::nullopt;
    }
    const auto day = parts.day();
    return day ? std::optional<double>(day->time_since_epoch().count()) : std::nullopt;
}

std::optional<double> readIsoDateTime(std::string_view text) noexcept {
    Scanner scanner(text);
    DateParts parts;
    if (!readIsoDate(scanner, parts) || !(scanner.takeWord("t") || scanner.takeBlanks()) ||
        !readIsoTime(scanner, parts)) {
        return std::nullopt;
    }
    scanner.takeBlanks();
    if (!scanner.atEnd() && (!readZone(scanner, parts) || !scanner.atEnd())) {
        return std::nullopt;
    }
    const auto moment = parts.moment();
    return moment ? std::optional(secondsOf(moment->time_since_epoch().count())) : std::nullopt;
}

std::optional<double> readIsoTime(std::string_view text) noexcept {
    Scanner scanner(text);
    DateParts parts;
    if (!readIsoTime(scanner, parts) || !scanner.atEnd()) {
        return std::nullopt;
    }
    const auto time = parts.timeOfDay();
    return time ? std::optional(secondsOf(*time)) : std::nullopt;
}

std::optional<date::sys_days> dayOfNumber(double days) noexcept {
    if (!(days >= kFirstDay.time_since_epoch().count() &&
          days <= kLastDay.time_since_epoch().count())) {
        return std::nullopt;
    }
    return date::sys_days(date::days(static_cast<int>(days)));
}

std::optional<Microseconds> momentOfNumber(double seconds) noexcept {
    constexpr double kFirst = std::chrono::seconds(kFirstDay.time_since_epoch()).count();
    constexpr double kPastLast =
        std::chrono::seconds(kLastDay.time_since_epoch() + date::days(1)).count();
    if (!(seconds >= kFirst && seconds < kPastLast)) {
        return std::nullopt;
    }
    const double whole = std::floor(seconds);
    const int64_t micros = std::llround((seconds - whole) * kMicrosPerSecond);
    return Microseconds(
        std::chrono::microseconds(static_cast<int64_t>(whole) * kMicrosPerSecond + micros));
}

void appendIsoDate(date::sys_days day, std::string& out) {
    const date::year_month_day ymd(day);
    appendPadded(static_cast<int>(ymd.year()), 4, out);
    out += '-';
    appendPadded(static_cast<unsigned>(ymd.month()), 2, out);
    out += '-';
    appendPadded(static_cast<unsigned>(ymd.day()), 2, out);
}

void appendIsoTime(std::chrono::microseconds timeOfDay, uint64_t decimals, std::string& out) {
    const date::hh_mm_ss<std::chrono::microseconds> time(timeOfDay);
    appendPadded(time.hours().count(), 2, out);
    out += ':';
    appendPadded(time.minutes().count(), 2, out);
    out += ':';
    appendPadded(time.seconds().count(), 2, out);
    if (decimals > 0) {
        out += '.';
        appendPadded(time.subseconds().count(), kMicroDigits, out);
        out.resize(out.size() - (kMicroDigits - decimals));
    }
}

void appendIsoDateTime(Microseconds moment, uint64_t decimals, std::string& out) {
    const auto day = date::floor<date::days>(moment);
    appendIsoDate(day, out);
    out += 'T';
    appendIsoTime(moment - day, decimals, out);
}

}  // namespace qvhost
