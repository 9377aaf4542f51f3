// A user map as a map document.
#pragma once

#include "kit/document.h"

#include <string>

namespace jmap::fuzz {

// All that a map can say of its tables and columns; lengths that were not given are left out.
std::string writtenMap(QVMemPtr map);

}  // namespace jmap::fuzz
