// Feeding a document to the parser and finishing it.
//
// Tested by tests/frame/driver_test.cpp
#pragma once

#include "qvejmap.h"

struct JMAP_PRIVATE;

namespace jmap {

// The operation of the public table; contract in qvejmap.h.
QVStatus JsonInput(QVEJMAPJsonContexth inh, QVMemPtr inbuf, QVStrSize inlen, QVBoolean done,
                   QVBoolean* caching, QVJnlh jnl);

// Ends what a scan keeps open that failed or was not finished; see jmapEndInput.
void endInput(JMAP_PRIVATE* p) noexcept;

}  // namespace jmap
