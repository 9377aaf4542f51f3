// What is worth knowing of a table, in a few words.
//
// Tested by tests/tool/golden/pictures.t
#pragma once

#include "tools/cli/survey.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qvej::cli {

// A sentence for each of: no primary key, rows without a parent, columns of mixed values, values
// that were overwritten or strayed.  `table`: its position in the schema.
[[nodiscard]] std::vector<std::string> marksOf(const Survey& survey, std::size_t table);

// Has it values of several kinds?
[[nodiscard]] inline bool isMixed(const Column& column, const Field& field) {
    return column.logicalType == LogicalType::MIXED && field.any;
}

// Has each row of the parent at most one here?
[[nodiscard]] inline bool isOneToOne(const TableSchema& table) {
    return table.parent && table.parent->one && table.parent->foreignKey;
}

}  // namespace qvej::cli
