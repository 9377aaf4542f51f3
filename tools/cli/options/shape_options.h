// The options that give the rules of a shape.
//
// Tested by tests/tool/golden/shapes.t
#pragma once

#include "client/shape/shape.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qvej::cli {

// How a document's rows are to be drawn.  The rules of the files come first.
struct ShapeOptions {
    std::vector<std::string> sources;  // files of rules
    Shape rules;                       // those that are options themselves, in their order

    [[nodiscard]] bool empty() const { return sources.empty() && rules.empty(); }
};

void declareShapeOptions(CLI::App& app);

// After the parse; the rules are in the order in which they were given.  Throws a Failure
// (WRONG_USAGE).
[[nodiscard]] ShapeOptions readShapeOptions(const CLI::App& app);

// The options as they could be given.
[[nodiscard]] std::vector<std::string> wordsOf(const ShapeOptions& options);

// All rules.  Throws Error: a file that cannot be read, a mistake in it.
[[nodiscard]] Shape shapeOf(const ShapeOptions& options);

}  // namespace qvej::cli
