// See file_names.h.
#include "formats/file_names.h"

#include "client/text.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace qvej {

namespace {

bool isAlphanumeric(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// What a file name has of a table name as it is; "." not in the first place.
bool isPlain(char c) {
    return isAlphanumeric(c) || c == '_' || c == '-' || c == '.';
}

// At most `count` bytes of a stem, and no part of a %XX.
std::string_view firstBytes(std::string_view stem, std::size_t count) {
    if (stem.size() <= count) {
        return stem;
    }
    const std::size_t percent = stem.rfind('%', count - 1);
    return stem.substr(0,
                       percent != std::string_view::npos && percent + 3 > count ? percent : count);
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

FileNames uniqueFileNames(const std::vector<std::string>& tableNames, std::string_view extension) {
    FileNames files;
    std::unordered_map<std::string, int> taken;  // by name in small letters: the last number tried
    for (const std::string& tableName : tableNames) {
        const std::string stem = fileStem(tableName);
        std::string name(firstBytes(stem, kLongestFileName - 1 - extension.size()));
        files.cut += name.size() < stem.size() ? 1 : 0;
        const auto [first, isFree] = taken.try_emplace(lowerCased(name), 1);
        int& number = first->second;
        // "~" is in no stem, so a suffix never hits a later stem.
        for (bool found = isFree; !found;) {
            const std::string suffix = "~" + std::to_string(++number);
            const std::size_t room = kLongestFileName - 1 - extension.size() - suffix.size();
            name = std::string(firstBytes(stem, room)) + suffix;
            found = taken.try_emplace(lowerCased(name), 1).second;
        }
        files.names.push_back(name.append(".").append(extension));
    }
    return files;
}

bool isFileName(std::string_view name) {
    return !name.empty() && name.front() != '.' &&
           std::all_of(name.begin(), name.end(),
                       [](char c) { return isPlain(c) || c == '%' || c == '~'; });
}

}  // namespace qvej
