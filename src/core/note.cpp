// Notes to the document's journal.
//
// Tested by tests/frame/notes_test.cpp
#include "note.h"

#include <string_view>

namespace jmap {

void myLogNote(JMAP_PRIVATE* p, const QVChar* fmt, ...) {
    QVJnlh jnl = p->jnl;
    if (jnl == nullptr) {
        return;
    }
    const auto fmtLen = static_cast<QVStrSize>(std::u32string_view(fmt).size());
    va_list args;
    va_start(args, fmt);
    (void)jnl->write(jnl, QV_NOTE, fmt, fmtLen, args);  // a note is never a reason to fail
    va_end(args);
    (void)jnl->flush(jnl);
}

}  // namespace jmap
