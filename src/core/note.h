// Notes to the document's journal.
//
// Tested by tests/frame/notes_test.cpp
#pragma once

#include "context.h"

namespace jmap {

// Writes one note and flushes the journal.  The format is terminated; its conversions are those of
// QVJnl.  Lengths given for "%.*hs" are int: use noteLen().  Without a journal nothing happens.
void myLogNote(JMAP_PRIVATE* p, const QVChar* fmt, ...);

// A length as the precision of a conversion.
[[nodiscard]] constexpr int noteLen(QVStrSize len) noexcept {
    return static_cast<int>(len);
}

}  // namespace jmap
