// What the tool can do.  To add a verb: a file with its routine, a row in the table of verbs.cpp,
// a file of cases in tests/tool/golden/.
#pragma once

#include "tools/cli/options.h"

#include <span>
#include <string_view>

struct Verb {
    std::string_view name;
    std::string_view arguments;  // as help shows them
    std::string_view purpose;
    bool takesTable;                      // FILE TABLE, else FILE
    void (*run)(const Options& options);  // throws what main() catches
};

std::span<const Verb> allVerbs();
const Verb* findVerb(std::string_view name);  // or null

void runTables(const Options& options);
void runMap(const Options& options);
void runRead(const Options& options);
void runConvert(const Options& options);
void runRecords(const Options& options);
void runCheck(const Options& options);
