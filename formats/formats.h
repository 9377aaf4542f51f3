// The output formats of rows.
//
// To add one: a file with its sink, a row in the table of formats.cpp, a case in
// tests/tool/golden/read.t, and a reader in tests/formats/conformance.py.  A format that has all
// tables in one file, or in a database, has a Store in place of sinks on files; one that needs a
// library of its own is a module (formats/module.h).
//
// Tested by tests/formats/conformance.py and tests/tool/golden/read.t
#pragma once

#include "client/document.h"
#include "client/schema/schema.h"
#include "formats/packing.h"
#include "formats/sink.h"
#include "formats/writer.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qvej {

struct FormatOptions {
    std::optional<std::string> null =
        {};                           // what stands for no value; only without a null of its own
    Packing packing = Packing::NONE;  // of files of text
    unsigned threads = 1;             // that a sink may use
    // Of stores:
    std::string schema = {};  // of a database, where it has schemas; empty: its default
    enum : uint8_t { REFUSE, REPLACE, APPEND } existing = REFUSE;  // tables that are there already
};

// A table that a sink is for.  All must outlive the sink.
struct SinkParms {
    const Table& table;
    const FormatOptions& options;
    const Schema* schema = nullptr;  // of all tables, for a typed format; else null
    std::size_t position = 0;        // of the table in the schema
    bool pieces = false;             // it makes pieces: nothing before the first row
    bool resumed = false;            // an earlier sink of the table rests: see Sink::rest
};

struct Format {
    std::string_view name;         // of --format
    std::string_view extension;    // of files
    bool ownNull;                  // null differs from every text
    std::string_view sharedNames;  // what happens when columns share a name; empty: nothing
    bool typed;                    // it must know types and keys before the first row
    std::string_view module;       // that it needs, formats/module.h; empty: none

    // A sink for the rows of one table, in a file of its own; null: a module has it, or the format
    // is a store.
    std::unique_ptr<Sink> (*make)(Writer out, const SinkParms& parms);
    bool store;   // all tables are in one file or database
    bool pieces;  // its sinks make pieces of rows and append them

    std::size_t mostHeld = std::size_t{32} << 20;  // bytes of memory that all sinks may take

    // Can rows be printed?
    [[nodiscard]] bool text() const { return make != nullptr; }
};

// The format of that name, or null.
const Format* findFormat(std::string_view name);

// "csv, ndjson"; of those that can be printed, or all.
std::string formatNames(bool textOnly);

// A sink that makes pieces, of a format that can; on any thread.
[[nodiscard]] std::unique_ptr<Sink> makePieceSink(const Format& format, SinkParms parms);

// A sink of a format that is no store.  Throws Error, also when its module is not there.
[[nodiscard]] std::unique_ptr<Sink> makeSink(const Format& format, Writer out,
                                             const SinkParms& parms);

std::unique_ptr<Sink> makeCsvSink(Writer out, const SinkParms& parms);
std::unique_ptr<Sink> makeTsvSink(Writer out, const SinkParms& parms);
std::unique_ptr<Sink> makeNdjsonSink(Writer out, const SinkParms& parms);

}  // namespace qvej
