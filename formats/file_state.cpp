// See file_state.h.
#include "formats/file_state.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace qvej {

FileState stateOf(const struct stat& file) {
    std::tm utc = {};
    (void)::gmtime_r(&file.st_mtim.tv_sec, &utc);
    std::array<char, 64> text = {};
    const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
    (void)std::snprintf(text.data() + size, text.size() - size, ".%09ldZ", file.st_mtim.tv_nsec);
    return {static_cast<uint64_t>(file.st_size), text.data()};
}

}  // namespace qvej
