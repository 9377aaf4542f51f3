// qvejmap check: is the document well formed?  And, when asked, what becomes of its values?
//
// Tested by tests/tool/golden/check.t and tests/tool/golden/account.t
#include "client/escape.h"
#include "formats/writer.h"
#include "tools/cli/reports/account_report.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

namespace qvej::cli {

namespace {

void tellWellFormed(const Session& session) {
    Writer out = standardOutput();
    out.append(shown(session.name()));
    out.append(": well formed\n");
    out.flush();
}

ExitCode checkAccount(const Options& options) {
    std::vector<PathAccount> accounts;
    std::vector<Spot> starts;
    {
        const Session session(options.reading, options.operands[0], options.map);
        try {
            accounts = accountOf(session.document(), options.retain);
        } catch (const Error& error) {
            session.failReading(error);
        }
        starts = startsOf(session.document(), accounts);
    }
    return reportAccount(options, accounts, starts);
}

}  // namespace

ExitCode runCheck(const Options& options) {
    if (options.account) {
        return checkAccount(options);
    }
    const Session session(options.reading, options.operands[0]);
    if (!options.quiet) {
        tellWellFormed(session);
    }
    return DONE;
}

}  // namespace qvej::cli
