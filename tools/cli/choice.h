// The tables that a command makes: those that --table or --path choose, else all.
//
// Tested by tests/tool/golden/choice.t
#pragma once

#include "client/find/table_choice.h"
#include "tools/cli/options/options.h"

#include <vector>

namespace qvej::cli {

// Is there a choice?
bool isChoosing(const Options& options);

// Those of `tables`, in their order.  Throws a Failure (NO_TABLE) for a name or path of the choice
// that is no table's.
std::vector<const Table*> chosenTables(const Options& options, const std::vector<Table>& tables);

}  // namespace qvej::cli
