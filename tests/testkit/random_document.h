// Documents of few names, so that every path comes in every order.
#pragma once

#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace jmap::test {

class RandomDocument {
   public:
    // `longest`: bytes of a string of letters, at most.  `widest`: values of the few wide lists.
    RandomDocument(unsigned seed, std::vector<std::string> names, std::size_t longest = 8,
                   std::size_t widest = 4)
        : random_(seed), names_(std::move(names)), longest_(longest), widest_(widest) {}

    // An array of so many values.
    std::string text(int values) {
        std::string text;
        for (; values > 0; --values) {
            text += (text.empty() ? "[" : ",") + value(1);
        }
        return text + "]";
    }

   private:
    std::size_t draw(std::size_t below) { return random_() % below; }

    std::string value(int depth) {
        constexpr const char* kScalars[] = {"1", "-2.5", "true", "false", "null", "\"\"", "\"12\""};
        if (depth == 4 || draw(8) < 3) {
            const auto scalar = draw(2 * std::size(kScalars));
            const std::string letters(draw(longest_), static_cast<char>('p' + draw(9)));
            return scalar < std::size(kScalars) ? kScalars[scalar] : '"' + letters + '"';
        }
        const bool object = draw(5) < 3;
        std::string text = object ? "{" : "[";
        for (auto left = draw(8) == 0 ? widest_ : draw(5); left > 0; --left) {
            text += object ? "\"" + names_[draw(names_.size())] + "\":" : "";
            const bool again = !last_[depth].empty() && draw(3) == 0;
            last_[depth] = again ? last_[depth] : value(depth + 1);  // paths come back in order
            text += last_[depth] + (left > 1 ? "," : "");
        }
        return text + (object ? "}" : "]");
    }

    std::mt19937 random_;
    std::vector<std::string> names_;
    std::size_t longest_;
    std::size_t widest_;
    std::string last_[4];  // value of each depth
};

}  // namespace jmap::test
