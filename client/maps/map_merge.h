// One map that holds all tables and columns of several.
//
// What the first map says stands.  Everything else is settled by rules that do not look at the
// order of the other maps; only the order of columns follows it.
//
// Tested by tests/tool/golden/map_merge.t and tests/tool/golden/map_merge_parts.t
#pragma once

#include "map_model.h"

#include <string>
#include <vector>

namespace qvej {

struct MergedMap {
    MapModel map;
    // Sentences on what is not as the maps have it: names that had to change, what a column cannot
    // have any more, names that tables share.
    std::vector<std::string> remarks;
};

// `maps`: one or more.
[[nodiscard]] MergedMap mergedMap(const std::vector<MapModel>& maps);

}  // namespace qvej
