// See cache_file.h.
#include "client/cache_file.h"

#include <cstdint>
#include <cstdlib>
#include <random>
#include <unistd.h>

namespace qvej {
namespace {

std::string temporaryDirectory() {
    const char* configured = std::getenv("TMPDIR");
    return configured != nullptr && *configured != '\0' ? configured : "/tmp";
}

}  // namespace

std::string randomHex() {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::random_device random;  // the system's own source on this platform
    std::string text;
    for (int word = 0; word < 4; ++word) {
        uint32_t bits = random();
        for (int digit = 0; digit < 8; ++digit, bits >>= 4) {
            text.push_back(kDigits[bits & 15]);
        }
    }
    return text;
}

PrivateCacheFile::PrivateCacheFile(const std::string& directory)
    : path_((directory.empty() ? temporaryDirectory() : directory) + "/qvejmap-" + randomHex()) {}

PrivateCacheFile::~PrivateCacheFile() {
    remove();
}

void PrivateCacheFile::remove() const {
    (void)::unlink(path_.c_str());
}

}  // namespace qvej
