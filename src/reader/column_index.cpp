// The columns of an open table by their path.
//
// Tested by tests/reader/row_loop_test.cpp
#include "column_index.h"

#include "core/pool.h"

#include <bit>

namespace jmap {

COLUMNINDEX* newColumnIndex(QVPoolh pool, const ROWCOLUMN* columns, QVStrSize count) {
    const auto buckets = std::bit_ceil(static_cast<uint64_t>(count) * 2 + 1);
    auto* index = poolNew<COLUMNINDEX>(pool);
    auto* first = poolNew<uint32_t>(pool, static_cast<QVStrSize>(buckets));
    auto* next = poolNew<uint32_t>(pool, count);
    if (index == nullptr || first == nullptr || next == nullptr) {
        return nullptr;
    }
    index->mask = static_cast<uint32_t>(buckets - 1);
    index->first = first;
    index->next = next;
    std::fill_n(first, buckets, kNoColumn);
    // From the last column to the first, so that every bucket is in column order.
    for (QVStrSize i = count; i-- > 0;) {
        const std::string_view path = view(columns[i].path, columns[i].pathLen);
        if (path.empty()) {
            continue;  // ALLDATA: no record's path is empty
        }
        index->lengths |= uint64_t{1} << (path.size() % 64);
        uint32_t& bucket = first[bucketOf(*index, path)];
        next[i] = bucket;
        bucket = static_cast<uint32_t>(i);
    }
    return index;
}

}  // namespace jmap
