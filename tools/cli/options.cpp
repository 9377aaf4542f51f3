// See options.h.
//
// All options belong to one command, so that they work in any position; which verb takes which is
// checked afterwards.
#include "tools/cli/options.h"

#include "tools/cli/failure.h"
#include "tools/cli/verbs.h"
#include "tools/cli/writer.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <limits>
#include <vector>

namespace {

constexpr std::size_t kLongestAlldataName = 40;  // bytes

// What may stand between the commas of the engine's keyword string; each but ALL also with "-".
constexpr std::string_view kDebugKeywords[] = {
    "RLMEM",  "MAP",        "MAPGEN", "MAPVAL",   "LEVEL",     "PARSE",   "PATH",    "COMPRESSION",
    "MEMORY", "INSERTPATH", "READ",   "READINIT", "READRESET", "USERMAP", "ALLDATA", "ALL"};

constexpr std::string_view kUsage =
    "Reads a JSON document and presents it as tables.\n"
    "\n"
    "Usage: qvejmap VERB FILE [OPTIONS]\n"
    "\n"
    "Verbs:\n";

constexpr std::string_view kNotes =
    "FILE may be \"-\" for standard input.  SIZE is a number of bytes, or of 1024 bytes and its\n"
    "powers with K, M, G or T.  Options work in any position.  A file that is named like a verb "
    "is\n"
    "written ./map.\n"
    "\n"
    "Exit codes: 0 done, 2 wrong usage, 3 not valid JSON, 4 no such table or trouble with the "
    "map,\n"
    "5 trouble with a file, 6 a limit was reached.\n";

[[noreturn]] void usageError(const std::string& what) {
    throw Failure(WRONG_USAGE, what + " (qvejmap --help tells more)");
}

std::string inQuotes(std::string_view text) {
    return "'" + std::string(text) + "'";
}

std::optional<uint64_t> parseCount(std::string_view text) {
    uint64_t count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(count) : std::nullopt;
}

// The options as they are written, before they mean anything.
struct Raw {
    std::vector<std::string> words;
    std::string limit, format = "csv", ordinals, depth, keepFree, memory, debug;
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

// "map,-read" as ",MAP,-READ,".
std::string debugString(std::string_view keywords) {
    std::string result = ",";
    while (!keywords.empty()) {
        const std::size_t comma = keywords.find(',');
        std::string word(keywords.substr(0, comma));
        keywords.remove_prefix(comma == std::string_view::npos ? keywords.size() : comma + 1);
        if (word.empty()) {
            continue;
        }
        const std::string given = word;
        for (char& c : word) {
            c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        }
        const std::string_view name = std::string_view(word).substr(word[0] == '-' ? 1 : 0);
        const bool known = std::find(std::begin(kDebugKeywords), std::end(kDebugKeywords), name) !=
                           std::end(kDebugKeywords);
        if (!known || word == "-ALL") {
            std::string all;
            for (const std::string_view keyword : kDebugKeywords) {
                all += (all.empty() ? "" : ", ") + std::string(keyword);
            }
            usageError("--debug: " + inQuotes(given) + " is none of " + all);
        }
        result += word + ",";
    }
    return result == "," ? std::string() : result;
}

// Which word is the verb, which the file, which the table.
void placeWords(const std::vector<std::string>& words, Options& options) {
    auto verb = std::find_if(words.begin(), words.end(),
                             [](const std::string& word) { return findVerb(word) != nullptr; });
    if (verb == words.end()) {
        usageError(words.empty() ? std::string("there is no verb")
                                 : "no verb is named " + inQuotes(words.front()));
    }
    options.verb = findVerb(*verb);
    std::vector<std::string> rest(words.begin(), verb);
    rest.insert(rest.end(), verb + 1, words.end());

    const std::string name(options.verb->name);
    if (rest.empty()) {
        usageError(name + ": FILE is missing");
    }
    if (findVerb(rest[0]) != nullptr) {
        usageError("there are two verbs, " + name + " and " + rest[0] +
                   "; a file of that name is ./" + rest[0]);
    }
    options.file = rest[0];
    const std::size_t wanted = options.verb->takesTable ? 2 : 1;
    if (rest.size() < wanted) {
        usageError(name + ": TABLE is missing");
    }
    if (rest.size() > wanted) {
        usageError(name + ": " + inQuotes(rest[wanted]) + " is one word too many");
    }
    options.table = options.verb->takesTable ? rest[1] : std::string();
}

// Options that belong to some verbs.  The others refuse them, or pass over them: then they may be
// given to all verbs alike.
struct Owner {
    const char* option;
    std::string_view verbs;
    bool refused;
};
constexpr Owner kOwners[] = {
    {"--names", "tables", true},
    {"--columns", "tables", true},
    {"--output", "map, convert", true},
    {"--alldata", "convert", true},
    {"--limit", "read", true},
    {"--format", "read, convert", false},
    {"--retain", "read, convert", false},
    {"--ordinals", "tables, map, read, convert", false},
    {"--alldata-name", "tables, read, convert", false},
    {"--quiet", "tables, convert, check", false},
};

bool owns(std::string_view verb, const Owner& owner) {
    return owner.verbs.find(verb) != std::string_view::npos;
}

void checkOwners(const CLI::App& app, const Options& options) {
    for (const Owner& owner : kOwners) {
        if (owner.refused && app.count(owner.option) != 0 && !owns(options.verb->name, owner)) {
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
    app.add_flag("--alldata", o.alldata, "convert: ALLDATA too (every value with its full path)")
        ->group("Options of map and convert");
    app.add_option("--limit", raw.limit, "at most N rows")
        ->type_name("N")
        ->group("Options of read");

    const std::string rows = "Rows and tables";
    app.add_option("--format", raw.format, "csv (default) or ndjson")
        ->type_name("NAME")
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
    app.add_option("--encoding", o.encoding,
                   "encoding of FILE (default: UTF-8); any that ICU names")
        ->type_name("NAME")
        ->group(reading);
    app.add_option("--depth", raw.depth, "deepest nesting allowed, 0 for any (default: 1000)")
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

std::string listVerbs() {
    std::string text;
    for (const Verb& verb : allVerbs()) {
        std::string call = "  " + std::string(verb.name) + " " + std::string(verb.arguments);
        call.resize(std::max<std::size_t>(call.size() + 1, 26), ' ');
        text += call + std::string(verb.purpose) + "\n";
    }
    return text;
}

// The part of "map: a file; convert: a directory" that is for the verb.
std::string purposeFor(const std::string& verb, const std::string& purpose) {
    const std::size_t at = purpose.find(verb + ": ");
    if (at == std::string::npos) {
        return purpose;
    }
    const std::size_t start = at + verb.size() + 2;
    return purpose.substr(start, purpose.find(';', start) - start);
}

// Leaves what belongs to the verb.
void keepOptionsOf(const Verb& verb, CLI::App& app) {
    const std::string name(verb.name);
    for (const Owner& owner : kOwners) {
        CLI::Option& option = *app.get_option(owner.option);
        if (!owns(name, owner)) {
            option.group("");
        } else if (owner.refused) {
            option.group("Options of " + name);
            option.description(purposeFor(name, option.get_description()));
        }
    }
}

// The page of the verb among the words, or the one with all verbs and options.
std::string helpText(CLI::App& app, const std::vector<std::string>& words) {
    const Verb* verb = nullptr;
    for (auto word = words.begin(); word != words.end() && verb == nullptr; ++word) {
        verb = findVerb(*word);
    }
    std::string text;
    if (verb != nullptr) {
        const std::string name(verb->name);
        text = "qvejmap " + name + ": " + std::string(verb->purpose) + "\n\nUsage: qvejmap " +
               name + " " + std::string(verb->arguments) + " [OPTIONS]\n";
        keepOptionsOf(*verb, app);
    } else {
        text = std::string(kUsage) + listVerbs();
    }
    CLI::Formatter formatter;
    formatter.column_width(26);
    text += formatter.make_groups(&app, CLI::AppFormatMode::Normal);
    for (std::size_t gap = text.find("\n\n\n"); gap != std::string::npos;
         gap = text.find("\n\n\n")) {
        text.erase(gap, 1);
    }
    return text + "\n" + std::string(kNotes);
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
    o.keepFree = sizeOf(app, "--keep-free", raw.keepFree);
    o.memory = sizeOf(app, "--memory", raw.memory);
    o.debug = debugString(raw.debug);
    o.format = findFormat(raw.format);
    if (o.format == nullptr) {
        usageError("--format: " + inQuotes(raw.format) + " is none of " + formatNames());
    }
    if (o.memory == uint64_t{0}) {
        usageError("--memory: must be more than 0");
    }
    if (o.alldataName.size() > kLongestAlldataName) {
        usageError("--alldata-name: at most 40 bytes");
    }
    if (o.names && o.columns) {
        usageError("--names and --columns exclude each other");
    }
    if (app.count("--output") != 0 && o.out.empty()) {
        usageError("--output: the name is empty");
    }
    if (app.count("--cache") != 0 && o.cache.empty()) {
        usageError("--cache: the name is empty");
    }
    if (o.verb->name == "convert" && o.out.empty()) {
        usageError("convert: -o DIR is missing");
    }
}

}  // namespace

std::optional<uint64_t> parseSize(std::string_view text) {
    unsigned shift = 0;
    if (!text.empty()) {
        switch (text.back()) {
            case 'K':
            case 'k':
                shift = 10;
                break;
            case 'M':
            case 'm':
                shift = 20;
                break;
            case 'G':
            case 'g':
                shift = 30;
                break;
            case 'T':
            case 't':
                shift = 40;
                break;
            default:
                break;
        }
    }
    text.remove_suffix(shift == 0 ? 0 : 1);
    const std::optional<uint64_t> count = parseCount(text);
    if (!count || *count > std::numeric_limits<uint64_t>::max() >> shift) {
        return std::nullopt;
    }
    return *count << shift;
}

Options readOptions(int argc, char** argv) {
    Options options;
    Raw raw;
    CLI::App app;
    declare(app, options, raw);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        print(helpText(app, raw.words));
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
