// qvejmap map explain: why a column of a map is what it is.
//
// Tested by tests/tool/golden/map_explain.t
#include "client/maps/column_explanation.h"
#include "formats/writer.h"
#include "tools/cli/reports/listing.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

namespace qvej::cli {

ExitCode runMapExplain(const Options& options) {
    const Session session(options.reading, options.operands[0], options.map);
    const ColumnExplanation explanation =
        explainedColumn(session.document(), options.operands[1], session.name(), session.mapName());
    Writer out = standardOutput();
    for (const std::string& line : explanation.lines) {
        out.append(line + "\n");
    }
    print(out, explanation.rows);
    out.flush();
    return DONE;
}

}  // namespace qvej::cli
