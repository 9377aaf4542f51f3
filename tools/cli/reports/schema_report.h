// What a person should know of the types and keys of written tables.
//
// Tested by tests/tool/golden/dictionary.t
#pragma once

#include "client/document.h"
#include "client/schema/schema.h"
#include "tools/cli/options/options.h"

namespace qvej::cli {

// Tells on standard error, a line for each kind: tables without a primary key, rows without a
// parent, columns of mixed values, and numbers that look like times.
void tellSchema(const Options& options, const Document& document, const Schema& schema);

}  // namespace qvej::cli
