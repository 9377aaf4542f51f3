// See options.h.
//
// All options belong to one command, so that they work in any position; which verb takes which is
// checked afterwards.
#include "tools/cli/options/options.h"

#include "client/escape.h"
#include "client/suggestion.h"
#include "formats/conversion_target.h"
#include "formats/writer.h"
#include "tools/cli/options/completion.h"
#include "tools/cli/options/help.h"
#include "tools/cli/options/man_page.h"
#include "tools/cli/options/option_owners.h"
#include "tools/cli/options/option_values.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/verbs/verbs.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>

#include <algorithm>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace qvej::cli {

namespace {

constexpr std::size_t kLongestAlldataName = 40;  // bytes
constexpr uint64_t kMostThreads = 1024;

// Of --memory.  Measured with a release build, by the peak of the process: 14 MB for a document of
// some kilobytes; with orders of 20 MB at this bound, so that records spill, 22 MB for check,
// tables and map, 25 MB with --account, 26 MB for records, 28 to 33 MB for convert.
constexpr uint64_t kLeastMemory = 32 << 20;

// For the scripts of the shells and for the build.  Help does not list them.
constexpr const char* kComplete = "--complete";
constexpr const char* kManPage = "--man-page";

// The options as they are written, before they mean anything.
struct Raw {
    std::vector<std::string> words, paths;
    std::string threads, limit, invalid = "error", ordinals, depth, maxPaths, keepFree, memory,
                                debug, naming, progress;
    RawOutput output;
};

uint64_t countOr(uint64_t otherwise, const CLI::App& app, const char* option,
                 const std::string& text) {
    return app.count(option) == 0 ? otherwise : countOf(option, text);
}

std::optional<uint64_t> sizeOf(const CLI::App& app, const char* option, const std::string& text) {
    if (app.count(option) == 0) {
        return std::nullopt;
    }
    const std::optional<uint64_t> size = parseSize(text);
    if (!size) {
        usageError(std::string(option) + ": " + inQuotes(text) +
                   " is not a size such as 500000, 64K, 100M or 2G");
    }
    return size;
}

Naming namingOf(const std::string& text) {
    if (text != "map" && text != "original") {
        usageError("--naming: " + inQuotes(text) + " is none of map, original");
    }
    return text == "map" ? Naming::MAP : Naming::ORIGINAL;
}

std::vector<PathPattern> pathsOf(const std::vector<std::string>& texts) {
    std::vector<PathPattern> paths;
    for (const std::string& text : texts) {
        try {
            paths.push_back(PathPattern::parse(text));
        } catch (const PatternMistake& mistake) {
            usageError("--path: " + inQuotes(text) + ", column " + std::to_string(mistake.at + 1) +
                       ": " + mistake.what);
        }
    }
    return paths;
}

// The names of the verbs that begin with `prefix`.
std::vector<std::string> verbNames(std::string_view prefix = {}) {
    std::vector<std::string> names;
    for (const Verb& verb : allVerbs()) {
        if (verb.name.starts_with(prefix)) {
            names.emplace_back(verb.name);
        }
    }
    return names;
}

// None of the words is a verb: names the one that looks most like one, else the first.
[[noreturn]] void refuseWords(const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        const std::string hint = suggestion(word, verbNames());
        if (!hint.empty()) {
            usageError("no verb is named " + inQuotes(word) + hint);
        }
    }
    usageError(words.empty() ? std::string("there is no verb")
                             : "no verb is named " + inQuotes(words.front()));
}

// Which words are the verb, which its operands.
void placeWords(const std::vector<std::string>& words, Options& options) {
    const FoundVerb found = findVerb(words);
    if (found.verb == nullptr) {
        refuseWords(words);
    }
    const Verb& verb = *found.verb;
    const std::string name(verb.name);
    const auto begin = words.begin() + static_cast<std::ptrdiff_t>(found.at);
    std::vector<std::string> rest(words.begin(), begin);
    rest.insert(rest.end(), begin + static_cast<std::ptrdiff_t>(found.count), words.end());
    if (!rest.empty() && findVerb({rest[0]}).verb != nullptr) {
        usageError("there are two verbs, " + name + " and " + rest[0] +
                   "; a file of that name is ./" + rest[0]);
    }
    if (rest.size() < verb.least) {
        usageError(name + ": " + operandName(verb, rest.size()) + " is missing");
    }
    if (rest.size() > verb.most) {
        usageError(name + ": " + inQuotes(rest[verb.most]) + " is one word too many" +
                   suggestion(name + " " + rest[0], verbNames(name + " ")));
    }
    const std::string other =
        rest.size() > 1 && takesInputs(verb) && ::access(rest[0].c_str(), F_OK) != 0
            ? suggestion(name + " " + rest[0], verbNames(name + " "))
            : std::string();
    if (!other.empty()) {
        usageError(name + ": no file is named " + inQuotes(rest[0]) + other);
    }
    for (std::size_t i = 0; i < rest.size(); ++i) {
        // The name of a table may be empty.
        if (rest[i].empty() && !operandName(verb, i).starts_with("TABLE")) {
            usageError(name + ": the name of " + operandName(verb, i) + " is empty");
        }
    }
    options.verb = &verb;
    options.operands = std::move(rest);
}

void checkOwners(const CLI::App& app, const Options& options) {
    for (const Owner& owner : optionOwners()) {
        if (app.count(owner.option) != 0 && !owns(*options.verb, owner)) {
            usageError(std::string(owner.option) + " belongs to " + std::string(owner.verbs) +
                       ", not to " + std::string(options.verb->name));
        }
    }
}

// What looks like an option and is none.
void refuseUnknown(const CLI::App& app) {
    if (app.remaining().empty()) {
        return;
    }
    const std::string given = app.remaining()[0].substr(0, app.remaining()[0].find('='));
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            if (!option->get_group().empty()) {
                names.push_back("--" + name);
            }
        }
    }
    usageError("no option is named " + inQuotes(given) + suggestion(given, names));
}

// The page of the verb that the words name, and of all verbs when there are none.
std::string helpOn(CLI::App& app, const std::vector<std::string>& words) {
    const FoundVerb found = findVerb(words);
    if (found.count != words.size()) {
        std::string name;
        for (const std::string& word : words) {
            name += (name.empty() ? "" : " ") + word;
        }
        usageError("no verb is named " + inQuotes(name) + suggestion(name, verbNames()));
    }
    return helpText(app, found.verb);
}

// The name of an option's type is what help shows, and what completion.cpp offers: words in lower
// case divided by "|" are the values that there are, FILE and the like are files.
void declare(CLI::App& app, Options& o, Raw& raw) {
    app.allow_extras();  // refuseUnknown() names them better
    app.add_option("words", raw.words)->group("");
    const std::string ofTables = "Options of tables";
    app.add_flag("--names", o.names, "bare names, one a line")->group(ofTables);
    app.add_flag("--columns", o.columns,
                 "a line a column: table, column, type, length in bytes, path")
        ->group(ofTables);
    const std::string ofFiles = "Options of map, shape, convert, report and diagram";
    app.add_option("-o,--output", o.out,
                   "map: file to write; shape: file to write; report: file to write, such as "
                   "report.html; diagram: file to write, such as tables.svg; convert: a directory, "
                   "made when "
                   "missing, or a file "
                   "NAME.sqlite, .db, .xlsx or of one table .parquet, .arrow, or "
                   "postgresql://HOST/DATABASE")
        ->type_name("OUT")
        ->group(ofFiles);
    app.add_flag("--exact", o.exact,
                 "map: columns with numbers that a double does not keep are CHARACTER")
        ->group(ofFiles);
    app.add_flag("--compact", o.compact, "map: all in one line, without blanks")->group(ofFiles);
    app.add_flag("--verbose", o.verbose, "map check: list every column that is left out")
        ->group(ofFiles);
    app.add_flag("--alldata", o.alldata, "convert: ALLDATA too (every value with its full path)")
        ->group(ofFiles);
    app.add_flag(
           "--per-file", o.perFile,
           "a directory OUT/NAME for each input, as if each were converted alone (default: all "
           "inputs are one data set, with a column source)")
        ->group("Options of convert");
    app.add_option("--threads", raw.threads,
                   "at most N threads (default: as many as there are cores)")
        ->type_name("N")
        ->group("Options of convert");
    const std::string ofRead = "Options of read and find";
    app.add_option("--limit", raw.limit, "read: at most N rows; find: at most N matches")
        ->type_name("N")
        ->group(ofRead);
    app.add_option("--value", o.value,
                   "find: values whose whole text this is: of a string what it stands for, else as "
                   "the document has it")
        ->type_name("TEXT")
        ->group(ofRead);
    app.add_option("--regex", o.regex, "find: values in whose text this regular expression matches")
        ->type_name("RE")
        ->group(ofRead);
    app.add_flag("--ignore-case", o.ignoreCase, "find: --value and --regex in any case")
        ->group(ofRead);

    app.add_flag("--account", o.account,
                 "count what becomes of every value, and tell which are in no cell (exit code 1)")
        ->group("Options of convert and check");

    const std::string rows = "Rows and tables";
    app.add_option("--table", o.tables,
                   "only tables with names like this; * stands for any characters, ? for one "
                   "(may be given again)")
        ->type_name("GLOB")
        ->group(rows)
        ->allow_extra_args(false);
    app.add_option("--path", raw.paths,
                   "only tables, or values, with paths like this, as /root/**/items; * stands for "
                   "one name, ** for any number (may be given again)")
        ->type_name("PATTERN")
        ->group(rows)
        ->allow_extra_args(false);
    app.add_option("--map", o.map,
                   "use this map in place of the automatic one (check takes it with --account)")
        ->type_name("FILE")
        ->group(rows);
    app.add_option("--rejects", o.rejects,
                   "a line of CSV for each value that its column cannot take")
        ->type_name("FILE")
        ->group(rows);
    app.add_option("--ordinals", raw.ordinals,
                   "keep the N deepest ordinal columns of each table (default: all); "
                   "0: none, 1: orders_items has ordinal_items alone")
        ->type_name("N")
        ->group(rows);
    app.add_option("--alldata-name", o.reading.alldataName, "name of the table ALLDATA")
        ->type_name("NAME")
        ->group(rows);
    app.add_option("--naming", raw.naming,
                   "names of tables and columns: those of the map (default),\nor original, the "
                   "document's own")
        ->type_name("map|original")
        ->group(rows);
    app.add_flag("--retain", o.retain,
                 "columns keep their value from row to row (check takes it with --account)")
        ->group(rows);
    app.add_flag("--carry", o.carry,
                 "a column of a parent has the value of the row's own parent, wherever it stands "
                 "(check takes it with --account)")
        ->group(rows);

    declareOutputOptions(app, raw.output, o);

    const std::string reading = "Reading the document";
    app.add_flag("--lines", o.reading.text.lines,
                 "JSON Lines: a value in each line, no more and no less, or nothing (default: by "
                 "the name, .jsonl or .ndjson, or the first values)")
        ->group(reading);
    app.add_flag("--skip-bad-lines", o.reading.skipBadLines,
                 "JSON Lines: leave out lines that are no JSON, and tell (exit code 1); --rejects "
                 "lists them")
        ->group(reading);
    app.add_flag("--skip-bad-files", o.reading.skipBadFiles,
                 "leave out files that cannot be read or are not well formed, and tell (exit code "
                 "1)")
        ->group(reading);
    app.add_option("--encoding", o.reading.text.encoding,
                   "encoding of FILE, any that ICU names (default: auto, by a byte order mark or "
                   "zero bytes, else UTF-8)")
        ->type_name("NAME")
        ->group(reading);
    app.add_option("--invalid", raw.invalid,
                   "bytes that are wrong in the encoding: error (default), or replace, by U+FFFD")
        ->type_name("error|replace")
        ->group(reading);
    app.add_option("--depth", raw.depth, "deepest nesting allowed, 0 for any (default: 1000)")
        ->type_name("N")
        ->group(reading);
    app.add_option("--max-paths", raw.maxPaths,
                   "most distinct paths, 0 for any (default: 10000000)")
        ->type_name("N")
        ->group(reading);
    app.add_flag("--compress", o.reading.compress, "keep the records compressed")->group(reading);
    app.add_option("--memory", raw.memory, "memory to use (default: what the machine has free)")
        ->type_name("SIZE")
        ->group(reading);
    app.add_option("--keep-free", raw.keepFree,
                   "memory to leave free; below it records go to a file "
                   "(default: half of --memory, else an eighth of what is free)")
        ->type_name("SIZE")
        ->group(reading);
    app.add_option("--cache", o.reading.cache,
                   "a new or empty file for such records; it stays (default: a private one in "
                   "$TMPDIR or /tmp, removed)")
        ->type_name("FILE")
        ->group(reading);

    declareShapeOptions(app);

    const std::string general = "General";
    app.add_option("--debug", raw.debug,
                   "notes of the engine: MAP, READ, COMPRESSION, ALL, ...; \"-MAP\" leaves one out")
        ->type_name("KEYWORDS")
        ->group(general);
    app.add_flag("--force", o.force,
                 "replace existing files, and remove those of an earlier convert")
        ->group(general);
    app.add_flag("--plan", o.reading.plan,
                 "say on standard error how the rows come about: in one walk over the text, in two "
                 "readings, or from records")
        ->group(general);
    app.add_option("--progress", raw.progress,
                   "json: a line of JSON a second on standard error, for programs (default: a line "
                   "that says how far it is, on a terminal and after a second; neither with -q)")
        ->type_name("json")
        ->group(general);
    app.add_flag("-q,--quiet", o.quiet, "no summary; what is lost is still said")->group(general);
    app.set_help_flag("-h,--help", "the verbs and options; with VERB what that verb takes")
        ->group(general);
    app.set_version_flag("--version", "qvejmap " QVEJMAP_VERSION, "the version")->group(general);
    app.add_flag(kComplete)->group("");
    app.add_flag(kManPage)->group("");
}

void print(const std::string& text) {
    Writer out = standardOutput();
    out.append(text);
    out.flush();
}

ProgressForm progressOf(const CLI::App& app, const Raw& raw, const Options& o) {
    if (app.count("--progress") != 0 && raw.progress != "json") {
        usageError("--progress: " + inQuotes(raw.progress) + " is none of json");
    }
    if (o.quiet) {
        return ProgressForm::NONE;
    }
    return app.count("--progress") != 0   ? ProgressForm::JSON
           : ::isatty(STDERR_FILENO) == 1 ? ProgressForm::LINE
                                          : ProgressForm::NONE;
}

void translate(const CLI::App& app, const Raw& raw, Options& o) {
    o.paths = pathsOf(raw.paths);
    o.limit = countOr(o.limit, app, "--limit", raw.limit);
    o.reading.ordinals = countOr(o.reading.ordinals, app, "--ordinals", raw.ordinals);
    o.reading.depth = countOr(o.reading.depth, app, "--depth", raw.depth);
    o.reading.maxPaths = countOr(o.reading.maxPaths, app, "--max-paths", raw.maxPaths);
    const uint64_t threads =
        countOr(std::max(1U, std::thread::hardware_concurrency()), app, "--threads", raw.threads);
    if (threads == 0) {
        usageError("--threads: must be more than 0");
    }
    o.threads = static_cast<unsigned>(std::min<uint64_t>(threads, kMostThreads));
    o.reading.shape = readShapeOptions(app, o.verb->name == "shape");
    o.reading.keepFree = sizeOf(app, "--keep-free", raw.keepFree);
    o.reading.memory = sizeOf(app, "--memory", raw.memory);
    o.reading.debug = debugString(raw.debug);
    o.reading.progress = progressOf(app, raw, o);
    readOutputOptions(app, raw.output, o);
    o.reading.text.late = o.reading.skipBadLines;
    o.reading.text.replaceInvalid = raw.invalid == "replace";
    if (!o.reading.text.replaceInvalid && raw.invalid != "error") {
        usageError("--invalid: " + inQuotes(raw.invalid) + " is none of error, replace");
    }
    if (app.count("--naming") != 0) {
        o.reading.naming = namingOf(raw.naming);
    }
    if (o.reading.memory && *o.reading.memory < kLeastMemory) {
        usageError("--memory: at least 32M are needed");
    }
    if (o.reading.alldataName.size() > kLongestAlldataName) {
        usageError("--alldata-name: at most 40 bytes");
    }
    if (o.names && o.columns) {
        usageError("--names and --columns exclude each other");
    }
    if (o.json && (o.names || o.columns)) {
        usageError(std::string(o.names ? "--names" : "--columns") +
                   " and --format json exclude each other");
    }
    const std::pair<const char*, const std::string&> files[] = {{"--output", o.out},
                                                                {"--cache", o.reading.cache},
                                                                {"--map", o.map},
                                                                {"--rejects", o.rejects}};
    for (const auto& [option, name] : files) {
        if (app.count(option) != 0 && name.empty()) {
            usageError(std::string(option) + ": the name is empty");
        }
    }
    if (o.rejects == "-") {
        usageError("--rejects: must be a file, standard output has the rows");
    }
    const auto standardInputs = std::count(o.operands.begin(), o.operands.end(), "-");
    if (o.map == "-" && standardInputs != 0) {
        usageError("FILE and --map cannot both be standard input");
    }
    if (takesInputs(*o.verb) && standardInputs > 1) {
        usageError("only one FILE can be standard input");
    }
    const std::vector<std::string>& shapes = o.reading.shape.sources;
    const auto inputs = std::count(shapes.begin(), shapes.end(), "-");
    const auto others = standardInputs + (o.map == "-" ? 1 : 0);
    if (inputs != 0 && inputs + others > 1) {
        usageError("only one of --shape and the other files can be standard input");
    }
    if (o.verb->name == "check" && !o.account && !o.map.empty()) {
        usageError("check: --map needs --account; map check says whether a map fits a document");
    }
    if (o.verb->name == "check" && !o.account && o.retain) {
        usageError("check: --retain needs --account");
    }
    if (o.verb->name == "check" && !o.account && o.carry) {
        usageError("check: --carry needs --account");
    }
    if (o.value && o.regex) {
        usageError("--value and --regex exclude each other");
    }
    if (o.ignoreCase && !o.value && !o.regex) {
        usageError("--ignore-case needs --value or --regex");
    }
    if (o.verb->name == "find" && o.paths.empty() && !o.value && !o.regex) {
        usageError("find: --path, --value or --regex is missing");
    }
    if (o.perFile && placeOf(o.out, *o.format) != OutputPlace::DIRECTORY) {
        usageError("--per-file: -o must be a directory of files");
    }
    if (o.perFile && (!o.rejects.empty() || !o.reading.cache.empty())) {
        usageError("--per-file: neither --rejects nor --cache can be for several documents");
    }
    if ((o.verb->name == "convert" || o.verb->name == "report") && o.out.empty()) {
        usageError(std::string(o.verb->name) + ": -o OUT is missing");
    }
}

}  // namespace

Options readOptions(int argc, char** argv) {
    Options options;
    Raw raw;
    CLI::App app;
    declare(app, options, raw);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        print(helpText(app, findVerb(raw.words).verb));
        return {};
    } catch (const CLI::CallForVersion& version) {
        print(std::string(version.what()) + "\n");
        return {};
    } catch (const CLI::ParseError& error) {
        usageError(error.what());
    }
    if (app.count(kComplete) != 0) {
        print(completions(app, raw.words));
        return {};
    }
    refuseUnknown(app);
    if (app.count(kManPage) != 0) {
        print(manPage(app));
        return {};
    }
    if (!raw.words.empty() && raw.words[0] == "help") {
        print(helpOn(app, {raw.words.begin() + 1, raw.words.end()}));
        return {};
    }
    placeWords(raw.words, options);
    checkOwners(app, options);
    translate(app, raw, options);
    if (takesInputs(*options.verb)) {
        options.inputs = inputList(options.operands);
        options.reading.several = options.inputs.several;
        const std::vector<std::string>& outputs = options.inputs.outputs;
        if (!outputs.empty() && !options.quiet) {
            tell(std::to_string(outputs.size()) +
                 (outputs.size() == 1 ? " file of an earlier convert is"
                                      : " files of an earlier convert are") +
                 " left out, the first " + outputs.front());
        }
    }
    options.sources = sourcesOf(
        takesInputs(*options.verb) ? options.inputs.files : std::vector{options.operands[0]},
        options.map, options.reading.shape.files());
    return options;
}

}  // namespace qvej::cli
