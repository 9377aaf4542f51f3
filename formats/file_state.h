// Size and time of change of a file: what tells whether it is still as it was written.
//
// Tested by tests/tool/golden/convert_again.t
#pragma once

#include <cstdint>
#include <string>
#include <sys/stat.h>

namespace qvej {

struct FileState {
    uint64_t bytes;
    std::string modified;  // in UTC, to the nanosecond: "2024-02-29T13:05:00.123456789Z"

    bool operator==(const FileState&) const = default;
};

[[nodiscard]] FileState stateOf(const struct stat& file);

// A file of a directory and how it was.
struct ListedFile {
    std::string name;
    FileState state;
};

}  // namespace qvej
