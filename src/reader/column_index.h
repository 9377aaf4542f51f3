// The columns of an open table by their path.
//
// Most records of the stream belong to other tables.  A set of path lengths rejects nearly all of
// them.  A hash table finds the columns of the others in constant time.
//
// Tested by tests/reader/row_loop_test.cpp
#pragma once

#include "core/readctx.h"
#include "core/text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

inline constexpr uint32_t kNoColumn = UINT32_MAX;

// Lives in the read pool, over the columns of a JMAP_READPRIVATE.
struct COLUMNINDEX {
    uint64_t lengths;  // bit (length mod 64) of each column path
    uint32_t mask;     // number of buckets - 1
    uint32_t* first;   // [mask + 1] first column of a bucket, or kNoColumn
    uint32_t* next;    // [columns] the next column of the same bucket, in column order
};

namespace jmap {

// Indexes the columns that have a path.  Null when there is no memory.
[[nodiscard]] COLUMNINDEX* newColumnIndex(QVPoolh pool, const ROWCOLUMN* columns, QVStrSize count);

// Whether a column may have a path of that length.
[[nodiscard]] inline bool mayHoldLength(const COLUMNINDEX& index, std::size_t pathLen) noexcept {
    return (index.lengths >> (pathLen % 64) & 1) != 0;
}

// The bucket of a path.  Only its length and its last 16 bytes are hashed: there the paths of one
// table differ.
[[nodiscard]] inline uint32_t bucketOf(const COLUMNINDEX& index, std::string_view path) noexcept {
    constexpr uint64_t kOdd = 0x9E3779B97F4A7C15u;
    uint64_t last = 0;
    uint64_t before = 0;
    if (path.size() >= sizeof last) {
        const std::size_t lastAt = path.size() - sizeof last;
        std::memcpy(&last, path.data() + lastAt, sizeof last);
        std::memcpy(&before, path.data() + lastAt - std::min(lastAt, sizeof before), sizeof before);
    } else {
        std::memcpy(&last, path.data(), path.size());
    }
    uint64_t h = (last ^ path.size()) * kOdd;
    h = ((h ^ h >> 32) + before) * kOdd;
    return static_cast<uint32_t>(h >> 32) & index.mask;
}

[[nodiscard]] inline uint32_t columnFrom(const JMAP_READPRIVATE& rp, uint32_t column,
                                         std::string_view path) noexcept {
    while (column != kNoColumn &&
           view(rp.varinfo[column].path, rp.varinfo[column].pathLen) != path) {
        column = rp.index->next[column];
    }
    return column;
}

// The first column with exactly this path, not empty; kNoColumn when there is none.
[[nodiscard]] inline uint32_t firstColumn(const JMAP_READPRIVATE& rp,
                                          std::string_view path) noexcept {
    if (!mayHoldLength(*rp.index, path.size())) {
        return kNoColumn;
    }
    return columnFrom(rp, rp.index->first[bucketOf(*rp.index, path)], path);
}

// The next such column after `column`, in column order.
[[nodiscard]] inline uint32_t nextColumn(const JMAP_READPRIVATE& rp, uint32_t column,
                                         std::string_view path) noexcept {
    return columnFrom(rp, rp.index->next[column], path);
}

}  // namespace jmap
