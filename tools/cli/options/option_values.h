// Values of options: counts, sizes, keywords.
//
// Tested by tests/tool/text_test.cpp and tests/tool/golden/usage.t
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qvej::cli {

// Throws a Failure (WRONG_USAGE): `what` and where help is.
[[noreturn]] void usageError(const std::string& what);

std::string inQuotes(std::string_view text);

// A whole number.
std::optional<uint64_t> parseCount(std::string_view text);

// The whole number that an option was given.  Throws a Failure for anything else.
uint64_t countOf(const char* option, std::string_view text);

// A count of bytes: digits and perhaps K, M, G or T (powers of 1024).
std::optional<uint64_t> parseSize(std::string_view text);

// The engine's keyword string: ",MAP,-READ," for "map,-read"; empty for no keywords.  Throws a
// Failure for an unknown one.
std::string debugString(std::string_view keywords);

}  // namespace qvej::cli
