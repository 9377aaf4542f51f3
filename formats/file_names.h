// File names for tables.
//
// Tested by tests/tool/golden/convert.t and tests/tool/golden/naming.t
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// A table name as a file name that never acts as a path: every byte but letters, digits, "_", "-"
// and a "." that is not the first becomes %XX; the empty name becomes "_".
std::string fileStem(std::string_view tableName);

inline constexpr std::size_t kLongestFileName = 255;  // bytes that file systems take

struct FileNames {
    std::vector<std::string> names;
    std::size_t cut = 0;  // of them too long for the whole name of their table
};

// File names for tables, in order, all different even where case does not count: orders.csv,
// orders~2.csv.
FileNames uniqueFileNames(const std::vector<std::string>& tableNames, std::string_view extension);

// Can `name` be one of these?  Then it is no path.
[[nodiscard]] bool isFileName(std::string_view name);

}  // namespace qvej
