// A folder for the files of a test, which goes away with this object.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace jmap::test {

class TemporaryFolder {
   public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "qvejmap-XXXXXX").string();
        path_ = ::mkdtemp(name.data());
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // Makes a file of that text; returns its path.
    [[nodiscard]] std::string file(const std::string& name, std::string_view text) const {
        const std::string path = path_ / name;
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

   private:
    std::filesystem::path path_;
};

}  // namespace jmap::test
