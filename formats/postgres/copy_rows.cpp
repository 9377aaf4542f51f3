// See copy_rows.h.
#include "formats/postgres/copy_rows.h"

#include "client/schema/typed_value.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>
#include <vector>

namespace qvej {

namespace {

constexpr int32_t kDays = 10957;                          // from 1970 to 2000
constexpr int64_t kMicroseconds = 946684800LL * 1000000;  // likewise
constexpr std::size_t kGroup = 4;                         // decimal digits of one of a numeric
constexpr uint16_t kNegative = 0x4000;

// The digits of a number without its sign.
std::string digitsOf(Int128 number) {
    std::string digits;
    for (; number != 0; number /= 10) {
        const auto digit = static_cast<int>(number % 10);
        digits += static_cast<char>('0' + (digit < 0 ? -digit : digit));
    }
    std::reverse(digits.begin(), digits.end());
    return digits;
}

}  // namespace

template <class Number>
void CopyRows::put(Number number) {
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    if constexpr (std::endian::native == std::endian::little) {
        std::reverse(bytes, bytes + sizeof number);
    }
    bytes_.append(bytes, sizeof number);
}

template <class Number>
void CopyRows::field(Number number) {
    put(static_cast<uint32_t>(sizeof number));
    put(number);
}

bool CopyRows::add(const Cell& cell, const DataType& type, int64_t shift) {
    if (!hasValue(cell)) {
        put(int32_t{-1});
        return true;
    }
    switch (type.kind) {
        case DataType::BOOLEAN:
            field(static_cast<uint8_t>(booleanOf(cell) ? 1 : 0));
            return true;
        case DataType::BIGINT:
            field(bigintOf(cell) + shift);
            return true;
        case DataType::DOUBLE:
            field(doubleOf(cell));
            return true;
        case DataType::DECIMAL:
            decimal(cell, type);
            return true;
        case DataType::DATE:
            field(daysOf(cell) - kDays);
            return true;
        case DataType::TIMESTAMP:
            if (type.fraction <= kMostFraction) {
                field(unitsOf(cell, kMostFraction) - kMicroseconds);
                return true;
            }
            break;
        default:
            break;
    }
    return text(textOf(cell, type, buffer_));
}

// groups:int16 weight:int16 sign:uint16 scale:int16 group:int16[groups], each four decimal digits,
// the first of them times 10,000 to the power of `weight`.
void CopyRows::decimal(const Cell& cell, const DataType& type) {
    const Int128 number = decimalOf(cell, type.scale);
    std::string digits = digitsOf(number);
    const std::size_t whole =
        digits.size() > type.scale ? digits.size() - type.scale : 0;  // digits before the point
    digits.insert(0, type.scale + whole - digits.size(), '0');
    digits.insert(0, (kGroup - whole % kGroup) % kGroup, '0');
    const std::size_t wholeGroups = (whole + kGroup - 1) / kGroup;
    digits.append((kGroup - digits.size() % kGroup) % kGroup, '0');
    std::vector<uint16_t> groups;
    for (std::size_t at = 0; at < digits.size(); at += kGroup) {
        groups.push_back(static_cast<uint16_t>(std::stoi(digits.substr(at, kGroup))));
    }
    put(static_cast<uint32_t>(8 + 2 * groups.size()));
    put(static_cast<uint16_t>(groups.size()));
    put(static_cast<int16_t>(static_cast<int>(wholeGroups) - 1));
    put(static_cast<uint16_t>(number < 0 ? kNegative : 0));
    put(static_cast<uint16_t>(type.scale));
    for (const uint16_t group : groups) {
        put(group);
    }
}

bool CopyRows::text(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) {
        return false;
    }
    put(static_cast<uint32_t>(text.size()));
    bytes_ += text;
    return true;
}

}  // namespace qvej
