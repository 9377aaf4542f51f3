// Words that messages share: what they call tables and places.
//
// Tested by tests/tool/golden/map_explain.t and tests/tool/golden/choice.t
#pragma once

#include "document.h"

#include <string>
#include <vector>

namespace qvej {

// A table name as messages have it: even an empty one can be seen.
[[nodiscard]] std::string visible(const std::string& tableName);

// "FILE:3:14"; only FILE when the place is not known.  `texts`: of the document; of several the
// place is in one of them.
[[nodiscard]] std::string spotText(const std::string& file, Spot spot,
                                   const std::vector<TextSource>& texts = {});

}  // namespace qvej
