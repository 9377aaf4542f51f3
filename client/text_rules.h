// What a parser is to know of a text, as its table has it.
#pragma once

#include "qvehost.h"

#include "document.h"

#include <functional>

namespace qvej {

// `columnOf` must live as long as the parser; it may be empty.
[[nodiscard]] JSNTextRules textRules(const DocumentOptions& options,
                                     std::function<int64_t(int64_t)>& columnOf);

}  // namespace qvej
