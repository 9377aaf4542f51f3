// The command line, read and checked.
//
// Tested by tests/tool/golden/usage.t
#pragma once

#include "formats/formats.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct Verb;

struct Options {
    const Verb* verb = nullptr;         // null: help or version was asked for, and printed
    std::vector<std::string> operands;  // the words behind the verb, as many as it takes

    std::string out;              // of map and convert; empty: not given
    uint64_t limit = UINT64_MAX;  // of read
    bool names = false;           // of tables
    bool columns = false;         // of tables
    bool alldata = false;         // of convert
    bool exact = false;           // of map
    bool account = false;         // of convert and check

    std::string map;      // file of a user's map; empty: the automatic one
    std::string rejects;  // file for values that are rejected; empty: none

    bool retain = false;
    bool compress = false;
    bool force = false;
    bool quiet = false;
    const Format* format = nullptr;
    FormatOptions formatOptions;
    uint64_t ordinals = UINT64_MAX;
    uint64_t depth = 1000;
    uint64_t maxPaths = 10'000'000;  // 0: any number
    unsigned threads = 1;            // of convert
    std::optional<uint64_t> keepFree;
    std::optional<uint64_t> memory;
    std::string alldataName = "ALLDATA";
    std::string encoding = "auto";
    bool lines = false;           // JSON Lines
    bool replaceInvalid = false;  // what is wrong in the encoding becomes U+FFFD
    std::string cache;
    std::string debug;  // as the engine wants it: ",MAP,READ,"; empty: none
};

// Throws a Failure (WRONG_USAGE).  Prints help and version on standard output.
Options readOptions(int argc, char** argv);
