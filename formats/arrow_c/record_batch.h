// Rows of a table as columns of Arrow, on their own: nothing of the document is needed any more.
//
// Tested by tests/bindings/python/test_arrow.py
#pragma once

#include "formats/arrow_c/arrow_c.h"
#include "formats/arrow_c/column_buffers.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace qvej {

struct RecordBatch {
    int64_t rows = 0;
    std::vector<ColumnData> columns;
};

// Gives `out` a structure with a child for each column.  It shares the batch, so a batch can be
// exported more than once.  Throws std::bad_alloc; `out` is untouched then.
void exportBatch(const std::shared_ptr<const RecordBatch>& batch, ArrowArray* out);

}  // namespace qvej
