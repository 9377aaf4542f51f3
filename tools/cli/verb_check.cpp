// qvejmap check: is the document well formed?
//
// Tested by tests/tool/golden/check.t
#include "tools/cli/escape.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs.h"
#include "tools/cli/writer.h"

ExitCode runCheck(const Options& options) {
    const Session session(options);
    if (options.quiet) {
        return DONE;
    }
    Writer out = standardOutput();
    out.append(shown(session.name()));
    out.append(": well formed\n");
    out.flush();
    return DONE;
}
