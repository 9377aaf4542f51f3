// The operation table of the instance.
//
// Tested by tests/abi/layout_test.c and tests/frame/entry_test.cpp
#pragma once

#include "qvejmap.h"

namespace jmap {

// Sets all seventeen operations; the head `exth` is the entry point's.
void fillOperations(UserJMAP_S* table) noexcept;

}  // namespace jmap
