// qvejmap map merge: one map that holds all tables and columns of several.
//
// Tested by tests/tool/golden/map_merge.t and tests/tool/golden/map_merge_parts.t
#include "client/maps/map_merge.h"

#include "tools/cli/maps/map_file.h"
#include "tools/cli/maps/map_output.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/verbs/verbs.h"

namespace qvej::cli {

ExitCode runMapMerge(const Options& options) {
    Sources sources;
    for (const std::string& file : options.operands) {
        sources.push_back({file, "one of the maps to merge"});
    }
    checkMapOutput(options, sources);
    const MergedMap merged = mergedMap(readMapModels(options.operands));
    tellEach(merged.remarks);
    putMap(mapDocument(merged.map), options, sources);
    return DONE;
}

}  // namespace qvej::cli
