// Maps of a document that are more than what the engine writes: of some of its tables, and with
// numbers as texts where a double does not keep them.
//
// Tested by tests/tool/golden/map.t and tests/tool/golden/choice.t
#pragma once

#include "../document.h"
#include "map_model.h"

#include <string>
#include <vector>

namespace qvej {

// The automatic map of those tables, which are of document.tables().
[[nodiscard]] MapModel documentMap(const Document& document,
                                   const std::vector<const Table*>& tables);

// That map, and each column CHARACTER whose numbers a double does not keep.
struct ExactMap {
    MapModel map;
    std::vector<std::string> tooLong;  // columns with numbers that no column can hold in full
};
[[nodiscard]] ExactMap exactMap(const Document& document, const std::vector<const Table*>& tables);

}  // namespace qvej
