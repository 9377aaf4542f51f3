// See shape_report.h.
#include "tools/cli/reports/shape_report.h"

#include "client/escape.h"
#include "tools/cli/failure.h"
#include "tools/cli/reports/tell.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace qvej::cli {

namespace {

constexpr char kSeparator = '\x02';
constexpr std::size_t kMostRules = 5;    // of those that never matched
constexpr std::size_t kManyTables = 50;  // fewer can be read through
constexpr uint64_t kManyNames = 20;      // of tables below one object: few objects have so many

}  // namespace

void tellUnmatched(const std::string& file, const Shape& shape, const Document& document) {
    std::string rules;
    std::size_t count = 0;
    for (std::size_t i = 0; i < shape.rules().size(); ++i) {
        if (!document.reshaper()->matched()[i] && count++ < kMostRules) {
            rules += (count == 1 ? ": " : ", ") + shape.rules()[i].text();
        }
    }
    if (count > kMostRules) {
        rules += " and " + withCommas(count - kMostRules) + " more";
    }
    if (count != 0) {
        tell(file + ": " + std::to_string(count) +
             (count == 1 ? " rule of the shape never matched"
                         : " rules of the shape never matched") +
             rules);
    }
}

void tellShapeHint(const std::vector<Table>& tables) {
    if (tables.size() < kManyTables) {
        return;
    }
    struct Parent {
        uint64_t names = 0;   // of members that are or hold tables
        uint64_t tables = 0;  // at any depth
    };
    std::unordered_map<std::string, Parent> parents;
    for (const Table& table : tables) {
        std::string path = table.path();
        bool isNew = parents.try_emplace(path).second;
        while (isNew && path.find(kSeparator, 1) != path.npos) {
            path.resize(path.rfind(kSeparator));
            const auto [parent, parentIsNew] = parents.try_emplace(path);
            ++parent->second.names;
            isNew = parentIsNew;
        }
    }
    uint64_t fromData = 0;
    for (const Table& table : tables) {
        const std::string path = table.path();
        for (std::size_t at = path.find(kSeparator, 1); at != path.npos;
             at = path.find(kSeparator, at + 1)) {
            const auto parent = parents.find(path.substr(0, at));
            if (parent != parents.end() && parent->second.names >= kManyNames) {
                ++parent->second.tables;
                ++fromData;
                break;
            }
        }
    }
    if (fromData * 2 <= tables.size()) {
        return;
    }
    const auto most =
        std::max_element(parents.begin(), parents.end(), [](const auto& a, const auto& b) {
            return std::pair(a.second.tables, b.first) < std::pair(b.second.tables, a.first);
        });
    tell(withCommas(tables.size()) + " tables, most of them from names that are data, such as " +
         escaped(withSlashes(most->first)) + " (" + withCommas(most->second.names) +
         " names): try --shape auto");
}

std::string shapeLine(const ShapeCounts& counts, uint64_t values) {
    if (counts.values + counts.names + counts.texts != values + counts.leftOut + counts.inTexts) {
        throw Failure(LIMIT_REACHED,
                      "the account of the shape does not add up; please report this");
    }
    return std::to_string(values) + (values == 1 ? " value = " : " values = ") +
           std::to_string(counts.values) + " of the document + " + std::to_string(counts.names) +
           " from names + " + std::to_string(counts.texts) +
           (counts.texts == 1 ? " text - " : " texts - ") + std::to_string(counts.inTexts) +
           " within texts - " + std::to_string(counts.leftOut) + " left out by drop and only";
}

}  // namespace qvej::cli
