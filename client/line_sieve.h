// Keeps the bad lines of JSON Lines from what takes the text.
//
// Each line is checked before any of it is passed on; a bad one becomes blanks, as many as it has
// bytes, so that all that follows keeps its place.  A line that does not end in its piece is held
// back until it does.  Memory: a piece and the longest line.
//
// Tested by tests/client/line_sieve_test.cpp
#pragma once

#include "engine.h"
#include "text_check.h"
#include "text_consumer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace qvej {

// A line that is no JSON.
struct BadLine {
    int64_t line;    // from 1
    int64_t column;  // of the mistake, in bytes
    std::string_view text;
    std::string reason;
};

class LineSieve final : public TextConsumer {
   public:
    // `takes` gets the text, and must outlive the sieve.  `onBad`: gets each bad line; its text
    // lives until that returns.  `maxDepth`: as of DocumentOptions.
    LineSieve(const Engine& engine, TextConsumer& takes, std::function<void(const BadLine&)> onBad,
              uint64_t maxDepth = 0);

    // What is too deep is no bad line: it is passed on, to be told as a limit.
    void feed(std::string_view text) override;
    void finish() override;
    [[nodiscard]] Place end() const override { return takes_.end(); }

   private:
    void sift(std::size_t size);
    std::size_t reject(std::size_t at, const Error& error);
    void newCheck();

    const Engine& engine_;
    TextConsumer& takes_;
    std::function<void(const BadLine&)> onBad_;
    const uint64_t maxDepth_;
    std::unique_ptr<TextCheck> check_;
    int64_t linesBefore_ = 0;  // the first one that the check sees
    std::string lines_;        // not yet passed on
};

}  // namespace qvej
