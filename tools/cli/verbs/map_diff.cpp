// qvejmap map diff: what one map has and another has not, a line for each difference.
//
// Tested by tests/tool/golden/map_diff.t
#include "client/maps/map_difference.h"
#include "formats/writer.h"
#include "tools/cli/maps/map_file.h"
#include "tools/cli/verbs/verbs.h"

namespace qvej::cli {

ExitCode runMapDiff(const Options& options) {
    const std::vector<MapModel> maps = readMapModels(options.operands);
    const std::vector<std::string> lines = mapDifferences(maps[0], maps[1]);
    Writer out = standardOutput();
    for (const std::string& line : lines) {
        out.append(line);
        out.put('\n');
    }
    out.flush();
    return lines.empty() ? DONE : DIFFERENT;
}

}  // namespace qvej::cli
