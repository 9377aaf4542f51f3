// A text being read from its front: every step either takes what it asks for or fails.
//
// Tested by tests/host/fmt_test.cpp
#pragma once

#include <cstddef>
#include <string_view>

namespace qvhost {

// Blank, tab and the ends of lines, in ASCII.
[[nodiscard]] constexpr bool isBlank(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

[[nodiscard]] constexpr bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

[[nodiscard]] constexpr char toLower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

[[nodiscard]] constexpr std::string_view withoutBlanksAround(std::string_view text) noexcept {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

class Scanner {
   public:
    explicit constexpr Scanner(std::string_view text) noexcept : rest_(text) {}

    [[nodiscard]] constexpr bool atEnd() const noexcept { return rest_.empty(); }
    // 0 at the end.
    [[nodiscard]] constexpr char next(std::size_t ahead = 0) const noexcept {
        return ahead < rest_.size() ? rest_[ahead] : '\0';
    }

    constexpr bool take(char c) noexcept {
        const bool there = !rest_.empty() && rest_.front() == c;
        rest_.remove_prefix(there ? 1 : 0);
        return there;
    }

    // A word in any case; `word` is in lower case.
    constexpr bool takeWord(std::string_view word) noexcept {
        if (rest_.size() < word.size()) {
            return false;
        }
        for (std::size_t i = 0; i < word.size(); ++i) {
            if (toLower(rest_[i]) != word[i]) {
                return false;
            }
        }
        rest_.remove_prefix(word.size());
        return true;
    }

    // Any number of blanks.  True when there was one.
    constexpr bool takeBlanks() noexcept {
        const bool there = !rest_.empty() && isBlank(rest_.front());
        while (!rest_.empty() && isBlank(rest_.front())) {
            rest_.remove_prefix(1);
        }
        return there;
    }

    // All the digits that follow, maybe none.
    constexpr std::string_view takeDigits() noexcept {
        std::size_t count = 0;
        while (count < rest_.size() && isDigit(rest_[count])) {
            ++count;
        }
        const std::string_view digits = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return digits;
    }

    // A number of `least` to `most` (at most 9) digits.
    constexpr bool takeNumber(int least, int most, int& number) noexcept {
        int count = 0;
        number = 0;
        while (count < most && isDigit(next())) {
            number = number * 10 + (next() - '0');
            rest_.remove_prefix(1);
            ++count;
        }
        return count >= least;
    }

   private:
    std::string_view rest_;
};

}  // namespace qvhost
