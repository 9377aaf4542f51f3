// The bytes of a file.
#pragma once

#include "reading_stop.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// A file or standard input ("-"), read in large pieces.
class RawFile {
   public:
    // With a stop, `next` gives what has come, and ends when the stop says so.  Throws Error.
    explicit RawFile(const std::string& file, std::shared_ptr<const ReadingStop> stop = {});
    // While a pipe has no writer or nothing to read, `stopped` is asked; when it says so `next`
    // throws Error (QV_STOPPED).
    RawFile(const std::string& file, std::function<bool()> stopped);
    ~RawFile();
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;

    // The next piece, empty at the end; without a stop it is short only before that.  It lives
    // until the next call.  Throws Error.
    std::string_view next();

    // What messages call it: the file as given, or "<stdin>".
    [[nodiscard]] const std::string& name() const { return name_; }

    // Is it a regular file, whose bytes are there without waiting?
    [[nodiscard]] bool isRegular() const;

   private:
    RawFile(const std::string& file, int flags);
    void waitUntilStopped() const;

    int descriptor_;
    bool ended_ = false;
    std::shared_ptr<const ReadingStop> stop_;
    std::function<bool()> stopped_;
    std::string name_;
    std::vector<char> buffer_;
};

}  // namespace qvej
