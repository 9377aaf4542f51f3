// See verbs.h.
#include "tools/cli/verbs.h"

#include <algorithm>

namespace {

constexpr Verb kVerbs[] = {
    {"tables", "FILE", "list the tables: name, number of columns, path", false, runTables},
    {"map", "FILE [-o OUT]", "print the map of tables and columns as JSON", false, runMap},
    {"read", "FILE TABLE", "print the rows of one table (or of ALLDATA)", true, runRead},
    {"convert", "FILE -o DIR", "write every table to a file of its own", false, runConvert},
    {"records", "FILE", "print every record: kind, path, value", false, runRecords},
    {"check", "FILE", "is it well formed? else the first error", false, runCheck},
};

}  // namespace

std::span<const Verb> allVerbs() {
    return kVerbs;
}

const Verb* findVerb(std::string_view name) {
    const auto* found = std::find_if(std::begin(kVerbs), std::end(kVerbs),
                                     [&](const Verb& v) { return v.name == name; });
    return found == std::end(kVerbs) ? nullptr : found;
}
