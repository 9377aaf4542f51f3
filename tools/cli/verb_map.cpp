// qvejmap map: the automatic map as a JSON document, on standard output or in a file.
//
// Tested by tests/tool/golden/map.t
#include "tools/cli/map_output.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs.h"

ExitCode runMap(const Options& options) {
    const Session session(options);
    putMap(session.document().mapText(), options);
    return DONE;
}
