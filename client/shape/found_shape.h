// A shape that was found in a document, with the reason for each of its rules.
//
// Tested by tests/client/shape_finder_test.cpp
#pragma once

#include "shape.h"

#include <string>
#include <vector>

namespace qvej {

struct FoundRule {
    ShapeRule rule;
    std::string reason;  // a sentence in one line, safe to show
};

struct FoundShape {
    std::vector<FoundRule> rules;
    bool whole = false;  // it is of a whole document, which is well formed

    // The rules alone.
    [[nodiscard]] Shape shape() const;

    // A comment and a rule for each, as Shape::addText reads them.
    [[nodiscard]] std::string text() const;
};

}  // namespace qvej
