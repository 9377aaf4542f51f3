// qvejmap check: is the document well formed?  And, when asked, what becomes of its values?
//
// Tested by tests/tool/golden/check.t and tests/tool/golden/account.t
#include "client/escape.h"
#include "client/find/table_choice.h"
#include "formats/writer.h"
#include "tools/cli/counted_input.h"
#include "tools/cli/reports/account_report.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace qvej::cli {

namespace {

void tellWellFormed(const std::vector<std::string>& names) {
    Writer out = standardOutput();
    for (const std::string& name : names) {
        out.append(shown(name));
        out.append(": well formed\n");
    }
    out.flush();
}

std::vector<std::string> namesOf(const Session& session) {
    std::vector<std::string> names;
    for (const TextSource& text : session.document().texts()) {
        names.push_back(text.name);
    }
    if (names.empty()) {
        names.push_back(session.name());
    }
    return names;
}

// Options that are about more than the text: its values, its paths, and what the records of it
// take.
bool asksForTheScan(const ReadingOptions& options) {
    return !options.shape.empty() || !options.debug.empty() || !options.cache.empty() ||
           options.compress || options.keepFree || options.memory ||
           options.maxPaths != ReadingOptions().maxPaths;
}

// The parser alone, over one text after the other: nothing is kept of them.
class TextChecks {
   public:
    explicit TextChecks(const ReadingOptions& options) : options_(options) {}

    // The names of those that are well formed.  Throws the first mistake, or AllBad.
    std::vector<std::string> run(const InputList& inputs) {
        Progress progress(options_.progress, bytesOf(inputs.files));
        std::vector<std::string> names;
        for (const std::string& file : inputs.files) {
            const auto open = [&] { return counted(ByteSource::file(file), progress); };
            const auto onBad = [&](const std::string& name, const BadLine& line) {
                skipped_.takeLine(name, line);
            };
            std::string name;
            const std::optional<Error> mistake = mistakeOf(options_, engine_, open, onBad, &name);
            if (!mistake) {
                names.push_back(name);
            } else if (!options_.skipBadFiles) {
                throw Error(*mistake);
            } else if (names.empty() && &file == &inputs.files.back()) {
                throw AllBad(*mistake);
            } else {
                skipped_.takeFile(*mistake);
            }
        }
        progress.erase();
        skipped_.tellLines();
        return names;
    }

    [[nodiscard]] const Skipped& skipped() const { return skipped_; }

   private:
    const ReadingOptions& options_;
    Engine engine_;
    Skipped skipped_;
};

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
    if (asksForTheScan(options.reading)) {
        const Session session(options.reading, options.inputs);
        if (!options.quiet) {
            tellWellFormed(namesOf(session));
        }
        return session.skipped().exitCode();
    }
    TextChecks checks(options.reading);
    const std::vector<std::string> names = checks.run(options.inputs);
    if (!options.quiet) {
        tellWellFormed(names);
    }
    return checks.skipped().exitCode();
}

}  // namespace qvej::cli
