// The rows of a pass on their way to the sinks of their tables.
//
// Tested by tests/formats/table_outputs_test.cpp
#pragma once

#include "client/table_pass.h"
#include "formats/destination.h"

#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace qvej {

class TableOutputs {
   public:
    // What takes the rejected values of a table.
    using RejectsOf = std::function<RejectHandler(const Table&)>;

    // `destination` is open for these tables.  All must outlive this object.
    TableOutputs(const Document& document, const std::vector<const Table*>& tables,
                 Destination& destination, RejectsOf rejectsOf);

    // Takes items of a pass over the tables.  Throws Error.
    void take(std::span<const PassItem> items);

    // Ends all sinks, those of tables without rows too, and the destination.
    void end();

    [[nodiscard]] uint64_t rows(std::size_t table) const { return rows_[table]; }

   private:
    // Made with the first row: of many tables most are small.
    struct Output {
        std::unique_ptr<Sink> sink;
        PassRow row;
        std::size_t held;  // by the sink
    };

    Output& outputOf(std::size_t table);
    void writeRow(std::size_t table, Output& output);
    void count(Output& output);
    void flushAll();

    const Document& document_;
    const std::vector<const Table*>& tables_;
    Destination& destination_;
    RejectsOf rejectsOf_;
    std::vector<std::unique_ptr<Output>> outputs_;
    std::vector<uint64_t> rows_;
    std::size_t held_ = 0;  // bytes, by all sinks
};

}  // namespace qvej
