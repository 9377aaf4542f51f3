// qvejmap convert: every table, as files, in one file or in a database.
//
// Tested by tests/tool/golden/convert.t and tests/tool/golden/interrupt.t
#include "client/error.h"
#include "client/pass_pipe.h"
#include "client/schema/schema.h"
#include "formats/cleanup.h"
#include "formats/destination.h"
#include "formats/output_work.h"
#include "formats/table_outputs.h"
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
#include "tools/cli/survey.h"
#include "tools/cli/verbs/folder_names.h"
#include "tools/cli/verbs/verbs.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace qvej::cli {

namespace {

std::string counted(uint64_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

uint64_t rowsOf(std::span<const PassItem> items) {
    return static_cast<uint64_t>(
        std::count_if(items.begin(), items.end(),
                      [](const PassItem& item) { return item.kind == PassItem::ROW; }));
}

// Bytes of memory for what is on its way to files: no large part of --memory.
std::size_t mostHeld(const Options& options) {
    const std::size_t most = options.format->mostHeld;
    return options.reading.memory ? std::min<std::size_t>(most, *options.reading.memory / 8) : most;
}

// Lets the threads that make the rows write them down, too, where that can be.
void writeRows(const Document& document, const std::vector<const Table*>& tables, TablePass& pass,
               const Destination& destination, TableOutputs& outputs, const SchemaBuilder* facts,
               unsigned threads, Progress& progress) {
    if (destination.makesPieces() && pass.works()) {
        const std::optional<const SchemaBuilder> noRows =
            facts == nullptr ? std::nullopt : std::optional<const SchemaBuilder>(*facts);
        pass.work(
            [&] {
                return std::make_unique<OutputWork>(document, tables, destination,
                                                    noRows ? &*noRows : nullptr);
            },
            [&](std::unique_ptr<RowResult> result) {
                auto& pieces = static_cast<OutputPieces&>(*result);
                outputs.take(pieces);
                progress.addRows(pieces.rows);
            });
        return;
    }
    runPass(pass, threads, [&](std::span<const PassItem> items) {
        outputs.take(items);
        progress.addRows(rowsOf(items));
    });
}

// `tables`: of the map, as chosen; ALLDATA comes besides.
ExitCode convert(const Options& options, const Session& session, std::vector<const Table*> tables) {
    const Document& document = session.document();
    const std::string shared = sharedNames(tables, document.naming(), options.reading.alldataName);
    if (options.alldata) {
        tables.push_back(&document.alldata());
    }
    std::optional<Schema> schema;
    if (options.format->typed) {
        schema = typesOf(session, tables, options);
    }
    const Sources sources = sourcesOf(options.inputs.files, options.map);
    const std::unique_ptr<Destination> destination = makeDestination(options, sources);
    destination->open(tables, schema ? &*schema : nullptr);
    Rejects rejects(options.rejects, options.force, sources, document.hasSourceColumn(),
                    destination.get());
    rejects.takeLines(session.skipped());
    std::optional<SchemaBuilder> facts;
    if (!schema) {
        SchemaOptions typesAndKeys = options.schema;
        typesAndKeys.counts = false;
        checkRoomForTypes(document, tables, typesAndKeys);
        facts.emplace(document, tables, typesAndKeys);
    }
    TableOutputs outputs(
        document, tables, *destination, mostHeld(options),
        [&](const Table& table) { return rejects.handlerFor(table); }, facts ? &*facts : nullptr);
    auto pass = std::make_unique<TablePass>(document, tables, options.retain, options.carry);
    if (options.formatOptions.packing == Packing::NONE) {  // a flush ends what is packed
        pass->flushInTime([&] { outputs.flush(); });
    }
    session.progress().begin(Progress::ROWS);
    writeRows(document, tables, *pass, *destination, outputs, facts ? &*facts : nullptr,
              options.threads, session.progress());
    session.progress().erase();
    outputs.end();
    RowLosses losses;
    uint64_t lost = 0;
    if (!options.account) {
        lost = options.alldata ? 0 : lostOf(document, *pass, tables);
        losses = rowLossesOf(*pass, tables);
    }
    pass.reset();  // what follows needs its memory
    if (!schema) {
        document.checkMemory("types and keys");
        schema = facts->end();
        facts.reset();
    }
    destination->end(*schema);
    rejects.commit(destination.get());
    std::vector<WrittenTable> written;
    uint64_t rows = 0;
    for (const TableSchema& table : schema->tables) {
        written.push_back({table.table, table.rows});
        rows += table.rows;
    }
    if (!options.quiet) {
        tellEach(destination->remarks());
        tell(counted(tables.size(), "table") + ", " + counted(rows, "row") + " in " +
             shownOutput(options));
        tellSchema(options, document, *schema);
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
        code = tellLost(session.name(), document, losses, lost);
    }
    tellSharedNames(session.mapName(), tables, *options.format);
    return std::max({code, rejects.tellAll(), session.skipped().exitCode()});
}

ExitCode convertAndAccount(const Options& options, Account& account) {
    std::optional<cleanup::Output> output(
        shownOutput(options));  // for a signal while the document is read
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
