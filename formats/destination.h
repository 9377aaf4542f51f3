// Where the rows of many tables go: the files of a directory, one file, a database.
//
//     destination.open(tables, schema);
//     for each table, when its first row comes or at the end:
//         std::unique_ptr<Sink> sink = destination.sink(i);
//         sink->row(...); ...
//         sink->end();
//     destination.end(schema);
//     destination.commit();
//
// The calls come from one thread at a time.
//
// Tested by tests/formats/table_outputs_test.cpp
#pragma once

#include "client/document.h"
#include "client/schema/schema.h"
#include "formats/formats.h"
#include "formats/sink.h"
#include "formats/sources.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qvej {

class OutputFiles;

// How tables are written.  Files that exist are replaced with `force` only, and never one of the
// `sources`.
struct DestinationParms {
    const Format& format;
    FormatOptions options;
    bool force;
    Sources sources;
};

// Takes the rows of many tables.  What it has made goes away with it unless it is committed.  All
// throw qvej::Error.
class Destination {
   public:
    Destination() = default;
    virtual ~Destination() = default;
    Destination(const Destination&) = delete;
    Destination& operator=(const Destination&) = delete;

    // Once, before all else: the tables and, for a typed format, their schema, else null.  All must
    // outlive this object.
    virtual void open(const std::vector<const Table*>& tables, const Schema* schema) = 0;

    // Does it write a file that is one of `files`?
    [[nodiscard]] virtual bool shares(const OutputFiles& files) const = 0;

    // The sink of a table, by its position in the list; once each, and again after one that rests.
    // This object must outlive it.  Tables are many and most are small: it is asked for when there
    // is a row, else at the end.
    [[nodiscard]] virtual std::unique_ptr<Sink> sink(std::size_t table) = 0;

    // Whether the rows of a table can be shared among threads.
    [[nodiscard]] virtual bool makesPieces() const { return false; }

    // Another sink of the table then, on any thread, which makes pieces for that one.
    [[nodiscard]] virtual std::unique_ptr<Sink> pieceSink(std::size_t /*table*/) const {
        return nullptr;
    }

    // When all sinks have ended.
    virtual void end(const Schema& schema) = 0;

    // After `end`: everything appears, with the files of `with` (null: none), or nothing.  Returns
    // sentences about what else went wrong.
    [[nodiscard]] virtual std::vector<std::string> commit(OutputFiles* with) = 0;

    // Sentences on what differs from the document, such as names that had to change; after `open`.
    [[nodiscard]] virtual std::vector<std::string> remarks() const { return {}; }
};

}  // namespace qvej
