// The formatter: a conversion is parsed into a Conversion, its argument becomes a text, and the
// text is padded into the sink.
//
// Tested by tests/host/wide_format_test.cpp
#include "host/wide_format.h"

#include "host/host_object.h"
#include "host/nls/utf8_char.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <utility>

namespace qvhost {

namespace {

constexpr int kMaxWidth = 65535;
constexpr int kMaxDigits = 1100;  // more than any double has; bounds %g and integer precisions

enum class Argument { INT, LONG, LONG_LONG, DOUBLE, CHARS, BYTES, PERCENT };

struct Conversion {
    bool leftAligned = false;
    int width = 0;
    std::optional<int> precision;  // negative when "*" gave it so
    Argument argument = Argument::PERCENT;
};

// A va_list that can be passed on.
class Arguments {
   public:
    explicit Arguments(va_list args) { va_copy(list_, args); }
    ~Arguments() { va_end(list_); }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    template <class T>
    T next() {
        return va_arg(list_, T);
    }

   private:
    va_list list_;
};

// Reads a format from left to right.
class FormatReader {
   public:
    explicit FormatReader(std::u32string_view format) : rest_(format) {}

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }
    [[nodiscard]] std::u32string_view rest() const { return rest_; }

    // The text before the next "%".
    std::u32string_view plain() {
        const std::u32string_view text = rest_.substr(0, rest_.find(U'%'));
        rest_.remove_prefix(text.size());
        return text;
    }

    // The conversion that begins here.  None when it is not a known one: then nothing is read.
    std::optional<Conversion> conversion(Arguments& args);

   private:
    bool take(std::u32string_view word) {
        if (!rest_.starts_with(word)) {
            return false;
        }
        rest_.remove_prefix(word.size());
        return true;
    }
    int number() {
        int value = 0;
        while (!rest_.empty() && rest_.front() >= U'0' && rest_.front() <= U'9') {
            value = std::min(value * 10 + static_cast<int>(rest_.front() - U'0'), kMaxWidth);
            rest_.remove_prefix(1);
        }
        return value;
    }
    bool takeArgument(Argument& argument);

    std::u32string_view rest_;
};

bool FormatReader::takeArgument(Argument& argument) {
    struct Word {
        std::u32string_view text;
        Argument argument;
    };
    static constexpr Word kWords[] = {
        {U"d", Argument::INT},    {U"ld", Argument::LONG}, {U"lld", Argument::LONG_LONG},
        {U"g", Argument::DOUBLE}, {U"s", Argument::CHARS}, {U"hs", Argument::BYTES},
    };
    for (const Word& word : kWords) {
        if (take(word.text)) {
            argument = word.argument;
            return true;
        }
    }
    return false;
}

std::optional<Conversion> FormatReader::conversion(Arguments& args) {
    const std::u32string_view start = rest_;
    Conversion result;
    take(U"%");
    if (take(U"%")) {
        return result;
    }
    while (take(U"-")) {
        result.leftAligned = true;
    }
    if (take(U"*")) {
        const int width = args.next<int>();
        result.leftAligned |= width < 0;
        result.width = std::min(std::abs(std::max(width, -kMaxWidth)), kMaxWidth);
    } else {
        result.width = number();
    }
    if (take(U".")) {
        result.precision = take(U"*") ? args.next<int>() : number();
    }
    if (!takeArgument(result.argument)) {
        rest_ = start;
        return std::nullopt;
    }
    return result;
}

// Puts a text of `length` bytes or characters between its blanks.
template <class Put>
void padded(FormatSink& sink, const Conversion& conversion, std::size_t length, Put put) {
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::string blanks(width > length ? width - length : 0, ' ');
    if (!conversion.leftAligned) {
        sink.ascii(blanks);
    }
    put();
    if (conversion.leftAligned) {
        sink.ascii(blanks);
    }
}

// A text argument as a view: null is empty, without a precision it ends at its terminator.
template <class Char>
std::basic_string_view<Char> textOf(const Char* text, std::optional<int> precision) {
    if (text == nullptr) {
        return {};
    }
    // A precision is the text's length: counted texts may hold any character.
    return precision ? std::basic_string_view<Char>(
                           text, static_cast<std::size_t>(std::max(*precision, 0)))
                     : std::basic_string_view<Char>(text);
}

void putInteger(FormatSink& sink, const Conversion& conversion, long long value) {
    std::array<char, 24> buffer;
    char* const end = std::to_chars(buffer.begin(), buffer.end(), value).ptr;
    std::string_view digits(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    std::string text;
    if (value < 0) {
        text = "-";
        digits.remove_prefix(1);
    }
    const int precision = conversion.precision.value_or(-1);
    if (precision == 0 && value == 0) {
        digits = {};
    }
    const auto atLeast = static_cast<std::size_t>(std::clamp(precision, 0, kMaxDigits));
    text.append(atLeast > digits.size() ? atLeast - digits.size() : 0, '0');
    text += digits;
    padded(sink, conversion, text.size(), [&] { sink.ascii(text); });
}

void putDouble(FormatSink& sink, const Conversion& conversion, double value) {
    constexpr int kDefaultPrecision = 6;
    const int given = conversion.precision.value_or(-1);
    const int precision = given < 0 ? kDefaultPrecision : std::min(given, kMaxDigits);
    std::array<char, kMaxDigits + 16> buffer;
    char* const end =
        std::to_chars(buffer.begin(), buffer.end(), value, std::chars_format::general, precision)
            .ptr;
    const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    padded(sink, conversion, text.size(), [&] { sink.ascii(text); });
}

// Fetches the argument of a conversion and puts it.
void putArgument(FormatSink& sink, const Conversion& conversion, Arguments& args) {
    switch (conversion.argument) {
        case Argument::INT:
            putInteger(sink, conversion, args.next<int>());
            break;
        case Argument::LONG:
            putInteger(sink, conversion, args.next<long>());
            break;
        case Argument::LONG_LONG:
            putInteger(sink, conversion, args.next<long long>());
            break;
        case Argument::DOUBLE:
            putDouble(sink, conversion, args.next<double>());
            break;
        case Argument::CHARS: {
            const auto text = textOf(args.next<const QVChar*>(), conversion.precision);
            padded(sink, conversion, text.size(), [&] { sink.chars(text); });
            break;
        }
        case Argument::BYTES: {
            const auto text = textOf(args.next<const char*>(), conversion.precision);
            padded(sink, conversion, text.size(), [&] { sink.bytes(text); });
            break;
        }
        case Argument::PERCENT:
            sink.ascii("%");
            break;
    }
}

}  // namespace

void Utf8Sink::chars(std::u32string_view part) {
    text += utf8Text(part.data(), static_cast<QVStrSize>(part.size()));
}

void Utf32Sink::bytes(std::string_view part) {
    const char* const end = part.data() + part.size();
    for (const char* at = part.data(); at < end;) {
        const Utf8Char next = utf8Decode(at, end);
        text += next.valid ? next.character : static_cast<unsigned char>(*at);
        at += next.valid ? next.length : 1;
    }
}

void formatWide(FormatSink& sink, const QVChar* fmt, QVStrSize fmtLen, va_list args) {
    if (fmt == nullptr || fmtLen <= 0) {
        return;
    }
    Arguments arguments(args);
    FormatReader reader({fmt, static_cast<std::size_t>(fmtLen)});
    while (!reader.atEnd()) {
        sink.chars(reader.plain());
        if (reader.atEnd()) {
            return;
        }
        const std::optional<Conversion> conversion = reader.conversion(arguments);
        if (!conversion) {
            sink.chars(reader.rest());
            return;
        }
        putArgument(sink, *conversion, arguments);
    }
}

std::string formatUtf8(const QVChar* fmt, QVStrSize fmtLen, va_list args) {
    Utf8Sink sink;
    formatWide(sink, fmt, fmtLen, args);
    return std::move(sink.text);
}

std::u32string formatUtf32(const QVChar* fmt, QVStrSize fmtLen, va_list args) {
    Utf32Sink sink;
    formatWide(sink, fmt, fmtLen, args);
    return std::move(sink.text);
}

}  // namespace qvhost
