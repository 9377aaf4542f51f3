// Strings with escapes, and strings that cross the end of a buffer.
//
// Tested by tests/json/parser_test.cpp
#include "host/json/parser_string.h"

#include "host/nls/code_page.h"
#include "host/nls/utf8_char.h"

#include <optional>

namespace qvhost {

namespace {

constexpr int kEscapeLen = 6;  // bytes of "\u1234"

constexpr bool isHigh(uint32_t unit) {
    return (unit & 0xFC00) == 0xD800;
}
constexpr bool isLow(uint32_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

// What an escape of one letter stands for, 0 when there is none such.
constexpr uint8_t shortEscape(uint8_t letter) {
    switch (letter) {
        case '"':
        case '\\':
        case '/':
            return letter;
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return 0;
    }
}

// The value of a hexadecimal digit, or -1.
constexpr int hexValue(uint8_t digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const uint8_t letter = digit | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

}  // namespace

void StringCollector::begin(const uint8_t* from, const uint8_t* to) {
    place_ = Place::PLAIN;
    highUnit_ = 0;
    text_.clear();
    text_.append(from, static_cast<std::size_t>(to - from));
}

QVStatus StringCollector::collect(const uint8_t*& p, const uint8_t* end) {
    while (p != end) {
        if (place_ == Place::PLAIN) {
            const uint8_t* run = p;
            p = plainEnd(p, end);
            text_.append(run, static_cast<std::size_t>(p - run));
            if (p == end) {
                break;
            }
            if (*p == '"') {
                ++p;
                return QV_OK;
            }
        }
        if (const QVStatus status = byte(*p); status != QV_OK) {
            return status;
        }
        ++p;
    }
    return QV_EOF;
}

// The end of the text from `p` on that needs no second look, whole UTF-8 sequences included.
const uint8_t* StringCollector::plainEnd(const uint8_t* p, const uint8_t* end) const {
    for (;;) {
        p = scan_(p, end);
        const uint8_t* after = page_ == nullptr ? utf8Run(p, end) : p;
        if (after == p) {
            return p;
        }
        p = after;
    }
}

// One byte that is not plain text, or continues what such a byte began.
QVStatus StringCollector::byte(uint8_t b) {
    switch (place_) {
        case Place::PLAIN:
            if (b == '\\') {
                place_ = Place::ESCAPE;
                return QV_OK;
            }
            if (b < 0x20) {
                return wrong(QV_JSON_CONTROL, 0);
            }
            if (!sequence_.begin(b)) {
                return wrong(QV_JSON_UTF8, 0);
            }
            text_.append(b);
            place_ = Place::SEQUENCE;
            return QV_OK;
        case Place::SEQUENCE:
            if (!sequence_.next(b)) {
                return wrong(QV_JSON_UTF8, sequence_.taken());
            }
            text_.append(b);
            place_ = sequence_.whole() ? Place::PLAIN : Place::SEQUENCE;
            return QV_OK;
        case Place::ESCAPE:
            return escape(b);
        case Place::HEX:
            return hexDigit(b);
        case Place::LOW_BACKSLASH:
            if (b != '\\') {
                return wrong(QV_JSON_SURROGATE, kEscapeLen);
            }
            place_ = Place::ESCAPE;
            return QV_OK;
    }
    return QV_INTERNAL;  // not reached
}

// The letter after a backslash.
QVStatus StringCollector::escape(uint8_t b) {
    if (b == 'u') {
        place_ = Place::HEX;
        hexDigits_ = 0;
        unit_ = 0;
        return QV_OK;
    }
    if (highUnit_ != 0) {
        return wrong(QV_JSON_SURROGATE, kEscapeLen + 1);
    }
    const uint8_t decoded = shortEscape(b);
    if (decoded == 0) {
        return wrong(QV_JSON_ESCAPE, 0);
    }
    text_.append(decoded);
    place_ = Place::PLAIN;
    return QV_OK;
}

QVStatus StringCollector::hexDigit(uint8_t b) {
    const int value = hexValue(b);
    if (value < 0) {
        return wrong(QV_JSON_HEX, 0);
    }
    unit_ = unit_ << 4 | static_cast<uint32_t>(value);
    return ++hexDigits_ < 4 ? QV_OK : codeUnit();
}

// The four digits of a \u are there; the last of them is the present byte.
QVStatus StringCollector::codeUnit() {
    const int back = (highUnit_ != 0 ? 2 * kEscapeLen : kEscapeLen) - 1;
    if (isLow(unit_) != (highUnit_ != 0)) {
        return wrong(QV_JSON_SURROGATE, back);
    }
    if (isHigh(unit_)) {
        highUnit_ = unit_;
        place_ = Place::LOW_BACKSLASH;
        return QV_OK;
    }
    const char32_t c =
        highUnit_ != 0 ? 0x10000 + ((highUnit_ & 0x3FF) << 10 | (unit_ & 0x3FF)) : unit_;
    highUnit_ = 0;
    place_ = Place::PLAIN;
    return appendCharacter(c) ? QV_OK : wrong(QV_JSON_UNMAPPABLE, back);
}

// Appends an escaped character in the encoding of the document.  False: it does not exist there.
bool StringCollector::appendCharacter(char32_t c) {
    if (page_ != nullptr) {
        const std::optional<uint8_t> byte = page_->byte(c);
        if (byte) {
            text_.append(*byte);
        }
        return byte.has_value();
    }
    char bytes[4];
    text_.append(bytes, static_cast<std::size_t>(utf8Encode(c, bytes)));
    return true;
}

QVStatus StringCollector::wrong(QVStatus status, int back) {
    mistake_ = back;
    return status;
}

}  // namespace qvhost
