// A list in one text.
#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace jmap::test {

// "a|b|c" in parts.
inline std::vector<std::string> split(const std::string& text, char separator = '|') {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

}  // namespace jmap::test
