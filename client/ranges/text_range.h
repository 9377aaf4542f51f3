// A range of a file that can be scanned by itself, on any machine that has the file.
//
//     for (const qvej::TextRange& range : qvej::rangesOf("big.json", 64 << 20, {})) { ... }
//
// Tested by tests/client/partial_scan_test.cpp
#pragma once

#include "../input/document_reader.h"
#include "../partition/partition_reader.h"
#include "../text_form.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// What is next to each other in a file and of one kind.
struct TextPiece {
    // Bytes of the file.
    uint64_t begin = 0;
    uint64_t end = UINT64_MAX;
    Partition::Kind kind = Partition::Kind::WHOLE;
    // Of elements of a large member, or what comes after them: its name as it stands in the text.
    std::string member = {};
    // Where it begins.  Line 0: not known.
    int64_t line = 1;
    int64_t column = 1;
};

// Bytes of a file from a place on: as many as there are, at most `size`.  It is called on whatever
// thread, by one at a time, and may throw.
using ReadAt = std::function<std::string(uint64_t at, std::size_t size)>;

struct TextRange {
    std::string file = {};
    TextForm form = TextForm::DOCUMENT;
    // One: elements, or the lines that begin there (see withWholeLines), or a whole file, which may
    // be compressed or in another encoding.  The range with the first elements of a large member
    // has what stands before them as well, that with the last ones what comes after them.
    std::vector<TextPiece> pieces = {{}};
    // What comes after the elements of a large member is in it: what stands before them.
    std::optional<TextPiece> head = {};
    // How a file is read that is not of this machine; empty: `file` is.
    ReadAt readAt = {};

    [[nodiscard]] bool whole() const { return pieces.front().kind == Partition::Kind::WHOLE; }
};

// The ranges of a file, in order, each of so many bytes or somewhat more.  What cannot be divided
// is one range: a compressed file, one in another encoding than UTF-8, or a text that is neither
// JSON Lines nor has a large array of objects.  Reads the file once.  Throws Error.
//   stopped  see DocumentOptions; may be empty
//   readAt   as of the ranges
//   size     of the file: only the beginning of JSON Lines is read.  They are cut anywhere, and the
//            line that a range begins with is not known: see withWholeLines
[[nodiscard]] std::vector<TextRange> rangesOf(const std::string& file, uint64_t bytes,
                                              const TextOptions& options,
                                              const std::function<bool()>& stopped = {},
                                              const ReadAt& readAt = {},
                                              std::optional<uint64_t> size = {});

// The range of the lines that begin in a range of JSON Lines, without a byte order mark; any other
// as it is.  Throws Error.
[[nodiscard]] TextRange withWholeLines(TextRange range);

// All bytes of the file, in order.  Throws Error.
//   stopped  may be empty
[[nodiscard]] ByteSource wholeFile(const std::string& file, const ReadAt& readAt,
                                   const std::function<bool()>& stopped);

// Gives the bytes of a piece of a range that is not whole, some at a time.  `more`: others come.
// Throws Error.
void readPiece(const TextRange& range, const TextPiece& piece,
               const std::function<void(std::string_view bytes, bool more)>& take);

}  // namespace qvej
