// What is told of the rules of a shape.
//
// Tested by tests/tool/golden/shapes.t
#pragma once

#include "client/document.h"
#include "client/shape/reshaper.h"
#include "client/shape/shape.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qvej::cli {

// Names the rules that no path of the document matched, in one line; they may be mistyped.
void tellUnmatched(const std::string& file, const Shape& shape, const Document& document);

// Says when most of many tables of an automatic map come from names that are data, so that a shape
// would help, and names the object that has most of them.
void tellShapeHint(const std::vector<Table>& tables);

// How the values of the document became those of its shape, whose number is `values`.  Throws
// Failure when the numbers do not meet.
[[nodiscard]] std::string shapeLine(const ShapeCounts& counts, uint64_t values);

}  // namespace qvej::cli
