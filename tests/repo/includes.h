// The includes of the files of a tree.
#pragma once

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace jmap::test {

// Where an include of `file` leads: a path relative to the root, or the include itself.
inline std::string target(const std::filesystem::path& root, const std::filesystem::path& file,
                          const std::string& include) {
    for (const auto& base :
         {file.parent_path(), root / "src", root / "include", root / "tests", root}) {
        if (include.front() != '<' && std::filesystem::exists(base / include)) {
            return std::filesystem::relative(base / include, root).generic_string();
        }
    }
    return include;
}

// What is below the folders of the product, in a tree that may lack some.
inline std::vector<std::filesystem::path> productFiles(const std::filesystem::path& root) {
    std::vector<std::filesystem::path> files;
    for (const char* top : {"include", "src", "client", "formats", "bindings", "tools"}) {
        if (std::filesystem::exists(root / top)) {
            files.insert(files.end(), std::filesystem::recursive_directory_iterator(root / top),
                         {});
        }
    }
    return files;
}

// The includes of a file as written, those of the library in "<>".
inline std::vector<std::string> includesOf(const std::filesystem::path& file) {
    static const std::regex kInclude(R"re(^\s*#\s*include\s*(?:"([^"]+)"|(<[^>]+>)))re");
    std::vector<std::string> includes;
    std::ifstream lines(file);
    std::smatch match;
    for (std::string line; std::getline(lines, line);) {
        if (line.find('#') != std::string::npos && std::regex_search(line, match, kInclude)) {
            includes.push_back(match[1].str() + match[2].str());
        }
    }
    return includes;
}

}  // namespace jmap::test
