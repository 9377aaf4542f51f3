// See exact_map.h.
#include "client/maps/exact_map.h"

#include "client/text.h"

#include <unordered_map>
#include <utility>

namespace qvej {

namespace {

// Columns of each table that are in no map.
std::size_t columnsInFront(const Document& document) {
    return document.hasSourceColumn() ? 1 : 0;
}

}  // namespace

MapModel documentMap(const Document& document, const std::vector<const Table*>& tables) {
    MapModel all = mapModel(document.engine(), document.mapText(), document.tables(),
                            columnsInFront(document));
    MapModel map;
    for (const Table* table : tables) {
        map.push_back(std::move(all[static_cast<std::size_t>(table - document.tables().data())]));
    }
    return map;
}

ExactMap exactMap(const Document& document, const std::vector<const Table*>& tables) {
    ExactMap exact = {documentMap(document, tables), {}};
    std::unordered_map<std::string, uint64_t> longest;  // of the paths of such columns
    for (const PathStatistics& path : document.inexactPaths()) {
        longest.emplace(path.path, path.longest);
    }
    const std::size_t inFront = columnsInFront(document);
    for (std::size_t t = 0; t < exact.map.size(); ++t) {
        for (std::size_t c = 0; c < exact.map[t].columns.size(); ++c) {
            MapColumn& column = exact.map[t].columns[c];
            const auto found = longest.find(tables[t]->columns[inFront + c].path);
            if (column.type == ColumnType::NUMERIC && found != longest.end()) {
                column.type = ColumnType::CHARACTER;
                column.currentLength = found->second;
                if (found->second > kLongestCell) {
                    exact.tooLong.push_back(columnName(exact.map[t], column));
                }
            }
        }
    }
    return exact;
}

}  // namespace qvej
