// The options that give the rules of a shape.
//
// Tested by tests/tool/golden/shapes.t
#pragma once

#include "client/shape/finder_options.h"
#include "client/shape/shape.h"

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qvej::cli {

// How a document's rows are to be drawn.  The rules of the files come first.
struct ShapeOptions {
    std::vector<std::string> sources;  // files of rules, or "auto": those that are found
    Shape rules;                       // those that are options themselves, in their order
    FinderOptions finding;             // of "auto"

    [[nodiscard]] bool empty() const { return sources.empty() && rules.empty(); }
    [[nodiscard]] bool finds() const;                      // is "auto" among the sources?
    [[nodiscard]] std::vector<std::string> files() const;  // the other sources
};

void declareShapeOptions(CLI::App& app);

// After the parse; the rules are in the order in which they were given.  `finds`: the verb finds a
// shape anyway.  Throws a Failure (WRONG_USAGE).
[[nodiscard]] ShapeOptions readShapeOptions(const CLI::App& app, bool finds);

// The options as they could be given.
[[nodiscard]] std::vector<std::string> wordsOf(const ShapeOptions& options);

// All rules; `find` gives those of "auto".  Throws Error: a file that cannot be read, a mistake in
// it.
[[nodiscard]] Shape shapeOf(const ShapeOptions& options, const std::function<Shape()>& find);

}  // namespace qvej::cli
