// qvejmap map: the automatic map as a JSON document, on standard output or in a file.
//
// Tested by tests/tool/golden/map.t
#include "client/engine.h"
#include "tools/cli/map_model.h"
#include "tools/cli/map_output.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs.h"

#include <unordered_map>

namespace {

// The map with every column CHARACTER whose numbers a double does not keep.
std::string exactMap(const qvej::Document& document) {
    std::unordered_map<std::string, uint64_t> longest;  // of the paths of such columns
    for (const qvej::PathStatistics& path : document.pathStatistics()) {
        if (path.inexact != 0) {
            longest.emplace(path.path, path.longest);
        }
    }
    qvej::Engine engine;
    MapModel map = mapModel(engine, document.mapText(), document.tables());
    for (std::size_t t = 0; t < map.size(); ++t) {
        for (std::size_t c = 0; c < map[t].columns.size(); ++c) {
            MapColumn& column = map[t].columns[c];
            const auto found = longest.find(document.tables()[t].columns[c].path);
            if (column.type == qvej::ColumnType::NUMERIC && found != longest.end()) {
                column.type = qvej::ColumnType::CHARACTER;
                column.currentLength = found->second;
            }
        }
    }
    return mapDocument(map);
}

}  // namespace

ExitCode runMap(const Options& options) {
    const Session session(options);
    const qvej::Document& document = session.document();
    putMap(options.exact ? exactMap(document) : document.mapText(), options, session.name());
    return DONE;
}
