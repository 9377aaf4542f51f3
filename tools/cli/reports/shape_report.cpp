// See shape_report.h.
#include "tools/cli/reports/shape_report.h"

#include "client/escape.h"
#include "client/shape/reshaper.h"
#include "tools/cli/failure.h"
#include "tools/cli/reports/tell.h"

#include <vector>

namespace qvej::cli {

void tellUnmatched(const std::string& file, const Shape& shape, const Document& document) {
    std::string rules;
    std::size_t count = 0;
    for (std::size_t i = 0; i < shape.rules().size(); ++i) {
        if (!document.reshaper()->matched()[i]) {
            rules += (count++ == 0 ? ": " : ", ") + shape.rules()[i].text();
        }
    }
    if (count != 0) {
        tell(file + ": " + std::to_string(count) +
             (count == 1 ? " rule of the shape matches" : " rules of the shape match") +
             " no path of the document" + rules);
    }
}

std::string shapeAccount(const Document& document, uint64_t values) {
    if (document.reshaper() == nullptr) {
        return {};
    }
    const ShapeCounts& counts = document.reshaper()->counts();
    if (counts.values + counts.names + counts.texts != values + counts.leftOut + counts.inTexts) {
        throw Failure(LIMIT_REACHED,
                      "the account of the shape does not add up; please report this");
    }
    const auto some = [](uint64_t count, const char* what) { return std::to_string(count) + what; };
    return some(values, values == 1 ? " value = " : " values = ") +
           some(counts.values, " of the document + ") +
           some(counts.names, " names that became values + ") + some(counts.texts, " texts - ") +
           some(counts.inTexts, " in these texts - ") +
           some(counts.leftOut, " left out by drop and only\n");
}

}  // namespace qvej::cli
