// See value_test.h.
#include "client/find/value_test.h"

#include "client/error.h"

#include <re2/re2.h>

namespace qvej {

ValueTest::ValueTest(const std::optional<std::string>& value,
                     const std::optional<std::string>& regex, bool ignoreCase) {
    if (value && !ignoreCase) {
        value_ = value;
    } else if (value || regex) {
        RE2::Options options;
        options.set_case_sensitive(!ignoreCase);
        options.set_log_errors(false);
        const std::string text = value ? "\\A" + RE2::QuoteMeta(*value) + "\\z" : *regex;
        regex_ = std::make_unique<RE2>(text, options);
        if (!regex_->ok()) {
            throw Error(QV_BADPARMS, regex_->error());
        }
    }
}

ValueTest::~ValueTest() = default;

bool ValueTest::matches(std::string_view text) const {
    return RE2::PartialMatch(re2::StringPiece(text.data(), text.size()), *regex_);
}

}  // namespace qvej
