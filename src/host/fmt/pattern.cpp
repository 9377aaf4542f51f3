// Reading is a walk along the pattern and the text; the parts found are put together by DateParts.
// The library's own reader is not used: it takes day 366 of 2021 for the 1st of January 2021, "24"
// for the year 24, and "12:00:." for a time, none of which its caller can see.  Writing is the
// library's.
//
// Tested by tests/host/fmt_test.cpp
#include "host/fmt/pattern.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <locale>
#include <ostream>
#include <streambuf>
#include <utility>

namespace qvhost {
namespace {

using Parts = DateParts;

struct Composite {
    char letter;
    std::string_view meaning;
};
constexpr Composite kComposites[] = {
    {'F', "%Y-%m-%d"},    {'D', "%m/%d/%y"}, {'x', "%m/%d/%y"},
    {'T', "%H:%M:%S"},    {'X', "%H:%M:%S"}, {'R', "%H:%M"},
    {'r', "%I:%M:%S %p"}, {'h', "%b"},       {'c', "%a %b %e %H:%M:%S %Y"},
    {'n', " "},           {'t', " "},
};

enum class Role : uint8_t { DATE, TIME, ZONE, SIGN };

struct Letter {
    char letter;
    Role role;
    Parts::Part part;  // PARTS: it is for writing only, or no part at all
    int least;         // digits to read; 0: not a number
    int most;
};
constexpr Letter kLetters[] = {
    {'Y', Role::DATE, Parts::YEAR, 4, 4},      {'y', Role::DATE, Parts::YEAR, 2, 2},
    {'m', Role::DATE, Parts::MONTH, 1, 2},     {'d', Role::DATE, Parts::DAY, 1, 2},
    {'e', Role::DATE, Parts::DAY, 1, 2},       {'j', Role::DATE, Parts::DAY_OF_YEAR, 1, 3},
    {'b', Role::DATE, Parts::MONTH, 0, 0},     {'B', Role::DATE, Parts::MONTH, 0, 0},
    {'a', Role::DATE, Parts::WEEKDAY, 0, 0},   {'A', Role::DATE, Parts::WEEKDAY, 0, 0},
    {'u', Role::DATE, Parts::WEEKDAY, 1, 1},   {'w', Role::DATE, Parts::WEEKDAY, 1, 1},
    {'G', Role::DATE, Parts::WEEK_YEAR, 4, 4}, {'V', Role::DATE, Parts::WEEK, 1, 2},
    {'C', Role::DATE, Parts::PARTS, 0, 0},     {'g', Role::DATE, Parts::PARTS, 0, 0},
    {'U', Role::DATE, Parts::PARTS, 0, 0},     {'W', Role::DATE, Parts::PARTS, 0, 0},
    {'H', Role::TIME, Parts::HOUR, 1, 2},      {'I', Role::TIME, Parts::HOUR12, 1, 2},
    {'p', Role::TIME, Parts::HALF, 0, 0},      {'M', Role::TIME, Parts::MINUTE, 1, 2},
    {'S', Role::TIME, Parts::SECOND, 1, 2},    {'z', Role::ZONE, Parts::ZONE, 0, 0},
    {'Z', Role::ZONE, Parts::ZONE, 0, 0},      {'%', Role::SIGN, Parts::PARTS, 0, 0},
};

constexpr std::array<std::string_view, 12> kMonths = {
    "january", "february", "march",     "april",   "may",      "june",
    "july",    "august",   "september", "october", "november", "december"};
constexpr std::array<std::string_view, 7> kWeekdays = {
    "monday", "tuesday", "wednesday", "thursday", "friday", "saturday", "sunday"};

const Letter* findLetter(char letter) noexcept {
    const auto* found = std::ranges::find(kLetters, letter, &Letter::letter);
    return found == std::end(kLetters) ? nullptr : found;
}

// The pattern with its composites replaced, or none when a "%" ends it.
std::optional<std::string> expand(std::string_view pattern) {
    std::string result;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '%') {
            result += pattern[i];
            continue;
        }
        if (++i == pattern.size()) {
            return std::nullopt;
        }
        const auto* composite = std::ranges::find(kComposites, pattern[i], &Composite::letter);
        if (composite != std::end(kComposites)) {
            result += composite->meaning;
        } else {
            result.append({'%', pattern[i]});
        }
    }
    return result;
}

// Which letters a pattern has, and whether they make a date and a time.
class LetterSet {
   public:
    // False for a letter that is unknown.
    bool add(char c) noexcept {
        const Letter* letter = findLetter(c);
        if (letter == nullptr) {
            return false;
        }
        roles_ |= 1u << static_cast<unsigned>(letter->role);
        parts_ |= 1u << letter->part;
        writeOnly_ = writeOnly_ || (letter->part == Parts::PARTS && letter->role != Role::SIGN);
        return true;
    }

    [[nodiscard]] bool has(Role role) const noexcept {
        return (roles_ >> static_cast<unsigned>(role) & 1u) != 0;
    }

    // Do they say which day and which time it is?
    [[nodiscard]] bool readable() const noexcept {
        const bool day =
            has(Parts::MONTH) == has(Parts::DAY) && (has(Parts::MONTH) || has(Parts::DAY_OF_YEAR));
        const bool week = has(Parts::WEEK_YEAR) && has(Parts::WEEK) && has(Parts::WEEKDAY);
        const bool weekParts = has(Parts::WEEK_YEAR) || has(Parts::WEEK);
        const bool date = (has(Parts::YEAR) && day && (week || !weekParts)) ||
                          (week && !has(Parts::YEAR) && !has(Parts::MONTH) && !has(Parts::DAY) &&
                           !has(Parts::DAY_OF_YEAR));
        const bool time = (has(Parts::HOUR) || has(Parts::HOUR12)) &&
                          has(Parts::HOUR12) == has(Parts::HALF) &&
                          (has(Parts::MINUTE) || !has(Parts::SECOND));
        return !writeOnly_ && (date || !has(Role::DATE)) && (time || !has(Role::TIME)) &&
               (!has(Role::ZONE) || (date && time));
    }

   private:
    [[nodiscard]] bool has(Parts::Part part) const noexcept { return (parts_ >> part & 1u) != 0; }

    uint32_t roles_ = 0;
    uint32_t parts_ = 0;
    bool writeOnly_ = false;
};

// The number, from 1, of the name that follows, whole or its first three letters; 0 for none.
template <std::size_t N>
int takeName(Scanner& scanner, const std::array<std::string_view, N>& names) noexcept {
    for (std::size_t i = 0; i < N; ++i) {
        if (scanner.takeWord(names[i]) || scanner.takeWord(names[i].substr(0, 3))) {
            return static_cast<int>(i) + 1;
        }
    }
    return 0;
}

// What a number of a letter means for its part.
int meaning(char letter, int number) noexcept {
    if (letter == 'y') {
        return number + (number < 69 ? 2000 : 1900);
    }
    return letter == 'w' && number == 0 ? 7 : number;
}

// `after` is the character of the pattern after the letter.
bool readLetter(const Letter& letter, char after, Scanner& scanner, DateParts& parts) noexcept {
    int number = 0;
    switch (letter.letter) {
        case '%':
            return scanner.take('%');
        case 'b':
        case 'B':
            number = takeName(scanner, kMonths);
            return number != 0 && parts.set(Parts::MONTH, number);
        case 'a':
        case 'A':
            number = takeName(scanner, kWeekdays);
            return number != 0 && parts.set(Parts::WEEKDAY, number);
        case 'p':
            number = scanner.takeWord("am") ? 0 : scanner.takeWord("pm") ? 1 : -1;
            return number >= 0 && parts.set(Parts::HALF, number);
        case 'z':
            return readZone(scanner, parts);
        case 'Z':
            return (scanner.takeWord("utc") || scanner.takeWord("gmt") || scanner.takeWord("z")) &&
                   parts.set(Parts::ZONE, 0);
        case 'e':
            scanner.takeBlanks();
            break;
        default:
            break;
    }
    return scanner.takeNumber(letter.least, letter.most, number) &&
           parts.set(letter.part, meaning(letter.letter, number)) &&
           (letter.letter != 'S' || after == scanner.next() || readFraction(scanner, parts));
}

}  // namespace

class Pattern::Stream {
   public:
    Stream() { stream_.imbue(std::locale::classic()); }

    // A stream that appends to `out`.
    std::ostream& appendTo(std::string& out) {
        buffer_.out = &out;
        stream_.clear();
        return stream_;
    }

   private:
    struct Buffer : std::streambuf {
        int_type overflow(int_type c) override {
            out->push_back(traits_type::to_char_type(c));
            return c;
        }
        std::streamsize xsputn(const char* text, std::streamsize textLen) override {
            out->append(text, static_cast<std::size_t>(textLen));
            return textLen;
        }
        std::string* out = nullptr;
    };

    Buffer buffer_;
    std::ostream stream_{&buffer_};
};

void Pattern::StreamDeleter::operator()(Stream* stream) const noexcept {
    delete stream;
}

std::optional<Pattern> Pattern::make(std::string_view pattern, Use use) {
    std::optional<std::string> expanded = expand(pattern);
    if (!expanded || expanded->find('\0') != std::string::npos) {
        return std::nullopt;
    }
    if (use == Use::READ) {  // the blanks around a value are no part of it
        constexpr std::string_view kBlanks = " \t\n\v\f\r";
        expanded->erase(0, expanded->find_first_not_of(kBlanks));
        expanded->erase(expanded->find_last_not_of(kBlanks) + 1);
    }
    LetterSet letters;
    for (std::size_t i = 0; i < expanded->size(); ++i) {
        if ((*expanded)[i] == '%' && !letters.add((*expanded)[++i])) {
            return std::nullopt;
        }
    }
    Pattern result(*std::move(expanded));
    result.hasDate_ = letters.has(Role::DATE);
    result.hasTime_ = letters.has(Role::TIME);
    const bool usable =
        (result.hasDate_ || result.hasTime_) && (use == Use::WRITE || letters.readable());
    return usable ? std::optional(std::move(result)) : std::nullopt;
}

bool Pattern::readInto(Scanner& scanner, DateParts& parts) const noexcept {
    for (std::size_t i = 0; i < text_.size(); ++i) {
        if (text_[i] == '%') {
            ++i;
            const char after = i + 1 < text_.size() ? text_[i + 1] : '\0';
            if (!readLetter(*findLetter(text_[i]), after, scanner, parts)) {
                return false;
            }
        } else if (isBlank(text_[i])) {
            const bool wanted = i == 0 || !isBlank(text_[i - 1]);
            if (!scanner.takeBlanks() && wanted) {
                return false;
            }
        } else if (!scanner.take(text_[i])) {
            return false;
        }
    }
    return scanner.atEnd();
}

std::optional<double> Pattern::read(std::string_view text) const noexcept {
    Scanner scanner(text);
    DateParts parts;
    if (!readInto(scanner, parts)) {
        return std::nullopt;
    }
    if (!hasTime_) {
        const auto day = parts.day();
        return day ? std::optional<double>(day->time_since_epoch().count()) : std::nullopt;
    }
    if (!hasDate_) {
        const auto time = parts.timeOfDay();
        return time ? std::optional(secondsOf(*time)) : std::nullopt;
    }
    const auto moment = parts.moment();
    return moment ? std::optional(secondsOf(moment->time_since_epoch().count())) : std::nullopt;
}

QVStatus Pattern::write(double value, std::string& out) {
    if (!hasTime_ && std::isfinite(value) && std::trunc(value) != value) {
        return QV_FMT_VALUE;
    }
    const auto moment =
        hasTime_ ? momentOfNumber(value) : std::optional<Microseconds>(dayOfNumber(value));
    if (!moment) {
        return QV_FMT_RANGE;
    }
    if (stream_ == nullptr) {
        stream_.reset(new Stream);
    }
    std::ostream& stream = stream_->appendTo(out);
    date::to_stream(stream, text_.c_str(), date::floor<std::chrono::seconds>(*moment));
    return stream.fail() ? QV_INTERNAL : QV_OK;
}

}  // namespace qvhost
