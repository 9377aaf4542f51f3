// The output formats of rows.  To add one: a file with its sink, a row in the table of formats.cpp,
// a case in tests/tool/golden/read.t.
#pragma once

#include "client/table_pass.h"
#include "formats/writer.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qvej {

struct FormatOptions {
    std::optional<std::string> null;  // of CSV: what stands for no value
};

struct Format {
    std::string_view name;       // of --format
    std::string_view extension;  // of files
    std::unique_ptr<qvej::Sink> (*make)(Writer& out, const FormatOptions& options);
};

// The format of that name, or null.
const Format* findFormat(std::string_view name);

// "csv, ndjson"
std::string formatNames();

std::unique_ptr<qvej::Sink> makeCsvSink(Writer& out, const FormatOptions& options);
std::unique_ptr<qvej::Sink> makeNdjsonSink(Writer& out, const FormatOptions& options);

}  // namespace qvej
