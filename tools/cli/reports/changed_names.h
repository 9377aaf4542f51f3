// Names of the automatic map from which a reader cannot tell those of the document.
//
// Tested by tests/tool/golden/naming.t
#pragma once

#include "client/document.h"

#include <string>
#include <vector>

namespace qvej::cli {

// Tells in one line on standard error how many names of the tables and of their values' columns
// have lost a digit, a character outside of ASCII or an end, with the first.  Blanks and
// punctuation that became "_" are not counted, nor are ordinals: these repeat the names of tables.
void tellChangedNames(const std::string& file, const std::vector<const Table*>& tables);

}  // namespace qvej::cli
