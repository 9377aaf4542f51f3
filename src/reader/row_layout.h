// The columns of an open table and where each lies in the row buffer.
//
// Columns lie back to back in map order, unaligned: a number is a double of 8 bytes, a character
// column its bytes, at most 32767, blank-padded.
//
// Tested by tests/reader/row_layout_test.cpp
#pragma once

#include "core/readctx.h"

#include <cstring>

namespace jmap {

inline constexpr uint64_t kMaxCharLen = 32767;  // bytes of a character column
inline constexpr QVStrSize kNumberBytes = 8;    // bytes of a numeric column

// Makes the columns of both structures from those of `ds`, then the row buffer and the column
// index.
//   flags  of QVEJMAPReadInitParms
// Returns QV_OK or QV_NOMEM.
[[nodiscard]] QVStatus layoutRow(QVEJMAPReadContexth rctx, const DSINFO& ds, uint64_t flags);

// Notes the columns, when `debugReadInit` is set.
void dumpLayout(QVEJMAPReadContexth rctx);

// The cell of a column in the row buffer.
[[nodiscard]] inline char* cellOf(const JMAP_READPRIVATE& rp, const ROWCOLUMN& column) noexcept {
    return rp.obsbuf + column.offset;
}

// Stores a number's bits in a numeric column.
inline void storeBits(const JMAP_READPRIVATE& rp, const ROWCOLUMN& column, uint64_t bits) noexcept {
    std::memcpy(cellOf(rp, column), &bits, sizeof bits);
}

inline void storeBlanks(const JMAP_READPRIVATE& rp, const ROWCOLUMN& column) noexcept {
    std::memset(cellOf(rp, column), ' ', column.length);
}

}  // namespace jmap
