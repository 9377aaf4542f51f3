// The bytes of a document that may be compressed.
//
// gzip (any number of members) and Zstandard (any number of frames) are known by their first bytes,
// whatever the file is called.  All else passes untouched.
//
// Tested by tests/tool/golden/input.t
#pragma once

#include "byte_source.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qvej {

// Undoes one way of compression.
class Decompressor {
   public:
    Decompressor() = default;
    virtual ~Decompressor() = default;
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;

    // Takes from the front of `in`, fills at most `room` bytes at `out` and returns how many.  0
    // when it needs more.  Throws a std::runtime_error that says how the data are damaged.
    virtual std::size_t decompress(std::string_view& in, char* out, std::size_t room) = 0;

    // May the data end here?
    [[nodiscard]] virtual bool atEnd() const = 0;

    [[nodiscard]] virtual const char* name() const = 0;
};

class Unpacker {
   public:
    static constexpr std::size_t kPieceBytes = std::size_t{1} << 20;  // of what was compressed

    explicit Unpacker(ByteSource source) : input_(std::move(source)) {}

    // As of ByteSource; of a compressed file a piece is shorter only at the end.  Data that are
    // damaged or end too soon are an Error (QV_IO_DAMAGED).
    std::string_view next();

    [[nodiscard]] const std::string& name() const { return input_.name(); }

    // Does it come from a regular file?
    [[nodiscard]] bool isFile() const { return input_.isFile(); }

    // After the first piece: are the data compressed?
    [[nodiscard]] bool packed() const { return format_ != nullptr; }

   private:
    [[noreturn]] void fail(const std::string& what) const;

    ByteSource input_;
    bool begun_ = false;
    std::unique_ptr<Decompressor> format_;  // null: the data are as they were
    std::string_view packed_;               // not yet taken
    std::vector<char> buffer_;
};

}  // namespace qvej
