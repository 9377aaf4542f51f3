// Names of tables and columns as a database or another target takes them.
//
//     const FittedNames fitted = fittedNames(names, {.longest = 63, .forbidden = kNul});
//     fitted.names[i] is the name for names[i]; fitted.changed lists the positions where it differs
//
// A name changes only where it must, and then in the same way in every run: "Orders" beside
// "orders" becomes "Orders~2" where case does not count.
//
// Tested by tests/formats/target_names_test.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

inline constexpr std::string_view kNul{"", 1};  // U+0000, which few targets take in a name

// What a target demands of the names of one list.
struct NameRules {
    std::size_t longest = std::numeric_limits<std::size_t>::max();
    enum : uint8_t { BYTES, UTF16 } unit = BYTES;           // of `longest`
    enum : uint8_t { EXACT, ASCII, UNICODE } same = EXACT;  // letters whose case does not count
    std::string_view forbidden = {};                        // ASCII characters: "_" stands for each
    std::string_view forbiddenStart = {};     // in small letters and any case: "_" goes in front
    bool mayBeEmpty = false;                  // else it becomes "_"
    std::span<const std::string> taken = {};  // names that others have
};

struct FittedNames {
    std::vector<std::string> names;
    std::vector<std::size_t> changed;  // positions, in order
};

// Names that follow the rules and are all different.  Bytes that are no UTF-8 become "_", too.
[[nodiscard]] FittedNames fittedNames(const std::vector<std::string>& names,
                                      const NameRules& rules);

}  // namespace qvej
