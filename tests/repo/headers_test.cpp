// Every header compiles alone: the public ones as C11 and as C++20, those of the sources as C++20.
#include "testkit/testkit.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace jmap::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFlags = " -fsyntax-only -Wall -Wextra -Wpedantic -Werror -I" JMAP_SOURCE_DIR
                               "/include -I" JMAP_SOURCE_DIR "/src -I" JMAP_SOURCE_DIR
                               " -isystem " JMAP_SOURCE_DIR "/build/arrow/include";

TEST(Headers, CompileAlone) {
    constexpr struct {
        const char *folder, *compiler, *source;
    } kCases[] = {
        {"include", JMAP_C_COMPILER " -std=c11", "alone.c"},
        {"include", JMAP_CXX_COMPILER " -std=c++20", "alone.cpp"},
        {"src", JMAP_CXX_COMPILER " -std=c++20", "alone.cpp"},
        {"client", JMAP_CXX_COMPILER " -std=c++20", "alone.cpp"},
        {"formats", JMAP_CXX_COMPILER " -std=c++20", "alone.cpp"},
    };
    for (const auto& c : kCases) {
        std::string command = std::string(c.compiler) + kFlags;
        for (const auto& entry :
             fs::recursive_directory_iterator(fs::path(JMAP_SOURCE_DIR) / c.folder)) {
            if (entry.path().extension() == ".h") {
                const std::string source = scratchFile(c.source);
                // The library of formats/arrow need not be there.
                const bool arrow = entry.path().parent_path().filename() == "arrow";
                std::ofstream(source)
                    << "#if " << (arrow ? "__has_include(<arrow/api.h>)" : "1") << "\n#include "
                    << entry.path() << "\n#endif\nint unused_;\n";
                command += " " + source;
            }
        }
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
    }
}

}  // namespace
}  // namespace jmap::test
