// Files whose reading moves the progress on.
//
// Tested by tests/tool/golden/inputs.t
#pragma once

#include "client/input/byte_source.h"
#include "tools/cli/reports/progress.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qvej::cli {

// Bytes of all the files as they are stored; nothing when one is no regular file.
[[nodiscard]] std::optional<uint64_t> bytesOf(const std::vector<std::string>& files);

// The same bytes; the progress, which must outlive them, counts them as they are read.
[[nodiscard]] ByteSource counted(ByteSource source, Progress& progress);

}  // namespace qvej::cli
