// User maps from bytes: any byte is a choice among what the document offers, so that nearly every
// input makes a map with paths that matter.
#pragma once

#include "kit/document.h"
#include "kit/input.h"

#include <string>

namespace jmap::fuzz {

// A map document, from the bytes up to the end or up to kMostMapTables.  Each table is: a byte for
// its path, a byte for the number of columns; each column: a byte for its path, a byte for type,
// option and informat, a byte for the length.
std::string mapFromRecipe(const Document& document, Input& recipe);

inline constexpr int kMostMapTables = 12;

}  // namespace jmap::fuzz
