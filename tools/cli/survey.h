// What one walk over all rows tells of tables: types, keys, parents, and what the rows lose.
//
// Tested by tests/tool/golden/pictures.t
#pragma once

#include "client/account.h"
#include "client/schema/schema.h"
#include "tools/cli/options/options.h"
#include "tools/cli/session.h"

#include <cstdint>
#include <vector>

namespace qvej::cli {

struct Survey {
    Schema schema;
    std::vector<RowLosses> losses;  // of each table; values of a parent's column apart
    RowLosses allLosses;            // a value that several columns have counts once
    uint64_t inNoCell = 0;          // see lostOf()
};

// These walks move the progress on, and throw as TablePass and PassRow.
[[nodiscard]] Schema typesOf(const Session& session, const std::vector<const Table*>& tables,
                             const Options& options);
[[nodiscard]] Survey surveyOf(const Session& session, const std::vector<const Table*>& tables,
                              const Options& options);

// The tables of a schema as a tree: each after its parent, in the order of the schema otherwise.
struct TreeNode {
    std::size_t table;   // its position in the schema
    std::size_t parent;  // its position in the tree; that of the node itself: it has none
    std::size_t depth;   // 0: no parent
    bool last;           // no table of the same parent follows
};
[[nodiscard]] std::vector<TreeNode> treeOf(const Schema& schema);

}  // namespace qvej::cli
