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

    // Takes all items of a pass over the tables.  The threads that make the rows write them down,
    // too, where that can be.  `onRows`: when there is one, is told of further rows, how many; on
    // one thread at a time.  Throws Error.
    void takeAll(TablePass& pass, unsigned threads,
                 const std::function<void(uint64_t)>& onRows = {});

    // Passes on what the sinks hold.
    void flush();

    // Ends all sinks, those of tables without rows too.
    void end();

   private:
    // Made with the first row, as of many tables most are small; it may rest when none has come for
    // a while.
    struct Output {
        std::unique_ptr<Sink> sink;
        PassRow row;
        std::size_t held;  // by the sink
        bool busy = true;  // there was a row since the last look
    };
    // What there is of a table's output.
    struct Place {
        std::unique_ptr<Output> output = {};  // null: none yet, or it rests
        uint64_t rows = 0;                    // that it has had
        bool rests = false;
    };
    static constexpr std::size_t kLeastAwake = 4096;

    std::unique_ptr<Output> makeOutput(std::size_t table);
    Output& outputOf(std::size_t table);
    void writeRow(std::size_t table, Output& output);
    void count(Output& output);
    void countAndFlush(Output& output);
    void letIdleRest();
    void flushLarge();
    void flushFrom(std::size_t least);

    const Document& document_;
    const std::vector<const Table*>& tables_;
    Destination& destination_;
    std::size_t mostHeld_;
    RejectsOf rejectsOf_;
    std::vector<Place> places_;
    std::vector<std::size_t> awake_;  // tables with an output
    std::size_t mostAwake_ = kLeastAwake;
    std::size_t resumed_ = 0;  // outputs that were made again
    SchemaBuilder* facts_;
    std::size_t held_ = 0;  // bytes, by all sinks
};

}  // namespace qvej
