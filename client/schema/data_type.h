// Types of columns as other tools know them.
//
// A type is exact: every value of the column has one value of the type, and reads back as the same
// number, text, date or instant.
//
// Tested by tests/client/schema_test.cpp
#pragma once

#include <cstdint>
#include <string>

namespace qvej {

struct DataType {
    enum Kind : uint8_t {
        TEXT,
        BOOLEAN,
        BIGINT,    // 64 bits, signed
        DOUBLE,    // IEEE 754, 64 bits
        DECIMAL,   // `precision` digits, `scale` of them after the point
        DATE,      // of the Gregorian calendar, years 1 to 9999
        TIMESTAMP  // date and time of day, `fraction` digits after the second
    };
    Kind kind = TEXT;
    bool utc = false;       // of a TIMESTAMP: an instant; else without a time zone
    uint8_t fraction = 0;   // 0 to 9
    uint8_t precision = 0;  // 1 to 38
    uint8_t scale = 0;      // 0 to `precision`

    bool operator==(const DataType&) const = default;
};

inline constexpr int kMostDigits = 38;  // of a DECIMAL: those that 128 bits have room for

// "BIGINT", "DECIMAL(20,2)", "TIMESTAMP(3) UTC"
[[nodiscard]] std::string nameOf(const DataType& type);

}  // namespace qvej
