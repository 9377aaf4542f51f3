// Compressed output.
//
// Tested by tests/formats/conformance.py
#pragma once

#include "formats/writer.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace qvej {

enum class Packing : uint8_t { NONE, GZIP, ZSTD };

// ".gz"; of NONE nothing.
[[nodiscard]] std::string_view extensionOf(Packing packing);

// What is written goes to `target`, compressed.  Each `release` ends a member of gzip (RFC 1952) or
// a frame of Zstandard (RFC 8878); a file of several reads as one text.
[[nodiscard]] std::unique_ptr<Target> packed(std::unique_ptr<Target> target, Packing packing);

}  // namespace qvej
