// Which tables of two maps, or columns of two tables, are the same.
//
// Tested by tests/tool/golden/map_diff.t and tests/tool/golden/map_merge.t
#pragma once

#include "../text.h"
#include "map_model.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <queue>
#include <string>
#include <utility>
#include <vector>

namespace qvej {

// What two items have in common that are the same.
using PairKey = std::pair<std::string, std::string>;

inline PairKey exactKey(const MapTable& table) {
    return {table.path, table.name};
}
inline PairKey caselessKey(const MapTable& table) {
    return {table.path, lowerCased(table.name)};
}
inline PairKey pathKey(const MapTable& table) {
    return {table.path, {}};
}

// An ordinal and a value may have one path and are never the same.
inline std::string kindOf(const MapColumn& column) {
    return column.type == ColumnType::ORDINAL ? "ordinal " : "value ";
}
inline PairKey exactKey(const MapColumn& column) {
    return {column.path, kindOf(column) + column.name};
}
inline PairKey pathKey(const MapColumn& column) {
    return {column.path, kindOf(column)};
}

inline constexpr std::size_t kUnpaired = SIZE_MAX;

// For each item of `b` the index of the one of `a` that is the same: under the first key, then what
// is left under the next; several of one key in their order.  Each is paired once.
template <class Item>
std::vector<std::size_t> pairUp(const std::vector<Item>& a, const std::vector<Item>& b,
                                std::initializer_list<PairKey (*)(const Item&)> keys) {
    std::vector<std::size_t> partners(b.size(), kUnpaired);
    std::vector<bool> taken(a.size());
    for (const auto key : keys) {
        std::map<PairKey, std::queue<std::size_t>> free;
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (!taken[i]) {
                free[key(a[i])].push(i);
            }
        }
        for (std::size_t i = 0; i < b.size(); ++i) {
            const auto found = partners[i] == kUnpaired ? free.find(key(b[i])) : free.end();
            if (found != free.end() && !found->second.empty()) {
                partners[i] = found->second.front();
                taken[partners[i]] = true;
                found->second.pop();
            }
        }
    }
    return partners;
}

}  // namespace qvej
