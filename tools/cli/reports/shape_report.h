// What is told of the rules of a shape.
//
// Tested by tests/tool/reshape.py
#pragma once

#include "client/document.h"
#include "client/shape/shape.h"

#include <cstdint>
#include <string>

namespace qvej::cli {

// Names the rules that no path of the document matched, in one line; they may be mistyped.
void tellUnmatched(const std::string& file, const Shape& shape, const Document& document);

// How the values of the document became those of the shape, whose number is `values`.  Empty: the
// document has no shape.  Throws Failure when the numbers do not meet.
[[nodiscard]] std::string shapeAccount(const Document& document, uint64_t values);

}  // namespace qvej::cli
