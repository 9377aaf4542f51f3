// Maps as notes in the journal, and the words for types of columns.
//
// Tested by tests/tool/golden/notes.t
#pragma once

#include "core/context.h"

namespace jmap {

// Notes the automatic map, a line for each table and column.  Returns QV_OK.
QVStatus dumpMap(JMAP_PRIVATE* p);

// Notes any map with the attributes of user maps; `who` (terminated) is its title.  Returns QV_OK.
QVStatus dumpMap2(JMAP_PRIVATE* p, MAP* m, const char* who);

// "ORDINAL", "DOUBLE", "CHAR", else "UNKNOWN".  Terminated, static.
[[nodiscard]] const QVChar* privateTypeToString(VARTYPE type);

// "CHARACTER", "NUMERIC", else "UNKNOWN".  Terminated, static.
[[nodiscard]] const QVChar* usertypeToString(VARIABLETYPE type);

}  // namespace jmap
