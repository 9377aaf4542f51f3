// Walks over a text to see whether it is well formed, and keeps nothing of it.
//
// Tested by tests/client/line_sieve_test.cpp and tests/tool/golden/inputs.t
#pragma once

#include "text_parser.h"

#include <cstdint>
#include <string_view>

namespace qvej {

class TextCheck final : public TextConsumer, private JSNParseCB {
   public:
    // As of TextParser.
    TextCheck(const Engine& engine, const DocumentOptions& options);

    void feed(std::string_view text) override { parser_.feed(text); }
    void finish() override { parser_.finish(); }
    [[nodiscard]] Place end() const override { return parser_.end(); }

   private:
    static TextCheck& of(JSNParseCB* cb) { return static_cast<TextCheck&>(*cb); }
    [[nodiscard]] QVStatus scalar() const { return depth_ == 0 ? JMAP_INCOMPLETE : QV_OK; }

    uint64_t depth_ = 0;  // open containers
    TextParser parser_;
};

}  // namespace qvej
