// A new folder in which the built tool runs as a user runs it: through the shell.
//
// The folder holds orders.json of examples/ and a folder tmp, which is the TMPDIR of what runs in
// it.  It goes away with all it holds.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace jmap::test {

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

class Workplace {
   public:
    Workplace() {
        std::string name = (std::filesystem::temp_directory_path() / "qvejmap-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("mkdtemp");
        }
        base_ = name;
        std::filesystem::create_directories(path() + "/tmp");
        std::filesystem::copy_file(JMAP_SOURCE_DIR "/examples/orders.json",
                                   path() + "/orders.json");
    }
    ~Workplace() {
        std::error_code ignored;  // what is left behind is in the temporary directory
        std::filesystem::remove_all(base_, ignored);
    }
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;

    [[nodiscard]] std::string path() const { return base_ + "/here"; }

    struct Result {
        std::string out;
        std::string err;
        int exitCode;
    };
    // Runs lines of the shell in which "qvejmap" is the tool, for two minutes at most.
    [[nodiscard]] Result run(const std::string& command) const {
        std::ofstream(base_ + "/command", std::ios::binary) << command << "\n";
        const std::string line = "cd '" + path() +
                                 "' && TMPDIR=\"$PWD/tmp\" PATH=\"" QVEJMAP_FOLDER ":$PATH\"" +
                                 " timeout 120 sh ../command > ../out 2> ../err < /dev/null";
        const int status = std::system(line.c_str());
        return {readFile(base_ + "/out"), readFile(base_ + "/err"), WEXITSTATUS(status)};
    }

   private:
    std::string base_;
};

}  // namespace jmap::test
