// Makes batches of the rows of one table.
//
// Tested by tests/bindings/python/test_arrow.py
#pragma once

#include "client/row.h"
#include "client/schema/schema.h"
#include "client/table_pass.h"
#include "formats/arrow_c/column_buffers.h"
#include "formats/arrow_c/record_batch.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace qvej {

class BatchMaker {
   public:
    // Of all columns.
    explicit BatchMaker(const TableSchema& table);

    //   columns  which of the table's, by their positions
    BatchMaker(const TableSchema& table, std::vector<std::size_t> columns);

    void take(const PassRow& row);
    // A row by the cells of all its columns.
    void take(std::span<const Cell> row);
    [[nodiscard]] std::size_t rows() const { return rows_; }
    // Is there no room for another row?
    [[nodiscard]] bool full() const;

    // The rows that were taken since the last call; null: none were.
    [[nodiscard]] std::shared_ptr<const RecordBatch> batch();

   private:
    template <class CellAt>
    void takeCells(const CellAt& cellAt);

    std::vector<std::size_t> columns_;
    std::vector<std::unique_ptr<ColumnBuffers>> builders_;
    std::size_t rows_ = 0;
};

}  // namespace qvej
