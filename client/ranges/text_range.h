// A range of a file that can be scanned by itself, on any machine that has the file.
//
//     for (const qvej::TextRange& range : qvej::rangesOf("big.json", 64 << 20, {})) { ... }
//
// Tested by tests/client/partial_scan_test.cpp
#pragma once

#include "../input/document_reader.h"
#include "../partition/partition_reader.h"
#include "../text_form.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

struct TextRange {
    std::string file = {};
    // Bytes of the file; of JSON Lines the lines that begin there: see withWholeLines.  A whole
    // file, which may be compressed or in another encoding, is read to its end.
    uint64_t begin = 0;
    uint64_t end = UINT64_MAX;
    TextForm form = TextForm::DOCUMENT;
    Partition::Kind kind = Partition::Kind::WHOLE;
    // Of elements of a large member, or what is around them: its name as it stands in the text.
    std::string member = {};
    // Where it begins.  Line 0: not known.
    int64_t line = 1;
    int64_t column = 1;
};

// The ranges of a file, in order, each of so many bytes or somewhat more.  What cannot be divided
// is one range: a compressed file, one in another encoding than UTF-8, or a text that is neither
// JSON Lines nor has a large array of objects.  Reads the file once.  Throws Error.
[[nodiscard]] std::vector<TextRange> rangesOf(const std::string& file, uint64_t bytes,
                                              const TextOptions& options);

// The range of the lines that begin in a range of JSON Lines; any other as it is.  Throws Error.
[[nodiscard]] TextRange withWholeLines(TextRange range);

// Gives the bytes of a range of a file that is not whole, piece by piece.  `more`: another comes.
// Throws Error.
void readRange(const TextRange& range,
               const std::function<void(std::string_view piece, bool more)>& take);

}  // namespace qvej
