// Whether a text spells the byte 0x02, which divides paths: JSON has it as \u0002 only.
//
// Tested by tests/tool/text_test.cpp
#pragma once

#include <string>
#include <string_view>

namespace qvej::cli {

class SeparatorWatch {
   public:
    // The next piece of the text.
    void take(std::string_view piece);
    [[nodiscard]] bool found() const { return found_; }

   private:
    std::string seam_;  // the end of the pieces before
    bool found_ = false;
};

}  // namespace qvej::cli
