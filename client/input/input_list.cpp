// See input_list.h.
#include "client/input/input_list.h"

#include "client/error.h"

#include <glob.h>

#include <algorithm>
#include <filesystem>
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

// Links to folders are not followed: they may lead around in a circle.
void addFolder(const std::string& folder, std::vector<std::string>& files) {
    std::vector<std::string> found;
    std::error_code error;
    fs::recursive_directory_iterator at(folder, error);
    for (; !error && at != fs::recursive_directory_iterator(); at.increment(error)) {
        const std::string path = at->path().string();
        if (isNamedAsJson(path) && !isFolder(path)) {
            found.push_back(path);
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

void addPath(const std::string& path, std::vector<std::string>& files) {
    if (isFolder(path)) {
        addFolder(path, files);
    } else {
        files.push_back(path);
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
                addPath(path, list.files);
            }
        } else {
            list.several = list.several || isFolder(word);
            addPath(word, list.files);
        }
    }
    return list;
}

}  // namespace qvej
