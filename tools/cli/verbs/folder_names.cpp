// See folder_names.h.
#include "tools/cli/verbs/folder_names.h"

#include "client/text.h"

#include <string_view>
#include <unordered_set>

namespace qvej::cli {

namespace {

// "orders" of "logs/orders.json.gz".
std::string stemOf(std::string_view file) {
    if (file == "-") {
        return "stdin";
    }
    file.remove_prefix(file.rfind('/') + 1);  // all of it where there is none
    for (const std::string_view ending : {".gz", ".zst", ".json", ".jsonl", ".ndjson"}) {
        file.remove_suffix(file.ends_with(ending) ? ending.size() : 0);
    }
    const bool isName = !file.empty() && file != "." && file != "..";
    return isName ? std::string(file) : "file";
}

}  // namespace

std::vector<std::string> folderNames(const std::vector<std::string>& files) {
    std::vector<std::string> names;
    std::unordered_set<std::string> taken;
    for (const std::string& file : files) {
        const std::string stem = stemOf(file);
        std::string name = stem;
        for (int number = 2; !taken.insert(lowerCased(name)).second; ++number) {
            name = stem + "_" + std::to_string(number);
        }
        names.push_back(name);
    }
    return names;
}

}  // namespace qvej::cli
