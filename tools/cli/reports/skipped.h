// What --skip-bad-lines and --skip-bad-files leave out: counted and told.
//
// Tested by tests/tool/golden/inputs.t
#pragma once

#include "client/error.h"
#include "client/line_sieve.h"
#include "tools/cli/failure.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qvej::cli {

// There is no file left: the mistake of the last one.
class AllBad : public Error {
   public:
    explicit AllBad(const Error& last) : Error(last) {}
};

class Skipped {
   public:
    struct Line {
        std::string file;
        Spot spot;         // of the mistake
        std::string text;  // UTF-8, 32,767 bytes at most
        std::string reason;
    };

    // All lines are kept, else the first one.
    void keepLines() { keepsLines_ = true; }

    void takeLine(const std::string& file, const BadLine& line);

    // Tells it at once.
    void takeFile(const Error& error);

    // Tells how many lines, and the first.
    void tellLines() const;

    // Those that are kept.
    [[nodiscard]] const std::vector<Line>& lines() const { return lines_; }

    // REJECTED when there is anything, else DONE.
    [[nodiscard]] ExitCode exitCode() const { return lineCount_ + files_ == 0 ? DONE : REJECTED; }

   private:
    bool keepsLines_ = false;
    std::vector<Line> lines_;
    uint64_t lineCount_ = 0;
    uint64_t files_ = 0;
};

}  // namespace qvej::cli
