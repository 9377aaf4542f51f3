// How the text of a document comes whose rows are made while it is read.
#pragma once

#include "document.h"

#include <functional>

namespace qvej {

struct RowStream {
    Engine* engine = nullptr;
    DocumentOptions options = {};  // of its text or texts

    // Feeds all of the text to `walk`, a document with those options, and finishes it.  `fed`: to
    // be called after each piece.  Throws Error.  Called once, on a thread of its own.
    std::function<void(Document& walk, const std::function<void()>& fed)> read = {};

    // Ends a reading that waits.  On any thread.
    std::function<void()> stop = {};
};

}  // namespace qvej
