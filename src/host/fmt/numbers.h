// Numbers as people write them, to and from doubles.
//
// A text is rounded once, from all its digits: moving the point for a percent sign, milliseconds or
// implied decimals happens in the text.  Likewise a double is rounded from its exact value.
//
// Tested by tests/host/fmt_test.cpp
#pragma once

#include "qvstatus.h"

#include <optional>
#include <string>
#include <string_view>

namespace qvhost {

struct NumberForm {
    bool grouped = false;  // commas between each three digits before the point; all or none of them
    int64_t pointMoved = 0;  // places that the point is to be moved, to the right when positive
    uint64_t decimals = 0;   // places of a text that has no point
};

// [ "+" | "-" ] digits [ "." digits ] [ exponent ], with at least one digit before or after the
// point; without blanks around.  Too large a magnitude gives infinity.  None for any other text.
//   scratch  memory for the text in another form
[[nodiscard]] std::optional<double> readNumber(std::string_view text, const NumberForm& form,
                                               std::string& scratch);

// [ "-" ] [ "0x" ] hexadecimal digits.  QV_FMT_RANGE beyond 2^53, from where on doubles skip
// integers.
[[nodiscard]] QVStatus readHex(std::string_view text, double& value) noexcept;
[[nodiscard]] QVStatus appendHex(double value, std::string& out);  // QV_FMT_VALUE: not whole

constexpr uint64_t kDecimalsMax = 99;

// The shortest text that reads as `value`; whole numbers below 2^63 without exponent; "inf".
void appendPlain(double value, std::string& out);
// Exactly `decimals` (at most kDecimalsMax) decimals.
void appendFixed(double value, uint64_t decimals, std::string& out);
void appendGrouped(double value, uint64_t decimals, std::string& out);  // with commas
void appendPercent(double value, uint64_t decimals, std::string& out);  // times 100, and "%"

}  // namespace qvhost
