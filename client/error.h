// How the C++ face reports a failure: one exception class.
//
// Every routine of client/ that can fail throws qvej::Error (or std::bad_alloc).  Front doors that
// must not let exceptions pass (a database, another language) catch them at their own boundary.
#pragma once

#include "qvstatus.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace qvej {

// A place in a text.
struct Place {
    std::string file = {};  // as the caller named it, or "<stdin>", "<stdout>"; empty: not known
    int64_t line = 0;       // from 1; 0: the file as a whole
    int64_t column = 0;     // from 1, in bytes, but in units of 16 or 32 bits in UTF-16 and UTF-32
    int64_t offset = -1;    // bytes of the text before it; negative: not known
    std::string path = {};  // of the value that stands there, with "/"; empty: not known
};

// What went wrong and where.  `what()` is a sentence without a subject ("':' was expected after the
// member name").
class Error : public std::runtime_error {
   public:
    explicit Error(QVStatus status) : Error(status, qvStatusText(status)) {}
    Error(QVStatus status, const std::string& sentence, Place place = {}, std::string excerpt = {})
        : std::runtime_error(sentence),
          status_(status),
          place_(std::move(place)),
          excerpt_(std::move(excerpt)) {}
    Error(QVStatus status, const std::string& sentence, std::string file)
        : Error(status, sentence, Place{std::move(file)}) {}

    [[nodiscard]] QVStatus status() const { return status_; }

    // What the failure is about, and where in it.
    [[nodiscard]] const Place& place() const { return place_; }
    [[nodiscard]] const std::string& file() const { return place_.file; }
    [[nodiscard]] int64_t line() const { return place_.line; }
    [[nodiscard]] int64_t column() const { return place_.column; }
    [[nodiscard]] int64_t offset() const { return place_.offset; }

    // The text around the place and, in a second line, a caret under it; both end with a line feed
    // and are safe to show.  Empty: not known.
    [[nodiscard]] const std::string& excerpt() const { return excerpt_; }

   private:
    QVStatus status_;
    Place place_;
    std::string excerpt_;
};

// The failure of a system call on a file, from errno: `status` and, as the sentence, the system's.
[[nodiscard]] Error fileError(QVStatus status, const std::string& file);

// What is told of a failure: the file or place, when it is about one, and what is wrong with it.
[[nodiscard]] std::string sentenceOf(const Error& error);

// A mistake in a user's map, with its place in the map's text.
class MapError : public Error {
   public:
    MapError(QVStatus status, Place place, std::string excerpt, std::string token)
        : Error(status, qvStatusText(status), std::move(place), std::move(excerpt)),
          token_(std::move(token)) {}

    // The last number or text before the mistake, at most 32 bytes (a key in upper case).
    [[nodiscard]] const std::string& token() const { return token_; }

   private:
    std::string token_;
};

// Is it one of the failures of files?
[[nodiscard]] inline bool isOfFiles(QVStatus status) {
    const auto code = static_cast<uint32_t>(status);
    return code >= static_cast<uint32_t>(QV_IO_NOTFOUND) && code <= 0x80BFC8FFu;
}

// Throws Error for every status but QV_OK.
inline void check(QVStatus status) {
    if (status != QV_OK) {
        throw Error(status);
    }
}

}  // namespace qvej
