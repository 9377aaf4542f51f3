// See row_bytes.h.
#include "formats/arrow_c/row_bytes.h"

#include "client/schema/typed_value.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace qvej {

namespace {

constexpr unsigned kKindBits = 3;
constexpr std::size_t kLong =
    0xFF >> kKindBits;  // the least length that comes after the first byte
constexpr std::size_t kMostHead = 1 + sizeof(std::size_t) + sizeof(double);

template <class Value>
char* put(char* at, const Value& value) {
    std::memcpy(at, &value, sizeof value);
    return at + sizeof value;
}

template <class Value>
const char* get(const char* at, Value& value) {
    std::memcpy(&value, at, sizeof value);
    return at + sizeof value;
}

}  // namespace

void RowBytes::append(const Cell& cell) {
    const bool null = !hasValue(cell);
    const std::size_t length = null ? 0 : cell.text.size();
    char* const begin = reinterpret_cast<char*>(bytes_.room(kMostHead + length));
    char* at = begin;
    *at++ = static_cast<char>((null ? Cell::MISSING : cell.kind) | std::min(length, kLong)
                                                                       << kKindBits);
    if (length >= kLong) {
        at = put(at, length);
    }
    switch (cell.kind) {
        case Cell::COUNT:
        case Cell::BOOLEAN:
            at = put(at, cell.count);
            break;
        case Cell::NUMBER:
            at = put(at, cell.number);
            break;
        default:
            break;
    }
    if (length != 0) {
        std::memcpy(at, cell.text.data(), length);
    }
    bytes_.use(static_cast<std::size_t>(at + length - begin));
}

const char* RowBytes::read(const char* at, Cell& cell) {
    const auto head = static_cast<unsigned char>(*at++);
    cell.kind = static_cast<Cell::Kind>(head & ((1U << kKindBits) - 1));
    std::size_t length = head >> kKindBits;
    if (length == kLong) {
        at = get(at, length);
    }
    switch (cell.kind) {
        case Cell::COUNT:
        case Cell::BOOLEAN:
            at = get(at, cell.count);
            break;
        case Cell::NUMBER:
            at = get(at, cell.number);
            break;
        default:
            break;
    }
    cell.text = {at, length};
    return at + length;
}

}  // namespace qvej
