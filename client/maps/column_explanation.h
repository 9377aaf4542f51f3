// Why a column of a map is what it is, and where in the document that was seen.
//
// Tested by tests/client/maps_test.cpp and tests/tool/golden/map_explain.t
#pragma once

#include "../document.h"

#include <string>
#include <vector>

namespace qvej {

// All of it is safe to print.
struct ColumnExplanation {
    std::vector<std::string> lines;
    // Kinds of values with their counts and first places, below a row of heads; empty: the column
    // counts.
    std::vector<std::vector<std::string>> rows;

    // Lines with their ends, the fields of rows separated by TABs.
    [[nodiscard]] std::string text() const;
};

// `wanted`: "TABLE.COLUMN", letters in any case.  `name`: what places call the document, `mapName`
// the user's map, when there is one.  Throws JMAP_NOTABLE when there is no such column, with
// names that look like it.
[[nodiscard]] ColumnExplanation explainedColumn(const Document& document, const std::string& wanted,
                                                const std::string& name,
                                                const std::string& mapName = "the map");

}  // namespace qvej
