// See typed_value.h.
#include "client/schema/typed_value.h"

#include "client/schema/iso_time.h"

#include <charconv>

namespace qvej {
namespace {

constexpr int64_t kPowers[] = {1,      10,      100,      1000,      10000,
                               100000, 1000000, 10000000, 100000000, 1000000000};

// Times that come from numbers are exact to the microsecond.
int64_t unitsOfSeconds(double seconds, int digits) {
    const int64_t micros = *microsecondsOf(seconds);
    return digits >= 6 ? micros * kPowers[digits - 6] : micros / kPowers[6 - digits];
}

template <class Number>
Number parsed(std::string_view text) {
    Number number = {};
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

}  // namespace

bool booleanOf(const Cell& cell) {
    return cell.count != 0;
}

int64_t bigintOf(const Cell& cell) {
    switch (cell.kind) {
        case Cell::NUMBER:
            return static_cast<int64_t>(cell.number);
        case Cell::DIGITS:
            return parsed<int64_t>(cell.text);
        default:
            return static_cast<int64_t>(cell.count);
    }
}

double doubleOf(const Cell& cell) {
    switch (cell.kind) {
        case Cell::NUMBER:
            return cell.number;
        case Cell::DIGITS:
            return parsed<double>(cell.text);
        default:
            return static_cast<double>(cell.count);
    }
}

Int128 decimalOf(const Cell& cell, int scale) {
    std::string buffer;
    return unscaled(textOf(cell, {}, buffer), scale);
}

int32_t daysOf(const Cell& cell) {
    return parseIsoTime(cell.text)->days;
}

int64_t unitsOf(const Cell& cell, int digits) {
    return cell.kind == Cell::NUMBER && cell.text.empty()
               ? unitsOfSeconds(cell.number, digits)
               : *unitsSince1970(*parseIsoTime(cell.text), digits);
}

std::string_view textOf(const Cell& cell, const DataType& type, std::string& buffer) {
    switch (cell.kind) {
        case Cell::COUNT:
            return buffer = std::to_string(cell.count);
        case Cell::NUMBER:
            if (!cell.text.empty()) {
                return cell.text;
            }
            if (type.kind == DataType::TIMESTAMP) {
                return buffer = isoText(unitsOf(cell, type.fraction), type.fraction);
            }
            buffer.resize(32);
            buffer.resize(static_cast<std::size_t>(
                std::to_chars(buffer.data(), buffer.data() + buffer.size(), cell.number).ptr -
                buffer.data()));
            return buffer;
        default:
            return cell.text;
    }
}

}  // namespace qvej
