// How the tool fails: an exit code, one line, and for a document the text around the place.
#pragma once

#include "qvstatus.h"

#include "client/error.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace qvej::cli {

enum ExitCode {
    DONE = 0,
    REJECTED = 1,   // done, but some values were rejected
    DIFFERENT = 1,  // two maps, or a map and a document
    WRONG_USAGE = 2,
    NOT_JSON = 3,
    NO_TABLE = 4,  // and any other trouble with a map
    FILE_TROUBLE = 5,
    LIMIT_REACHED = 6,  // depth, memory
};

// Caught by main(), which prints it and ends with its code.
class Failure : public std::runtime_error {
   public:
    // `line`: what follows "qvejmap: "; any text, it is made safe when it is printed.
    // `excerpt`: further lines with their ends, already safe; may be empty.
    Failure(ExitCode exitCode, const std::string& line, std::string excerpt = {})
        : std::runtime_error(line),
          exitCode_(exitCode),
          line_(line),
          excerpt_(std::move(excerpt)) {}

    [[nodiscard]] ExitCode exitCode() const { return exitCode_; }
    [[nodiscard]] const std::string& line() const { return line_; }  // may hold a NUL
    [[nodiscard]] const std::string& excerpt() const { return excerpt_; }

   private:
    ExitCode exitCode_;
    std::string line_;
    std::string excerpt_;
};

// The exit code that a status of the engine or its host leads to.
ExitCode exitCodeOf(QVStatus status);

}  // namespace qvej::cli
