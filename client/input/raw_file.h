// The bytes of a file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// A file or standard input ("-"), read in large pieces.
class RawFile {
   public:
    explicit RawFile(const std::string& file);  // throws Error
    ~RawFile();
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;

    // The next piece, short only before the end and empty at it.  It lives until the next call.
    // Throws Error.
    std::string_view next();

    // What messages call it: the file as given, or "<stdin>".
    [[nodiscard]] const std::string& name() const { return name_; }

    // Is it a regular file, whose bytes are there without waiting?
    [[nodiscard]] bool isRegular() const;

   private:
    int descriptor_;
    bool ended_ = false;
    std::string name_;
    std::vector<char> buffer_;
};

}  // namespace qvej
