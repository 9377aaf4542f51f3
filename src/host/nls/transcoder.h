// Converters between encodings.
//
// Every pair of UTF-32 (the host's own characters), UTF-8 and the code pages, both ways.
//
// Tested by tests/host/nls_test.cpp
#pragma once

#include "qvehost.h"

namespace qvhost {

// Null when one of the encodings is none of these.  It is ended by its `generic.destroy`.
[[nodiscard]] QVTranscoderh createTranscoder(QVHndlp host, QVCEI from, QVCEI to);

}  // namespace qvhost
