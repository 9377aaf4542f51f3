// Rows of a table as bytes, for who must see all of them before it knows what to make of them.
//
// Tested by tests/bindings/python/test_arrow.py
#pragma once

#include "client/row.h"
#include "client/table_pass.h"
#include "formats/arrow_c/buffer.h"

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace qvej {

// A cell is a byte with its kind and the length of its text, the length itself where that byte has
// no room for it, its number or count, and the text.  Null is the same as no value.
class RowBytes {
   public:
    // Of a table with so many columns.
    explicit RowBytes(std::size_t columns) : columns_(columns) {}

    void take(const PassRow& row) {
        for (std::size_t c = 0; c < columns_; ++c) {
            append(row.at(c));
        }
        ++rows_;
    }
    [[nodiscard]] std::size_t rows() const { return rows_; }
    [[nodiscard]] std::size_t size() const { return bytes_.size(); }

    // What was taken since the last call, in no more memory than it needs.
    [[nodiscard]] RowBytes release() {
        RowBytes released(columns_);
        released.rows_ = std::exchange(rows_, 0);
        released.bytes_ = bytes_.take();
        return released;
    }

    // Calls `take` with the cells of each row, whose texts live as long as this object.
    template <class Take>
    void forEach(const Take& take) const {
        std::vector<Cell> cells(columns_);
        const auto* at = static_cast<const char*>(bytes_.data());
        for (std::size_t row = 0; row < rows_; ++row) {
            for (Cell& cell : cells) {
                at = read(at, cell);
            }
            take(std::span<const Cell>(cells));
        }
    }

   private:
    void append(const Cell& cell);
    // Returns where the next one begins.
    static const char* read(const char* at, Cell& cell);

    std::size_t columns_;
    std::size_t rows_ = 0;
    Buffer bytes_;
};

}  // namespace qvej
