// The program dot of Graphviz.
//
// Tested by tests/tool/golden/pictures.t
#pragma once

#include <optional>
#include <string>

namespace qvej::cli {

// What dot draws of a text of its language, as SVG; nothing: it is not installed.  Throws a Failure
// when dot fails.
[[nodiscard]] std::optional<std::string> drawnByGraphviz(const std::string& dot);

}  // namespace qvej::cli
