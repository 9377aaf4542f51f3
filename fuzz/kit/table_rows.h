// The rows of tables as texts, once as Read gives them and once as a pass over many tables does.
// Used by the tests as well.
#pragma once

#include "qvejmapx.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace jmap::fuzz {

// ALLDATA and the tables of a map, `most` in all.
std::vector<JMAPTableh> tablesOf(QVEJMAPJsonContexth doc, QVMemPtr map,
                                 std::size_t most = SIZE_MAX);

// Requires that one pass over these tables gives for each of them the rows that Read gives for it
// alone, retaining and not, and that Read gives them again after a reset, but for what it keeps.
void requireSameRows(QVEJMAPJsonContexth doc, const std::vector<JMAPTableh>& tables);

}  // namespace jmap::fuzz
