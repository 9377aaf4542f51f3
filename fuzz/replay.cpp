// Replays kept inputs without a fuzzer: `replay_TARGET FILE-OR-FOLDER ...`.  The name of each comes
// first, so that a program that ends tells by which it did.
#include "fuzz_one.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    std::set<fs::path> files;
    for (int i = 1; i < argc; ++i) {
        if (fs::is_directory(argv[i])) {
            files.insert(fs::directory_iterator(argv[i]), fs::directory_iterator());
        } else {
            files.insert(argv[i]);
        }
    }
    for (const fs::path& path : files) {
        std::printf("%s\n", path.c_str());
        std::fflush(stdout);
        std::ifstream file(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        (void)fuzzOne(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs replayed\n", files.size());
    return files.empty() ? 1 : 0;
}
