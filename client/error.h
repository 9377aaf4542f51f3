// How the C++ face reports a failure: one exception class.
//
// Every routine of client/ that can fail throws qvej::Error (or std::bad_alloc).  Front doors that
// must not let exceptions pass (a database, another language) catch them at their own rim.
#pragma once

#include "qvstatus.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace qvej {

// What went wrong and where.  `what()` is a sentence without a subject ("':' was expected after the
// member name").
class Error : public std::runtime_error {
   public:
    explicit Error(QVStatus status) : Error(status, qvStatusText(status)) {}
    Error(QVStatus status, const std::string& sentence, int64_t line = 0, int64_t column = 0)
        : std::runtime_error(sentence), status_(status), line_(line), column_(column) {}
    // `file`: as the caller named it, or "<stdin>", "<stdout>".
    Error(QVStatus status, const std::string& sentence, std::string file)
        : std::runtime_error(sentence), status_(status), file_(std::move(file)) {}

    [[nodiscard]] QVStatus status() const { return status_; }

    // The file that the failure is about; empty: none is known.
    [[nodiscard]] const std::string& file() const { return file_; }

    // Place in the document: 1-based, the column in bytes.  0 when the failure has no place, or
    // when it is the end of the input (status JMAP_INCOMPLETE).
    [[nodiscard]] int64_t line() const { return line_; }
    [[nodiscard]] int64_t column() const { return column_; }

   private:
    QVStatus status_;
    int64_t line_ = 0;
    int64_t column_ = 0;
    std::string file_;
};

// The failure of a system call on a file, from errno: `status` and, as the sentence, the system's.
[[nodiscard]] Error fileError(QVStatus status, const std::string& file);

// A mistake in a user's map, with its place in the map's text.
class MapError : public Error {
   public:
    MapError(QVStatus status, int64_t line, int64_t column, std::string token)
        : Error(status, qvStatusText(status), line, column), token_(std::move(token)) {}

    // The last number or text before the mistake, at most 32 bytes (a key in upper case).
    [[nodiscard]] const std::string& token() const { return token_; }

   private:
    std::string token_;
};

// Throws Error for every status but QV_OK.
inline void check(QVStatus status) {
    if (status != QV_OK) {
        throw Error(status);
    }
}

}  // namespace qvej
