// qvejmap check: is the document well formed?  And, when asked, what becomes of its values?
//
// Tested by tests/tool/golden/check.t and tests/tool/golden/account.t
#include "client/escape.h"
#include "formats/writer.h"
#include "tools/cli/reports/account_report.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

#include <algorithm>

namespace qvej::cli {

namespace {

void tellWellFormed(const Session& session) {
    std::vector<std::string> names;
    for (const TextSource& text : session.document().texts()) {
        names.push_back(text.name);
    }
    if (names.empty()) {
        names.push_back(session.name());
    }
    Writer out = standardOutput();
    for (const std::string& name : names) {
        out.append(shown(name));
        out.append(": well formed\n");
    }
    out.flush();
}

ExitCode checkAccount(const Options& options) {
    Account account;
    ExitCode code = DONE;
    {
        const Session session(options.reading, options.inputs, options.map,
                              {.partThreads = partThreads(options)});
        try {
            account = takeAccount(session.document(), each(session.document().tables()),
                                  options.retain, options.carry);
            code = session.skipped().exitCode();
        } catch (const Error& error) {
            session.failReading(error);
        }
    }
    return std::max(code, reportAccount(options, account));
}

}  // namespace

ExitCode runCheck(const Options& options) {
    if (options.account) {
        return checkAccount(options);
    }
    const Session session(options.reading, options.inputs, {},
                          {.partThreads = partThreads(options)});
    if (!options.quiet) {
        tellWellFormed(session);
    }
    return session.skipped().exitCode();
}

}  // namespace qvej::cli
