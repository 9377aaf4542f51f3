// Collects rows of one table as columns of Arrow.
//
// Tested by tests/formats/typed_files.py
#pragma once

#include "client/schema/schema.h"
#include "client/table_pass.h"

#include <arrow/array/array_base.h>
#include <arrow/memory_pool.h>
#include <arrow/record_batch.h>
#include <arrow/type.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace qvej {

// The values of one column.
class ColumnBuilder {
   public:
    ColumnBuilder() = default;
    virtual ~ColumnBuilder() = default;
    ColumnBuilder(const ColumnBuilder&) = delete;
    ColumnBuilder& operator=(const ColumnBuilder&) = delete;

    // The bytes that it takes.
    virtual std::size_t take(const Cell& cell) = 0;
    // What was taken since the last call.
    [[nodiscard]] virtual std::shared_ptr<arrow::Array> finish() = 0;
};

class BatchBuilder {
   public:
    // `memory` must outlive this object and its batches.
    BatchBuilder(const TableSchema& table, std::shared_ptr<arrow::Schema> schema,
                 arrow::MemoryPool* memory);

    void take(const PassRow& row);
    [[nodiscard]] int64_t rows() const { return rows_; }
    [[nodiscard]] std::size_t bytes() const { return bytes_; }  // of memory

    // The rows that were taken since the last call.
    [[nodiscard]] std::shared_ptr<arrow::RecordBatch> finish();

   private:
    std::shared_ptr<arrow::Schema> schema_;
    std::vector<std::unique_ptr<ColumnBuilder>> columns_;
    int64_t rows_ = 0;
    std::size_t bytes_ = 0;
};

}  // namespace qvej
