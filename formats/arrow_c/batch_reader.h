// The rows of one table, batch by batch, in a walk of its own.
//
// Tested by tests/bindings/python/test_arrow.py
#pragma once

#include "client/schema/schema.h"
#include "client/table_pass.h"
#include "formats/arrow_c/batch_maker.h"
#include "formats/arrow_c/record_batch.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace qvej {

class BatchReader {
   public:
    // The document and the schema must outlive it.  Throws as TablePass and PassRow.
    //   columns  which of the table's, by their positions
    //   rows     at most so many in a batch, more than 0
    //   carry    as of TablePass
    BatchReader(const Document& document, const TableSchema& table,
                std::vector<std::size_t> columns, std::size_t rows, bool carry);

    // Null after the last.  Throws as TablePass::next.
    [[nodiscard]] std::shared_ptr<const RecordBatch> next();

   private:
    TablePass pass_;
    PassRow row_;
    BatchMaker maker_;
    std::size_t mostRows_;
    bool ended_ = false;
};

}  // namespace qvej
