// What the tool can do.  To add a verb: a file with its routine, a row in the table of verbs.cpp,
// a file of cases in tests/tool/golden/.
#pragma once

#include "tools/cli/failure.h"
#include "tools/cli/options/options.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qvej::cli {

struct Verb {
    std::string_view name;       // one word, or "map" and another
    std::string_view arguments;  // as help shows them: operands, then options
    std::string_view purpose;
    std::size_t least, most;                  // operands
    ExitCode (*run)(const Options& options);  // throws what main() catches
};

std::span<const Verb> allVerbs();

// The first verb among the words, and where it stands; a null verb: there is none.
struct FoundVerb {
    const Verb* verb;
    std::size_t at, count;  // words
};
FoundVerb findVerb(const std::vector<std::string>& words);

// Are its operands the inputs of one document, as many as there are?
[[nodiscard]] inline bool takesInputs(const Verb& verb) {
    return verb.arguments.starts_with("FILE...");
}

// What help calls an operand, from 0.
std::string operandName(const Verb& verb, std::size_t index);

ExitCode runTables(const Options& options);
ExitCode runMap(const Options& options);
ExitCode runMapCheck(const Options& options);
ExitCode runMapDiff(const Options& options);
ExitCode runMapMerge(const Options& options);
ExitCode runMapExplain(const Options& options);
ExitCode runRead(const Options& options);
ExitCode runConvert(const Options& options);
ExitCode runReport(const Options& options);
ExitCode runDiagram(const Options& options);
ExitCode runRecords(const Options& options);
ExitCode runFind(const Options& options);
ExitCode runCheck(const Options& options);
ExitCode runShape(const Options& options);
ExitCode runCompletion(const Options& options);

}  // namespace qvej::cli
