// Keeps the rows of many tables in memory, as batches of Arrow.
//
// Tested by tests/bindings/python/test_arrow.py
#pragma once

#include "formats/arrow_c/record_batch.h"
#include "formats/destination.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace qvej {

class BatchTables final : public Destination {
   public:
    using Batches = std::vector<std::shared_ptr<const RecordBatch>>;

    // Of each table, in order, when all sinks have ended.
    [[nodiscard]] std::vector<Batches>& batches() { return batches_; }

    void open(const std::vector<const Table*>& tables, const Schema* schema) override;
    [[nodiscard]] bool shares(const OutputFiles& /*files*/) const override { return false; }
    [[nodiscard]] std::unique_ptr<Sink> sink(std::size_t table) override;
    [[nodiscard]] bool makesPieces() const override { return true; }
    [[nodiscard]] std::unique_ptr<Sink> pieceSink(std::size_t table) const override;
    void end(const Schema& /*schema*/) override {}
    [[nodiscard]] std::vector<std::string> commit(OutputFiles* /*with*/) override { return {}; }

   private:
    const Schema* schema_ = nullptr;
    std::vector<Batches> batches_;
};

}  // namespace qvej
