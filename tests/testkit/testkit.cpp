// Small helpers of tests: paths as text, files.
#include "testkit.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace jmap::test {
namespace {

namespace fs = std::filesystem;

// A folder of this process, removed at its end.
struct ScratchFolder {
    ~ScratchFolder() {
        std::error_code ignored;  // a folder that cannot be removed is no failure of the test
        fs::remove_all(path, ignored);
    }
    std::string path = (fs::temp_directory_path() / "qvejmap-test-XXXXXX").string();
    bool made = mkdtemp(path.data()) != nullptr;
};

}  // namespace

std::string slashes(std::string_view path) {
    std::string shown(path);
    std::replace(shown.begin(), shown.end(), '\x02', '/');
    return shown;
}

std::optional<std::string> sharedFile(const std::string& name) {
    std::ifstream file(fs::path(JMAP_SOURCE_DIR) / ".." / "shared" / "data" / name,
                       std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string scratchFile(const std::string& name) {
    static const ScratchFolder folder;
    static int serial = 0;
    EXPECT_TRUE(folder.made);
    return folder.path + "/" + std::to_string(++serial) + "-" + name;
}

}  // namespace jmap::test
