// The output formats of rows.
//
// To add one: a file with its sink, a row in the table of formats.cpp, a case in
// tests/tool/golden/read.t, and a reader in tests/formats/conformance.py.  A format that has all
// tables in one file needs a Destination of its own, as TableDirectory is one.
//
// Tested by tests/formats/conformance.py and tests/tool/golden/read.t
#pragma once

#include "client/document.h"
#include "formats/sink.h"
#include "formats/writer.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qvej {

struct FormatOptions {
    std::optional<std::string> null;  // what stands for no value; only without a null of its own
};

struct Format {
    std::string_view name;         // of --format
    std::string_view extension;    // of files
    bool ownNull;                  // null differs from every text
    std::string_view sharedNames;  // what happens when columns share a name; empty: nothing

    // A sink for the rows of one table.
    std::unique_ptr<Sink> (*make)(Writer out, const Columns& columns, const FormatOptions& options);
};

// The format of that name, or null.
const Format* findFormat(std::string_view name);

// "csv, ndjson"
std::string formatNames();

std::unique_ptr<Sink> makeCsvSink(Writer out, const Columns& columns, const FormatOptions& options);
std::unique_ptr<Sink> makeNdjsonSink(Writer out, const Columns& columns,
                                     const FormatOptions& options);

}  // namespace qvej
