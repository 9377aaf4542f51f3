// See file_names.h.
#include "formats/file_names.h"

#include "client/text.h"

#include <algorithm>
#include <cstdint>
#include <unordered_set>

namespace qvej {

namespace {

bool isAlphanumeric(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// What a file name has of a table name as it is; "." not in the first place.
bool isPlain(char c) {
    return isAlphanumeric(c) || c == '_' || c == '-' || c == '.';
}

}  // namespace

std::string fileStem(std::string_view tableName) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    if (tableName.empty()) {
        return "_";
    }
    std::string stem;
    for (const char c : tableName) {
        if (isPlain(c) && (c != '.' || !stem.empty())) {
            stem += c;
        } else {
            const auto byte = static_cast<uint8_t>(c);
            stem += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return stem;
}

std::vector<std::string> uniqueFileNames(const std::vector<std::string>& tableNames,
                                         std::string_view extension) {
    std::vector<std::string> names;
    std::unordered_set<std::string>
        taken;  // "~" is in no stem, so a suffix never hits a later stem
    for (const std::string& tableName : tableNames) {
        const std::string stem = fileStem(tableName);
        std::string name = stem;
        for (int n = 2; !taken.insert(lowerCased(name)).second; ++n) {
            name = stem + "~" + std::to_string(n);
        }
        names.push_back(name.append(".").append(extension));
    }
    return names;
}

bool isFileName(std::string_view name) {
    return !name.empty() && name.front() != '.' &&
           std::all_of(name.begin(), name.end(),
                       [](char c) { return isPlain(c) || c == '%' || c == '~'; });
}

}  // namespace qvej
