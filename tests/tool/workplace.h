// A new folder in which the built tool runs as a user runs it: through the shell.
//
// The folder holds orders.json of examples/ and a folder tmp, which is the TMPDIR of what runs in
// it.  It goes away with all it holds.
#pragma once

#include "tests/testkit/scratch_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace jmap::test {

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

class Workplace {
   public:
    Workplace() {
        std::filesystem::create_directories(path() + "/tmp");
        std::filesystem::copy_file(JMAP_SOURCE_DIR "/examples/orders.json",
                                   path() + "/orders.json");
    }

    [[nodiscard]] std::string path() const { return base_.path / "here"; }

    struct Result {
        std::string out;
        std::string err;
        int exitCode;
    };
    // Runs lines of the shell in which "qvejmap" is the tool, for two minutes at most.
    [[nodiscard]] Result run(const std::string& command) const {
        (void)base_.write("command", command + "\n");
        const std::string line = "cd '" + path() +
                                 "' && TMPDIR=\"$PWD/tmp\" PATH=\"" QVEJMAP_FOLDER ":$PATH\"" +
                                 " timeout 120 sh ../command > ../out 2> ../err < /dev/null";
        const int status = std::system(line.c_str());
        return {base_.read("out"), base_.read("err"), WEXITSTATUS(status)};
    }

   private:
    ScratchFolder base_;
};

}  // namespace jmap::test
