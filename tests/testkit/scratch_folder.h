// An empty folder that is removed at the end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

namespace jmap::test {

struct ScratchFolder {
    ScratchFolder() = default;
    ~ScratchFolder() {
        std::error_code ignored;  // a folder that cannot be removed is no failure of the test
        std::filesystem::remove_all(path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // Writes a file, with the folders above it, and returns its path.
    std::string write(const std::string& name, std::string_view text) const {
        std::filesystem::create_directories((path / name).parent_path());
        std::ofstream(path / name) << text;
        return path / name;
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        std::ifstream file(path / name);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::filesystem::path path =
        mkdtemp((std::filesystem::temp_directory_path() / "qvejmap-test-XXXXXX").string().data());
};

}  // namespace jmap::test
