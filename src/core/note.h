// Notes to the document's journal.
//
// Tested by tests/frame/notes_test.cpp
#pragma once

#include "context.h"

namespace jmap {

// Writes one note and flushes the journal; does nothing without a journal.  `fmt` is terminated,
// its conversions are those of QVJnl.  A length for "%.*hs" must be an int: use noteLen().
void myLogNote(JMAP_PRIVATE* p, const QVChar* fmt, ...);

// A length as the precision of a conversion.
[[nodiscard]] constexpr int noteLen(QVStrSize len) noexcept {
    return static_cast<int>(len);
}

}  // namespace jmap
