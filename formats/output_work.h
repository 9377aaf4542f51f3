// What a worker makes of the rows of a part of a document: pieces of what its tables' sinks write,
// facts for the schema, and values that were rejected.
//
// Tested by tests/tool/stream.py
#pragma once

#include "client/row_work.h"
#include "client/schema/schema.h"
#include "client/table_pass.h"
#include "formats/destination.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qvej {

// A rejected value with what its handler may ask of the row: ordinals, and the name of the text.
class KeptReject final : public Row {
   public:
    KeptReject(std::size_t table, const Row& row, const Rejected& rejected);

    [[nodiscard]] std::size_t table() const { return table_; }
    [[nodiscard]] const Columns& columns() const override { return columns_; }
    [[nodiscard]] Cell cell(std::size_t column) const override;

    // `rowsBefore`: rows of the table that come before those of the result.
    void giveTo(const RejectHandler& handler, uint64_t rowsBefore) const;

   private:
    std::size_t table_;
    const Columns& columns_;
    std::vector<Cell> ordinals_;  // in order
    std::string source_;          // the text of the first cell
    std::size_t column_;
    uint64_t row_;
    std::string text_;
    std::string reason_;
    bool cut_;
};

class OutputPieces final : public RowResult {
   public:
    struct OfTable {
        std::size_t table;
        uint64_t rows;
        std::unique_ptr<Piece> piece;
    };
    std::vector<OfTable> tables;
    std::vector<std::unique_ptr<KeptReject>> rejects;  // as they came; rows count from this result
    uint64_t rows = 0;                                 // of all tables
    std::optional<SchemaBuilder::Batch> facts;         // nothing: they are known
};

class OutputWork final : public RowWork {
   public:
    // `destination` is open for these tables and makes pieces; `noRows` is a builder without rows,
    // null when the schema is known.  All must outlive this object.
    OutputWork(const Document& document, const std::vector<const Table*>& tables,
               const Destination& destination, const SchemaBuilder* noRows);

    void begin(JMAPPassh walk) override;
    void take(const PassItem& item) override;
    void passOver(const PassItem& item) override;
    [[nodiscard]] bool full() const override { return held_ >= kFull; }
    [[nodiscard]] std::unique_ptr<RowResult> result() override;

   private:
    static constexpr std::size_t kFull = std::size_t{1} << 20;  // bytes of rows and rejects
    static constexpr std::size_t kMostOutputs = 4096;           // that are kept for further rows

    // Made with the first row of a table.
    struct Output {
        PassRow row;  // counts the rows of the open result
        std::unique_ptr<Sink> sink;
        std::size_t held = 0;  // by the sink
    };
    Output& outputOf(std::size_t table);
    void dropOutputs();

    const Document& document_;
    const std::vector<const Table*>& tables_;
    const Destination& destination_;
    const SchemaBuilder* noRows_;
    std::optional<SchemaBuilder> facts_;
    std::vector<std::unique_ptr<Output>> outputs_;
    std::vector<std::size_t> made_;  // tables with an output
    std::vector<std::size_t> used_;  // of them those in the open result
    std::vector<std::unique_ptr<KeptReject>> rejects_;
    std::size_t held_ = 0;  // bytes, by sinks and rejects
    bool passesOver_ = false;
};

}  // namespace qvej
