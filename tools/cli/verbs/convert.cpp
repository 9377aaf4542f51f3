// qvejmap convert: every table in a file of its own.
//
// Tested by tests/tool/golden/convert.t and tests/tool/golden/interrupt.t
#include "client/error.h"
#include "client/pass_pipe.h"
#include "formats/cleanup.h"
#include "formats/file_names.h"
#include "formats/output_files.h"
#include "formats/table_directory.h"
#include "formats/table_outputs.h"
#include "tools/cli/choice.h"
#include "tools/cli/failure.h"
#include "tools/cli/reports/account_report.h"
#include "tools/cli/reports/changed_names.h"
#include "tools/cli/reports/rejects.h"
#include "tools/cli/reports/remarks.h"
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

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

// The options that shape what is written.
std::vector<std::string> wordsOf(const Options& options) {
    const ReadingOptions standard;
    const ReadingOptions& reading = options.reading;
    std::vector<std::string> words;
    const auto add = [&](bool given, const std::string& word) {
        if (given) {
            words.push_back(word);
        }
    };
    add(true, "--format=" + std::string(options.format->name));
    add(options.formatOptions.null.has_value(),
        "--null=" + options.formatOptions.null.value_or(""));
    for (const std::string& glob : options.tables) {
        add(true, "--table=" + glob);
    }
    for (const PathPattern& pattern : options.paths) {
        add(true, "--path=" + pattern.text());
    }
    add(options.alldata, "--alldata");
    add(reading.alldataName != standard.alldataName, "--alldata-name=" + reading.alldataName);
    add(reading.naming == Naming::ORIGINAL, "--naming=original");
    add(!options.map.empty(), "--map=" + options.map);
    add(options.retain, "--retain");
    add(options.carry, "--carry");
    add(reading.ordinals != standard.ordinals, "--ordinals=" + std::to_string(reading.ordinals));
    const std::vector<std::string> shape = cli::wordsOf(reading.shape);
    words.insert(words.end(), shape.begin(), shape.end());
    add(reading.text.lines, "--lines");
    add(reading.skipBadLines, "--skip-bad-lines");
    add(reading.skipBadFiles, "--skip-bad-files");
    add(reading.text.encoding != standard.text.encoding, "--encoding=" + reading.text.encoding);
    add(reading.text.replaceInvalid, "--invalid=replace");
    return words;
}

uint64_t rowsOf(std::span<const PassItem> items) {
    return static_cast<uint64_t>(
        std::count_if(items.begin(), items.end(),
                      [](const PassItem& item) { return item.kind == PassItem::ROW; }));
}

// `tables`: of the map, as chosen; ALLDATA comes besides.
ExitCode convert(const Options& options, const Session& session, std::vector<const Table*> tables) {
    const Document& document = session.document();
    const std::string shared = sharedNames(tables, document.naming(), options.reading.alldataName);
    if (options.alldata) {
        tables.push_back(&document.alldata());
    }
    const Sources sources = sourcesOf(options.inputs.files, options.map);
    TableDirectory directory(options.out, *options.format, options.formatOptions, options.force,
                             sources,
                             {QVEJMAP_VERSION, joined(options.operands), wordsOf(options),
                              document.naming() == Naming::ORIGINAL});
    directory.open(tables);
    Rejects rejects(options.rejects, options.force, sources, &directory);
    rejects.takeLines(session.skipped());
    TableOutputs outputs(document, tables, directory,
                         [&](const Table& table) { return rejects.handlerFor(table); });
    TablePass pass(document, tables, options.retain, options.carry);
    runPass(pass, options.threads, [&](std::span<const PassItem> items) {
        outputs.take(items);
        session.progress().addRows(rowsOf(items));
    });
    session.progress().erase();
    outputs.end();
    std::vector<WrittenTable> written;
    uint64_t rows = 0;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        written.push_back({tables[i], outputs.rows(i)});
        rows += outputs.rows(i);
    }
    rejects.commit(&directory);
    if (!directory.earlierKnown() && !options.quiet) {
        tell(options.out + " had no " + kPackageFile +
             " of qvejmap: files were replaced by name, and no others removed");
    }
    if (!options.quiet) {
        tell(counted(tables.size(), "table") + ", " + counted(rows, "row") + " in " + options.out);
    }
    if (directory.cutNames() != 0 && !options.quiet) {
        tell(counted(directory.cutNames(), "file name") + " cut to " +
             std::to_string(kLongestFileName) + " bytes: " + kPackageFile +
             " has the names of the tables");
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
        const uint64_t lost = options.alldata ? 0 : lostOf(document, pass, tables);
        code = tellLost(session.name(), document, rowLossesOf(pass, tables), lost);
    }
    tellSharedNames(session.mapName(), tables, *options.format);
    return std::max({code, rejects.tellAll(), session.skipped().exitCode()});
}

// What need not wait for the document.
void checkOutput(const Options& options) {
    if (options.out == "-") {
        throw Failure(WRONG_USAGE,
                      "-o -: convert writes files into a directory (./- for one of that name); "
                      "qvejmap read prints a table");
    }
    OutputFiles::checkDirectory(options.out);
    if (!options.rejects.empty()) {
        OutputFiles::checkFile(options.rejects, options.force,
                               sourcesOf(options.inputs.files, options.map), options.out);
    }
}

ExitCode convertAndAccount(const Options& options, Account& account) {
    std::optional<cleanup::Output> output(options.out);  // for a signal while the document is read
    const Session session(options.reading, options.inputs, options.map,
                          {.keepBadLines = !options.rejects.empty()});
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
