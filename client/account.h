// What becomes of every value of a document in the tables of its map.
//
// A value is in a cell of a row, or it is lost in one of four ways.  Some ways are the tables' own:
// an array of scalars directly in the outermost array begins rows that nothing completes, and of
// two members of one name in one object the later one is seen.  A value in a cell may have strayed:
// it came before the row began, so the row may belong to another parent.
//
// A path may feed several columns; what counts is the column that shows most of its values, strayed
// ones apart.
//
// Tested by tests/client/account_test.cpp
#pragma once

#include "document.h"
#include "table_pass.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

enum class Loss {
    OVERWRITTEN,  // a later value of the same row and column took its place
    NO_COLUMN,    // no column takes the path
    NO_ROW,       // its row was never complete
    REJECTED      // its column cannot take it
};
inline constexpr std::size_t kLosses = 4;

// "overwritten", "no column", "no row", "rejected".
[[nodiscard]] std::string_view nameOf(Loss loss);

struct LostValues {
    uint64_t count = 0;
    uint64_t first = 0;  // the first of them, counted from 1 among the values of the path; 0: not
                         // known, which can be of carried columns
};

struct PathAccount {
    std::string path;  // separator 0x02
    uint64_t values = 0;
    uint64_t cells = 0;  // of them in a cell
    LostValues cut;      // of these in part only
    LostValues strayed;  // of these in a row that began after them
    std::array<LostValues, kLosses> lost;

    // Is every value in a cell or lost?
    [[nodiscard]] bool meets() const;
};

// The account of each path in the order of the statistics, by a pass of its own over all tables, or
// over some: then only of paths that these have a column for.  Throws as TablePass and PassRow.
[[nodiscard]] std::vector<PathAccount> accountOf(const Document& document, bool retain,
                                                 bool carry = false);
[[nodiscard]] std::vector<PathAccount> accountOf(const Document& document,
                                                 const std::vector<const Table*>& tables,
                                                 bool retain, bool carry = false);

// Values that are in no row when the pass has ended.  Rejected values do not count, nor, with a
// user's map or a pass over some of the tables, values without a column: they are left out on
// purpose.
//   tables  those of the pass
[[nodiscard]] uint64_t lostOf(const Document& document, const TablePass& pass,
                              const std::vector<const Table*>& tables);

// Values that the rows lose or may show in the wrong row.  What a map leaves out does not count.
struct RowLosses {
    uint64_t overwritten = 0;  // in columns whose path lies below the table's
    uint64_t strayed = 0;
};

// Those of the tables of a pass, up to its last item.
[[nodiscard]] RowLosses rowLossesOf(const TablePass& pass, const std::vector<const Table*>& tables);

}  // namespace qvej
