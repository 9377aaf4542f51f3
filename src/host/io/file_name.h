// Names of files: from the host's characters to the bytes that the file system knows.
//
// A name becomes UTF-8.  A path may hold bytes that are not UTF-8; each of them is given as one of
// the characters U+DC80 to U+DCFF, which stand for the bytes 80 to FF, so every path has a name.
//
// Tested by tests/host/io_test.cpp
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qvhost {

// The path of a name, or none when no path can be: with U+0000, or a character that does not exist.
[[nodiscard]] std::optional<std::string> pathOf(std::u32string_view name);

}  // namespace qvhost
