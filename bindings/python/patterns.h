// Patterns of paths as a person writes them.
#pragma once

#include "client/error.h"
#include "client/shape/path_pattern.h"

#include <string>
#include <vector>

namespace qvej::python {

// Throws Error: a mistake in one.
[[nodiscard]] inline std::vector<PathPattern> patternsOf(const std::vector<std::string>& texts) {
    std::vector<PathPattern> patterns;
    for (const std::string& text : texts) {
        try {
            patterns.push_back(PathPattern::parse(text));
        } catch (const PatternMistake& mistake) {
            throw Error(QV_BADPARMS, text + ": " + mistake.what);
        }
    }
    return patterns;
}

}  // namespace qvej::python
