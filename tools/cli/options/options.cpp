// See options.h.
//
// All options belong to one command, so that they work in any position; which verb takes which is
// checked afterwards.
#include "tools/cli/options/options.h"

#include "client/escape.h"
#include "formats/writer.h"
#include "tools/cli/options/help.h"
#include "tools/cli/options/option_owners.h"
#include "tools/cli/options/option_values.h"
#include "tools/cli/verbs/verbs.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t kLongestAlldataName = 40;  // bytes
constexpr uint64_t kMostThreads = 1024;
constexpr uint64_t kLeastMemory = 32 << 20;  // of --memory

// The options as they are written, before they mean anything.
struct Raw {
    std::vector<std::string> words;
    std::string threads, limit, format = "csv", null, invalid = "error", ordinals, depth, maxPaths,
                                keepFree, memory, debug;
};

uint64_t countOr(uint64_t otherwise, const CLI::App& app, const char* option,
                 const std::string& text) {
    if (app.count(option) == 0) {
        return otherwise;
    }
    const std::optional<uint64_t> count = parseCount(text);
    if (!count) {
        usageError(std::string(option) + ": " + inQuotes(text) + " is not a whole number");
    }
    return *count;
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

// It stands in the file as it is, without quotes.
void checkNull(const std::string& text, const Format& format) {
    if (format.name != "csv") {
        usageError("--null: " + std::string(format.name) + " has a null of its own");
    }
    if (text.find_first_of(",\"") != std::string::npos || shown(text) != text) {
        usageError("--null: " + inQuotes(text) +
                   " has a comma, a quote or a character that cannot be shown");
    }
}

// Which words are the verb, which its operands.
void placeWords(const std::vector<std::string>& words, Options& options) {
    const FoundVerb found = findVerb(words);
    if (found.verb == nullptr) {
        usageError(words.empty() ? std::string("there is no verb")
                                 : "no verb is named " + inQuotes(words.front()));
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
        usageError(name + ": " + inQuotes(rest[verb.most]) + " is one word too many");
    }
    options.verb = &verb;
    options.operands = std::move(rest);
}

void checkOwners(const CLI::App& app, const Options& options) {
    for (const Owner& owner : optionOwners()) {
        if (owner.refused && app.count(owner.option) != 0 && !owns(*options.verb, owner)) {
            usageError(std::string(owner.option) + " belongs to " + std::string(owner.verbs) +
                       ", not to " + std::string(options.verb->name));
        }
    }
}

void declare(CLI::App& app, Options& o, Raw& raw) {
    app.add_option("words", raw.words)->group("");
    const std::string ofTables = "Options of tables";
    app.add_flag("--names", o.names, "bare names, one a line")->group(ofTables);
    app.add_flag("--columns", o.columns,
                 "a line a column: table, column, type, length in bytes, path")
        ->group(ofTables);
    app.add_option("-o,--output", o.out,
                   "map: file to write; convert: directory, made when missing")
        ->type_name("OUT")
        ->group("Options of map and convert");
    app.add_flag("--exact", o.exact,
                 "map: columns with numbers that a double does not keep are CHARACTER")
        ->group("Options of map and convert");
    app.add_flag("--alldata", o.alldata, "convert: ALLDATA too (every value with its full path)")
        ->group("Options of map and convert");
    app.add_option("--threads", raw.threads,
                   "at most N threads (default: as many as there are cores)")
        ->type_name("N")
        ->group("Options of convert");
    app.add_option("--limit", raw.limit, "at most N rows")
        ->type_name("N")
        ->group("Options of read");

    app.add_flag("--account", o.account,
                 "count what becomes of every value, and tell which are in\nno cell (exit code 1)")
        ->group("Options of convert and check");

    const std::string rows = "Rows and tables";
    app.add_option("--map", o.map,
                   "use this map in place of the automatic one (check takes\nit with --account)")
        ->type_name("FILE")
        ->group(rows);
    app.add_option("--rejects", o.rejects,
                   "a line of CSV for each value that its column\ncannot take")
        ->type_name("FILE")
        ->group(rows);
    app.add_option("--format", raw.format, "csv (default) or ndjson")
        ->type_name("NAME")
        ->group(rows);
    app.add_option("--null", raw.null,
                   "CSV: what stands for null and for no value (default:\n"
                   "nothing, as for an empty text)")
        ->type_name("TEXT")
        ->group(rows);
    app.add_option("--ordinals", raw.ordinals,
                   "levels of ordinal columns, 0 for none (default: all)")
        ->type_name("N")
        ->group(rows);
    app.add_option("--alldata-name", o.alldataName, "name of the table ALLDATA")
        ->type_name("NAME")
        ->group(rows);
    app.add_flag("--retain", o.retain, "columns keep their value from row to row")->group(rows);

    const std::string reading = "Reading the document";
    app.add_flag("--lines", o.lines,
                 "JSON Lines: a value in each line, no more and no less, or\nnothing (default: by "
                 "the name, .jsonl or .ndjson)")
        ->group(reading);
    app.add_option("--encoding", o.encoding,
                   "encoding of FILE, any that ICU names (default: auto, by\na byte order mark or "
                   "zero bytes, else UTF-8)")
        ->type_name("NAME")
        ->group(reading);
    app.add_option("--invalid", raw.invalid,
                   "bytes that are wrong in the encoding: error (default), or\nreplace, by U+FFFD")
        ->type_name("WAY")
        ->group(reading);
    app.add_option("--depth", raw.depth, "deepest nesting allowed, 0 for any (default: 1000)")
        ->type_name("N")
        ->group(reading);
    app.add_option("--max-paths", raw.maxPaths,
                   "most distinct paths, 0 for any (default: 10000000)")
        ->type_name("N")
        ->group(reading);
    app.add_flag("--compress", o.compress, "keep the records compressed")->group(reading);
    app.add_option("--memory", raw.memory, "memory to use (default: what the machine has free)")
        ->type_name("SIZE")
        ->group(reading);
    app.add_option("--keep-free", raw.keepFree,
                   "memory to leave free; below it records go to a file\n"
                   "(default: half of --memory, else an eighth of what is free)")
        ->type_name("SIZE")
        ->group(reading);
    app.add_option("--cache", o.cache,
                   "the file for such records; it stays (default: a private\none in $TMPDIR or "
                   "/tmp, removed)")
        ->type_name("FILE")
        ->group(reading);

    const std::string general = "General";
    app.add_option(
           "--debug", raw.debug,
           "notes of the engine: MAP, READ, COMPRESSION, ALL, ...; \"-MAP\"\nleaves one out")
        ->type_name("KEYWORDS")
        ->group(general);
    app.add_flag("--force", o.force, "replace existing files")->group(general);
    app.add_flag("-q,--quiet", o.quiet, "no summary; what is lost is still said")->group(general);
    app.set_help_flag("-h,--help", "this page; with VERB only what that verb takes")
        ->group(general);
    app.set_version_flag("--version", "qvejmap " QVEJMAP_VERSION, "the version")->group(general);
}

void print(const std::string& text) {
    Writer out = standardOutput();
    out.append(text);
    out.flush();
}

void translate(const CLI::App& app, const Raw& raw, Options& o) {
    o.limit = countOr(o.limit, app, "--limit", raw.limit);
    o.ordinals = countOr(o.ordinals, app, "--ordinals", raw.ordinals);
    o.depth = countOr(o.depth, app, "--depth", raw.depth);
    o.maxPaths = countOr(o.maxPaths, app, "--max-paths", raw.maxPaths);
    const uint64_t threads =
        countOr(std::max(1U, std::thread::hardware_concurrency()), app, "--threads", raw.threads);
    if (threads == 0) {
        usageError("--threads: must be more than 0");
    }
    o.threads = static_cast<unsigned>(std::min<uint64_t>(threads, kMostThreads));
    o.keepFree = sizeOf(app, "--keep-free", raw.keepFree);
    o.memory = sizeOf(app, "--memory", raw.memory);
    o.debug = debugString(raw.debug);
    o.format = findFormat(raw.format);
    if (o.format == nullptr) {
        usageError("--format: " + inQuotes(raw.format) + " is none of " + formatNames());
    }
    if (app.count("--null") != 0) {
        checkNull(raw.null, *o.format);
        o.formatOptions.null = raw.null;
    }
    o.replaceInvalid = raw.invalid == "replace";
    if (!o.replaceInvalid && raw.invalid != "error") {
        usageError("--invalid: " + inQuotes(raw.invalid) + " is none of error, replace");
    }
    if (o.memory && *o.memory < kLeastMemory) {
        usageError("--memory: at least 32M are needed");
    }
    if (o.alldataName.size() > kLongestAlldataName) {
        usageError("--alldata-name: at most 40 bytes");
    }
    if (o.names && o.columns) {
        usageError("--names and --columns exclude each other");
    }
    const std::pair<const char*, const std::string&> files[] = {
        {"--output", o.out}, {"--cache", o.cache}, {"--map", o.map}, {"--rejects", o.rejects}};
    for (const auto& [option, name] : files) {
        if (app.count(option) != 0 && name.empty()) {
            usageError(std::string(option) + ": the name is empty");
        }
    }
    if (o.rejects == "-") {
        usageError("--rejects: must be a file, standard output has the rows");
    }
    if (o.map == "-" && o.operands[0] == "-") {
        usageError("FILE and --map cannot both be standard input");
    }
    if (o.verb->name == "check" && !o.account && !o.map.empty()) {
        usageError("check: --map needs --account; map check says whether a map fits a document");
    }
    if (o.verb->name == "convert" && o.out.empty()) {
        usageError("convert: -o DIR is missing");
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
    placeWords(raw.words, options);
    checkOwners(app, options);
    translate(app, raw, options);
    return options;
}
