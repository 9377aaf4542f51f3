// qvejmap convert: every table, as files, in one file or in a database.
//
// Tested by tests/tool/golden/convert.t and tests/tool/golden/interrupt.t
#include "client/error.h"
#include "client/schema/schema.h"
#include "formats/cleanup.h"
#include "formats/conversion.h"
#include "tools/cli/choice.h"
#include "tools/cli/failure.h"
#include "tools/cli/outputs.h"
#include "tools/cli/plan.h"
#include "tools/cli/reports/account_report.h"
#include "tools/cli/reports/changed_names.h"
#include "tools/cli/reports/rejects.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/schema_report.h"
#include "tools/cli/reports/shape_report.h"
#include "tools/cli/reports/skipped.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/folder_names.h"
#include "tools/cli/verbs/verbs.h"

#include <algorithm>
#include <optional>

namespace qvej::cli {

namespace {

std::string counted(uint64_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// Shows how far a conversion is.
void show(Progress& progress, ConversionPhase phase) {
    if (phase == ConversionPhase::END) {
        progress.erase();
    } else {
        progress.begin(phase == ConversionPhase::TYPES ? Progress::TYPES : Progress::ROWS);
    }
}

// `tables`: of the map, as chosen; ALLDATA comes besides.
ExitCode convert(const Options& options, const Session& session, std::vector<const Table*> tables) {
    const Document& document = session.document();
    const std::string shared = sharedNames(tables, document.naming(), options.reading.alldataName);
    if (options.alldata) {
        tables.push_back(&document.alldata());
    }
    const ConversionTarget target = targetOf(options);
    Progress& progress = session.progress();
    TableConversion conversion(document, tables, target,
                               {.retain = options.retain,
                                .carry = options.carry,
                                .threads = options.threads,
                                .memory = options.reading.memory.value_or(0),
                                .schema = options.schema,
                                .losses = !options.account,
                                .onPhase = [&](ConversionPhase phase) { show(progress, phase); },
                                .onRows = [&](uint64_t rows) { progress.addRows(rows); }});
    Destination& destination = conversion.destination();
    Rejects rejects(options.rejects, options.force, target.sources, document.hasSourceColumn(),
                    &destination);
    rejects.takeLines(session.skipped());
    conversion.write([&](const Table& table) { return rejects.handlerFor(table); });
    rejects.commit(&destination);
    const Schema& schema = conversion.schema();
    std::vector<WrittenTable> written;
    uint64_t rows = 0;
    for (const TableSchema& table : schema.tables) {
        written.push_back({table.table, table.rows});
        rows += table.rows;
    }
    if (!options.quiet) {
        tellEach(destination.remarks());
        tell(counted(tables.size(), "table") + ", " + counted(rows, "row") + " in " +
             target.name());
        tellSchema(options, document, schema);
    }
    if (!shared.empty() && !options.quiet) {
        tell(shared);
    }
    if (!options.quiet) {
        tellSourceNames(document, tables, kSourceColumn);
    }
    if (shapeMayHelp(options)) {
        tellShapeHint(document.tables());
    }
    if (namesMayDiffer(options)) {
        tellChangedNames(session.name(), tables);
    }
    tellLosses(session.name(), document, written);
    ExitCode code = DONE;
    if (!options.account) {
        code = tellLost(session.name(), document, conversion.losses(), conversion.lost());
    }
    tellSharedNames(session.mapName(), tables, *options.format);
    return std::max({code, rejects.tellAll(), session.skipped().exitCode()});
}

ExitCode convertAndAccount(const Options& options, Account& account) {
    std::optional<cleanup::Output> output(
        targetOf(options).name());  // for a signal while the document is read
    const Session session(options.reading, options.inputs, options.map,
                          {.keepBadLines = !options.rejects.empty(),
                           .partThreads = partThreads(options),
                           .notStreamed = whyNotStreamed(options)});
    output.reset();
    const std::vector<const Table*> tables = chosenTables(options, session.document().tables());
    if (session.map() != nullptr && !options.quiet) {
        tellMapOddities(session.map()->name(), tables);
        if (!options.carry) {
            tellParents(session.map()->name(), tables);
        }
    }
    try {
        const ExitCode code = convert(options, session, tables);
        if (options.account) {
            account = takeAccount(session.document(), tables, options.retain, options.carry);
        }
        return code;
    } catch (const Error& error) {
        session.failReading(error);
    }
}

ExitCode convertAll(const Options& options) {
    Account account;
    const ExitCode code = convertAndAccount(options, account);
    return options.account ? std::max(code, reportAccount(options, account)) : code;
}

// What --per-file makes of the options: one for each input.
std::vector<Options> optionsOfFiles(const Options& options) {
    std::vector<Options> all;
    const std::vector<std::string> names = folderNames(options.inputs.files);
    for (std::size_t i = 0; i < names.size(); ++i) {
        Options& one = all.emplace_back(options);
        one.operands = {options.inputs.files[i]};
        one.inputs = {one.operands, false};
        one.out += "/" + names[i];
    }
    return all;
}

}  // namespace

ExitCode runConvert(const Options& options) {
    checkOutput(options);
    if (!options.perFile) {
        return convertAll(options);
    }
    const std::vector<Options> files = optionsOfFiles(options);
    for (const Options& file : files) {
        checkOutput(file);
    }
    ExitCode code = DONE;
    Skipped skipped;
    bool good = false;
    for (const Options& file : files) {
        try {
            code = std::max(code, convertAll(file));
            good = true;
        } catch (const AllBad& mistake) {
            if (!good && &file == &files.back()) {
                throw;
            }
            skipped.takeFile(mistake);
        }
    }
    return std::max(code, skipped.exitCode());
}

}  // namespace qvej::cli
