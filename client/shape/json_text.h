// A value's JSON without blanks, put together from the events of a parser.
//
// Tested by tests/client/reshaper_test.cpp
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qvej {

class JsonText {
   public:
    // What is kept; one byte more than a string value may have, so that a longer one is seen as
    // cut.
    static constexpr std::size_t kLongestText = 32768;

    void clear() { text_.clear(); }
    void open(bool array);
    void close(bool array);
    void name(std::string_view name);
    void string(std::string_view value);
    void word(std::string_view word);  // a number as it is written, true, false, null

    [[nodiscard]] std::string_view view() const {
        return std::string_view(text_).substr(0, kLongestText);
    }

   private:
    [[nodiscard]] bool full() const { return text_.size() >= kLongestText; }
    void separate();
    void quoted(std::string_view text);

    std::string text_;
};

}  // namespace qvej
