// See verbs.h.
#include "tools/cli/verbs/verbs.h"

#include <algorithm>

namespace qvej::cli {

namespace {

constexpr Verb kVerbs[] = {
    {"tables", "FILE...", "list the tables; on a terminal, as a tree", 1, SIZE_MAX, runTables},
    {"map", "FILE... [-o OUT]", "print the map of tables and columns as JSON", 1, SIZE_MAX, runMap},
    {"map check", "MAP [FILE]", "is a map well formed? does it fit FILE?", 1, 2, runMapCheck},
    {"map diff", "A B", "what one map has and another has not", 2, 2, runMapDiff},
    {"map merge", "A B... [-o OUT]", "one map of all tables and columns of several", 2, SIZE_MAX,
     runMapMerge},
    {"map explain", "FILE TABLE.COLUMN", "why a column is what it is, with places", 2, 2,
     runMapExplain},
    {"read", "FILE TABLE", "print the rows of a table (name, path, ALLDATA)", 2, 2, runRead},
    {"convert", "FILE... -o OUT", "write every table: files, SQLite, Parquet, ...", 1, SIZE_MAX,
     runConvert},
    {"report", "FILE... -o OUT", "one page of HTML: picture, columns, rows", 1, SIZE_MAX,
     runReport},
    {"diagram", "FILE... [-o OUT]", "the tables and their keys as a picture", 1, SIZE_MAX,
     runDiagram},
    {"find", "FILE...", "where values are: line, column, path, value", 1, SIZE_MAX, runFind},
    {"records", "FILE", "print every record: kind, path, value", 1, 1, runRecords},
    {"shape", "FILE [-o OUT]", "print the shape that suits it, as rules", 1, 1, runShape},
    {"check", "FILE...", "is it well formed? --account: where values go", 1, SIZE_MAX, runCheck},
    {"completion", "bash|zsh|fish", "print the completion of a shell", 1, 1, runCompletion},
};

const Verb* verbNamed(std::string_view name) {
    const auto* found = std::find_if(std::begin(kVerbs), std::end(kVerbs),
                                     [&](const Verb& v) { return v.name == name; });
    return found == std::end(kVerbs) ? nullptr : found;
}

}  // namespace

std::span<const Verb> allVerbs() {
    return kVerbs;
}

FoundVerb findVerb(const std::vector<std::string>& words) {
    for (std::size_t at = 0; at < words.size(); ++at) {
        if (at + 1 < words.size()) {
            const Verb* two = verbNamed(words[at] + " " + words[at + 1]);
            if (two != nullptr) {
                return {two, at, 2};
            }
        }
        const Verb* one = verbNamed(words[at]);
        if (one != nullptr) {
            return {one, at, 1};
        }
    }
    return {nullptr, 0, 0};
}

std::string operandName(const Verb& verb, std::size_t index) {
    std::string_view rest = verb.arguments;
    // "B..." is every further one as well.
    for (; index != 0 && !rest.substr(0, rest.find(' ')).ends_with("..."); --index) {
        rest.remove_prefix(rest.find(' ') + 1);
    }
    rest.remove_prefix(rest.starts_with('[') ? 1 : 0);
    return std::string(rest.substr(0, rest.find_first_of(" .]")));
}

}  // namespace qvej::cli
