// The account of a document as people read it: which values are in no cell, how many, and where the
// first is.
//
// Tested by tests/tool/golden/account.t
#pragma once

#include "client/account.h"
#include "client/shape/reshaper.h"
#include "tools/cli/failure.h"
#include "tools/cli/options/options.h"
#include "tools/cli/reports/listing.h"

#include <optional>
#include <string>
#include <vector>

namespace qvej::cli {

// What is kept of a document for its account, or for that of some of its tables.
struct Account {
    std::vector<PathAccount> paths;
    std::vector<Spot> starts;                // where the first value of each path begins
    std::vector<TextSource> texts;           // of a document of several
    Shape shape;                             // that the document was read with
    std::optional<ShapeCounts> shapeCounts;  // of all tables only
};
[[nodiscard]] Account takeAccount(const Document& document, const std::vector<const Table*>& tables,
                                  bool retain, bool carry);

// An account as it is shown.
struct AccountText {
    std::vector<Row> rows;          // heads of columns, then a row for each path and way in which
                                    // values of it are lost; empty: none are
    std::vector<std::string> sums;  // sentences
};

// The document is read once more to find places, with `options` but without its tables, so its
// first reading should be over; a document on standard input or from a pipe is gone, and only
// places that `starts` knows are shown.  Throws a Failure.
[[nodiscard]] AccountText textOf(const Options& options, const Account& account);

// Writes the account on standard output.  REJECTED when a value is lost, else DONE.  Throws a
// Failure.
ExitCode reportAccount(const Options& options, const Account& account);

// A line on standard error for values that are in no cell, one for those that strayed, and how to
// see which; nothing when there are none.  REJECTED when values were overwritten or strayed:
// whatever else is in no cell, a map may leave out on purpose.
//   what      file or table
//   inNoCell  0: only overwritten values are asked for
ExitCode tellLost(const std::string& what, const Document& document, const RowLosses& losses,
                  uint64_t inNoCell = 0);

}  // namespace qvej::cli
