// A user map as a map document.
#pragma once

#include "kit/document.h"

#include <string>

namespace jmap::fuzz {

// All that a map can say of its tables and columns; lengths that were not given are left out.
std::string writtenMap(QVMemPtr map);

// The same, and what is settled of each column when the map is used.
std::string mapText(QVMemPtr map);

}  // namespace jmap::fuzz
