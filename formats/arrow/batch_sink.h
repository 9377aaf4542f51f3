// Makes batches of rows for the sinks of Parquet and Arrow, on any thread.
//
// Tested by tests/formats/typed_files.py
#pragma once

#include "formats/formats.h"

#include <arrow/record_batch.h>

#include <cstddef>
#include <memory>
#include <utility>

namespace qvej {

class BatchPiece final : public Piece {
   public:
    BatchPiece(std::shared_ptr<arrow::RecordBatch> rows, std::size_t bytes)
        : rows_(std::move(rows)), bytes_(bytes) {}

    [[nodiscard]] const std::shared_ptr<arrow::RecordBatch>& rows() const { return rows_; }
    [[nodiscard]] std::size_t bytes() const { return bytes_; }

   private:
    std::shared_ptr<arrow::RecordBatch> rows_;
    std::size_t bytes_;
};

[[nodiscard]] std::unique_ptr<Sink> makeBatchSink(const SinkParms& parms);

}  // namespace qvej
