// Texts made safe for HTML, SVG and other XML, as content and as values of attributes in quotes.
//
// Tested by tests/tool/golden/report.t and tests/tool/pictures.py
#pragma once

#include <string>
#include <string_view>

namespace qvej::cli {

// Markup characters are entities, control characters JSON escapes; what no XML may hold is U+FFFD.
[[nodiscard]] std::string markup(std::string_view text);

// The same for the first `most` characters, and "…" when there are more.
[[nodiscard]] std::string shortMarkup(std::string_view text, std::size_t most);

// The first `most` characters, and "…" when there are more.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t most);

}  // namespace qvej::cli
