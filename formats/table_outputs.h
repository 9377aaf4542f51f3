// The rows of a pass on their way to the sinks of their tables.
//
// Tested by tests/formats/table_outputs_test.cpp
#pragma once

#include "client/schema/schema.h"
#include "client/table_pass.h"
#include "formats/destination.h"
#include "formats/output_work.h"

#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace qvej {

class TableOutputs {
   public:
    // What takes the rejected values of a table.
    using RejectsOf = std::function<RejectHandler(const Table&)>;

    // `destination` is open for these tables; `mostHeld` bytes of memory are for its sinks, of
    // which some are flushed when they take more.  `facts` sees each row; null: the schema is
    // known.  All must outlive this object.
    TableOutputs(const Document& document, const std::vector<const Table*>& tables,
                 Destination& destination, std::size_t mostHeld, RejectsOf rejectsOf,
                 SchemaBuilder* facts);

    // Takes items of a pass over the tables.  Throws Error.
    void take(std::span<const PassItem> items);

    // Takes what workers have made of them, in order, each of one part.  Throws Error.
    void take(OutputPieces& pieces);

    // Passes on what the sinks hold.
    void flush();

    // Ends all sinks, those of tables without rows too.
    void end();

   private:
    // Made with the first row: of many tables most are small.
    struct Output {
        std::unique_ptr<Sink> sink;
        PassRow row;
        std::size_t held;   // by the sink
        uint64_t rows = 0;  // that came in pieces
    };

    Output& outputOf(std::size_t table);
    void writeRow(std::size_t table, Output& output);
    void count(Output& output);
    void countAndFlush(Output& output);
    void flushLarge();
    void flushFrom(std::size_t least);

    const Document& document_;
    const std::vector<const Table*>& tables_;
    Destination& destination_;
    std::size_t mostHeld_;
    RejectsOf rejectsOf_;
    std::vector<std::unique_ptr<Output>> outputs_;
    SchemaBuilder* facts_;
    std::size_t held_ = 0;  // bytes, by all sinks
};

}  // namespace qvej
