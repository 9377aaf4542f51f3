// Names that a format wants to be different.
#pragma once

#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace qvej::cli {

// The names, where a later one of the same letters has "~2", "~3" ... at its end.
[[nodiscard]] inline std::vector<std::string> uniqueNames(std::vector<std::string> names) {
    std::unordered_set<std::string> wanted(names.begin(), names.end());
    std::unordered_set<std::string> taken;
    for (std::string& name : names) {
        std::string unique = name;
        for (int i = 2; taken.contains(unique) || (unique != name && wanted.contains(unique));
             ++i) {
            unique = name + "~" + std::to_string(i);
        }
        taken.insert(unique);
        name = std::move(unique);
    }
    return names;
}

}  // namespace qvej::cli
