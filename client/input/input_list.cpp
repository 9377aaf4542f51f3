// See input_list.h.
#include "client/input/input_list.h"

#include "client/error.h"

#include <glob.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <system_error>

namespace qvej {
namespace {

namespace fs = std::filesystem;

bool isNamedAsJson(std::string_view file) {
    for (const std::string_view packed : {".gz", ".zst"}) {
        file.remove_suffix(file.ends_with(packed) ? packed.size() : 0);
    }
    return file.ends_with(".json") || file.ends_with(".jsonl") || file.ends_with(".ndjson");
}

bool isFolder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

// The datapackage.json of an earlier run in a folder; empty: there is none of ours.
std::string packageIn(const fs::path& folder) {
    constexpr std::string_view kOurs = "{\"qvejmap\":{\"version\":";
    std::ifstream in(folder / "datapackage.json", std::ios::binary);
    std::string text(kOurs.size(), '\0');
    if (!in.read(text.data(), static_cast<std::streamsize>(text.size())) || text != kOurs) {
        return {};
    }
    return text.append(std::istreambuf_iterator<char>(in), {});
}

// Tells files that an earlier run wrote from others.
class Outputs {
   public:
    [[nodiscard]] bool has(const fs::path& file) {
        const auto [at, isNew] = packages_.try_emplace(file.parent_path().string());
        if (isNew) {
            at->second = packageIn(file.parent_path());
        }
        const std::string name = file.filename().string();
        return !at->second.empty() &&
               (name == "datapackage.json" ||
                at->second.find("\"path\":\"" + name + "\",\"format\":") != std::string::npos);
    }

   private:
    std::map<std::string, std::string> packages_;  // by folder
};

// Links to folders are not followed: they may lead around in a circle.
void addFolder(const std::string& folder, InputList& list) {
    std::vector<std::string>& files = list.files;
    std::vector<std::string> found;
    Outputs outputs;
    std::error_code error;
    fs::recursive_directory_iterator at(folder, error);
    for (; !error && at != fs::recursive_directory_iterator(); at.increment(error)) {
        const std::string path = at->path().string();
        if (isNamedAsJson(path) && !isFolder(path)) {
            (outputs.has(at->path()) ? list.outputs : found).push_back(path);
        }
    }
    if (error) {
        throw Error(QV_IO_READ, error.message(), folder);
    }
    if (found.empty()) {
        throw Error(QV_IO_NOTFOUND, "no file in this folder ends in .json, .jsonl or .ndjson",
                    folder);
    }
    std::sort(found.begin(), found.end());
    files.insert(files.end(), found.begin(), found.end());
}

void addPath(const std::string& path, InputList& list) {
    if (isFolder(path)) {
        addFolder(path, list);
    } else {
        list.files.push_back(path);
    }
}

bool isPattern(const std::string& word) {
    std::error_code error;
    return word.find_first_of("*?[") != std::string::npos &&
           !fs::exists(fs::symlink_status(word, error));
}

std::vector<std::string> matchesOf(const std::string& pattern) {
    glob_t matches = {};
    const int result = ::glob(pattern.c_str(), GLOB_NOSORT, nullptr, &matches);
    std::vector<std::string> found;
    if (result == 0) {
        found.assign(matches.gl_pathv, matches.gl_pathv + matches.gl_pathc);
    }
    ::globfree(&matches);
    if (result == GLOB_NOSPACE) {
        throw Error(QV_NOMEM);
    }
    if (found.empty()) {
        throw Error(QV_IO_NOTFOUND, "no file has a name like this", pattern);
    }
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace

InputList inputList(const std::vector<std::string>& words) {
    InputList list;
    list.several = words.size() > 1;
    for (const std::string& word : words) {
        if (word == "-") {
            list.files.push_back(word);
        } else if (isPattern(word)) {
            list.several = true;
            for (const std::string& path : matchesOf(word)) {
                addPath(path, list);
            }
        } else {
            list.several = list.several || isFolder(word);
            addPath(word, list);
        }
    }
    return list;
}

}  // namespace qvej
