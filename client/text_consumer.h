// What takes the text of a document piece by piece: a Document, or a walk over its events.
#pragma once

#include "error.h"

#include <string_view>

namespace qvej {

class TextConsumer {
   public:
    TextConsumer() = default;
    virtual ~TextConsumer() = default;
    TextConsumer(const TextConsumer&) = delete;
    TextConsumer& operator=(const TextConsumer&) = delete;

    // The next piece, UTF-8; it is only read.  Throws a mistake of the text with its place.
    virtual void feed(std::string_view text) = 0;

    // Ends the text.  Throws likewise, and JMAP_INCOMPLETE when the document is not complete.
    virtual void finish() = 0;

    // Where the text that was fed ends: the next byte would stand there.
    [[nodiscard]] virtual Place end() const = 0;
};

}  // namespace qvej
