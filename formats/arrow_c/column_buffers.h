// Collects the cells of one column as buffers of Arrow.
//
// Tested by tests/bindings/python/test_arrow.py
#pragma once

#include "client/row.h"
#include "client/schema/data_type.h"
#include "formats/arrow_c/buffer.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace qvej {

// What a column of a batch is made of: which cells have a value, a bit each, and the values.
struct ColumnData {
    Buffer valid;                 // of use when there are nulls
    std::vector<Buffer> buffers;  // of a text its offsets and its bytes, else the values
    int64_t nulls = 0;
};

class ColumnBuffers {
   public:
    ColumnBuffers() = default;
    virtual ~ColumnBuffers() = default;
    ColumnBuffers(const ColumnBuffers&) = delete;
    ColumnBuffers& operator=(const ColumnBuffers&) = delete;

    virtual void take(const Cell& cell) = 0;
    // Is there no room for another cell?
    [[nodiscard]] virtual bool full() const { return false; }
    // What was taken since the last call.
    [[nodiscard]] virtual ColumnData finish() = 0;
};

[[nodiscard]] std::unique_ptr<ColumnBuffers> makeColumnBuffers(const DataType& type);

// Digits after the second of the unit of a TIMESTAMP: 0, 3, 6 or 9.
[[nodiscard]] int unitDigits(const DataType& type);

}  // namespace qvej
