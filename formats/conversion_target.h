// Where tables are converted to: what its name says, what can be told of it beforehand, and the
// destination that it is.
//
// Tested by tests/formats/conversion_test.cpp, tests/tool/golden/dictionary.t and
// tests/tool/golden/convert.t
#pragma once

#include "formats/data_package.h"
#include "formats/destination.h"
#include "formats/formats.h"
#include "formats/sources.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace qvej {

enum class OutputPlace : uint8_t {
    DIRECTORY,   // a file for each table
    TABLE_FILE,  // one file for the one table
    STORE_FILE,  // one file for all tables
    DATABASE     // at an address
};

// Is it the address of a database?
[[nodiscard]] bool isAddress(std::string_view out);

// The format that follows from the name of an output: "sqlite" for NAME.db, "csv" for a directory.
[[nodiscard]] std::string_view formatOf(const std::string& out);

// Where tables of that format are when the output has that name.
[[nodiscard]] OutputPlace placeOf(const std::string& out, const Format& format);

struct ConversionTarget {
    std::string out;  // a path, or an address
    const Format* format;
    FormatOptions options = {};
    bool force = false;    // files that exist are replaced
    Sources sources = {};  // but never one of these
    PackageRun run = {};   // what the list of the files of a directory says of this run

    [[nodiscard]] OutputPlace place() const { return placeOf(out, *format); }

    // What messages call it: an address without its password.
    [[nodiscard]] std::string name() const;
};

// What can be told before there are tables: no such place, no such module, a file that exists.
// Throws Error.
void checkTarget(const ConversionTarget& target);

[[nodiscard]] std::unique_ptr<Destination> makeDestination(const ConversionTarget& target);

}  // namespace qvej
