// Feeds a document to the parser and finishes it.
//
// Tested by tests/frame/driver_test.cpp
#pragma once

#include "qvejmap.h"

struct JMAP_PRIVATE;

namespace jmap {

// The operation of the public table; contract in qvejmap.h.
QVStatus JsonInput(QVEJMAPJsonContexth inh, QVMemPtr inbuf, QVStrSize inlen, QVBoolean done,
                   QVBoolean* caching, QVJnlh jnl);

// Finishes a document whose parts have all been added; see jmapEndParts.
QVStatus endParts(JMAP_PRIVATE* p) noexcept;

// Ends what a failed or unfinished scan keeps open; see jmapEndInput.
void endInput(JMAP_PRIVATE* p) noexcept;

}  // namespace jmap
