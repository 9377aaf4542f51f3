// How rows come about: in one walk over the text, in two readings of it, or from records.
//
// Tested by tests/tool/golden/plan.t
#pragma once

#include "client/document.h"
#include "tools/cli/options/options.h"

#include <string>

namespace qvej::cli {

// What of the options keeps rows from being made while the text is read; empty: nothing.
[[nodiscard]] std::string whyNotStreamed(const Options& options);

// Which of the reading options only records can serve; empty: none.
[[nodiscard]] std::string whyRecords(const ReadingOptions& options);

// What the tables of a user's map need to know of the whole document; empty: nothing.
//   document  has that map, and is uncounted
//   table     the name of the only one that rows are wanted of; empty: all are
[[nodiscard]] std::string whyCounted(const Document& document, const std::string& table);

// Why the inputs cannot be read twice; empty: they can.
[[nodiscard]] std::string whyOnce(const InputList& inputs);

// Says the plan, when the options ask for it.
void tellPlan(const ReadingOptions& options, const std::string& plan);

}  // namespace qvej::cli
