// See values.h.
#include "bindings/python/values.h"

#include "bindings/python/texts.h"
#include "client/schema/decimal_text.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace qvej::python {

namespace nb = nanobind;

namespace {

template <class Value>
Value valueAt(const Buffer& buffer, std::size_t row) {
    Value value;
    std::memcpy(&value, static_cast<const std::byte*>(buffer.data()) + row * sizeof value,
                sizeof value);
    return value;
}

bool bitAt(const Buffer& bits, std::size_t row) {
    return (valueAt<uint8_t>(bits, row / 8) >> (row % 8) & 1) != 0;
}

nb::object intOf(Int128 number) {
    const bool negative = number < 0;
    std::string digits;
    do {
        const int digit = static_cast<int>(number % 10);
        digits.insert(digits.begin(), static_cast<char>('0' + (negative ? -digit : digit)));
        number /= 10;
    } while (number != 0);
    return nb::steal(PyLong_FromString(((negative ? "-" : "") + digits).c_str(), nullptr, 10));
}

std::string_view textAt(const ColumnData& column, std::size_t row) {
    const auto begin = valueAt<int32_t>(column.buffers[0], row);
    const auto end = valueAt<int32_t>(column.buffers[0], row + 1);
    return {static_cast<const char*>(column.buffers[1].data()) + begin,
            static_cast<std::size_t>(end - begin)};
}

nb::object objectAt(const ColumnData& column, std::size_t row, const DataType& type) {
    const Buffer& values = column.buffers[0];
    switch (type.kind) {
        case DataType::BOOLEAN:
            return nb::bool_(bitAt(values, row));
        case DataType::BIGINT:
        case DataType::TIMESTAMP:
            return nb::int_(valueAt<int64_t>(values, row));
        case DataType::DOUBLE:
            return nb::float_(valueAt<double>(values, row));
        case DataType::DECIMAL:
            return intOf(valueAt<Int128>(values, row));
        case DataType::DATE:
            return nb::int_(valueAt<int32_t>(values, row));
        default:
            return textOf(textAt(column, row));
    }
}

}  // namespace

nb::list valuesOf(const RecordBatch& batch, std::size_t column, const DataType& type) {
    const ColumnData& data = batch.columns[column];
    nb::list values;
    for (std::size_t row = 0; row < static_cast<std::size_t>(batch.rows); ++row) {
        const bool has = data.nulls == 0 || bitAt(data.valid, row);
        values.append(has ? objectAt(data, row, type) : nb::none());
    }
    return values;
}

}  // namespace qvej::python
