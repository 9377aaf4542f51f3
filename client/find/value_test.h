// Is a value one that is looked for?
//
// Tested by tests/tool/golden/find.t
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace re2 {
class RE2;
}

namespace qvej {

class ValueTest {
   public:
    // `value`: the whole text of a value; `regex`: occurs in it.  At most one of them; none: any
    // value will do.  Throws QV_BADPARMS for what is no regular expression, and says why.
    ValueTest(const std::optional<std::string>& value, const std::optional<std::string>& regex,
              bool ignoreCase);
    ~ValueTest();

    [[nodiscard]] bool any() const { return !value_ && !regex_; }
    [[nodiscard]] bool passes(std::string_view text) const {
        return value_ ? text == *value_ : !regex_ || matches(text);
    }

   private:
    [[nodiscard]] bool matches(std::string_view text) const;

    std::optional<std::string> value_;
    std::unique_ptr<re2::RE2> regex_;
};

}  // namespace qvej
