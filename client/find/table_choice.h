// Some of the tables of a document, by name or path.
//
// Tested by tests/tool/golden/choice.t
#pragma once

#include "../document.h"
#include "../shape/path_pattern.h"

#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// A table is chosen when a part of the choice is like its name or path; all are when there is none.
struct TableChoice {
    std::vector<std::string> names;  // letters in any case; "*": any characters, "?": one
    std::vector<PathPattern> paths;
};

// Those of `tables` that are chosen, in their order.  Throws JMAP_NOTABLE when a part of the choice
// chooses none, with names that look like it, or with `advice` when none does.
[[nodiscard]] std::vector<const Table*> chosenTables(const TableChoice& choice,
                                                     const std::vector<Table>& tables,
                                                     std::string_view advice = {});

// The tables at a path, which is written as a pattern or as the path of a table is shown.
[[nodiscard]] std::vector<const Table*> tablesAt(const std::string& path,
                                                 const std::vector<Table>& tables);

}  // namespace qvej
