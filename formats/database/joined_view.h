// A table beside those of which each of its rows has at most one: as one view.
//
// Tested by tests/formats/databases.py
#pragma once

#include "formats/database/database_tables.h"

#include <string>
#include <vector>

namespace qvej {

// The one-to-one children of each table, by its position.
[[nodiscard]] std::vector<std::vector<std::size_t>> oneToOneChildren(const Schema& schema);

// SELECT ... of all columns of the table and of its one-to-one children, and theirs; ordinals only
// of the table itself.  A column of a child whose name is taken gets the child's name in front.
// Empty: the view would have more tables or columns than `limits` allows.
[[nodiscard]] std::string joinedSelect(const Schema& schema, const std::vector<TargetTable>& tables,
                                       const std::vector<std::vector<std::size_t>>& children,
                                       std::size_t table, const DatabaseLimits& limits);

}  // namespace qvej
