// One part of a document as a document of its own, with what its parser must find around it.
//
// Tested by tests/client/parts_test.cpp
#pragma once

#include "../document.h"
#include "text_part.h"

#include <optional>
#include <string_view>

namespace qvej {

class PartDocument {
   public:
    // Of that document.
    //   mostPaths  that the part may have, QV_LIMIT_PATHS; 0: as many as the document
    explicit PartDocument(const PartsOfDocument& parts, uint64_t mostPaths = 0);

    // What stands before the first piece of a part is parsed; `feed` does it otherwise.
    void begin(const TextPart& piece);

    // The next piece: all are of one part, or all pieces of all texts.  It is parsed where it is.
    // Throws as Document::feed.
    void feed(const TextPart& piece);

    // After the last piece.  Throws as Document::finish.  What is before the elements of a member
    // is no whole text, so it is not looked at whether it ends.
    void finish();

    // Whether what is being parsed is not of the part, but before it.
    [[nodiscard]] bool isBefore() const { return isBefore_; }

    // Bytes that stand before the first piece, which are not in it.
    [[nodiscard]] int64_t before() const { return before_; }

    // Records of them, when the document keeps some.
    [[nodiscard]] uint64_t recordsBefore() const { return recordsBefore_; }

    [[nodiscard]] const Document& document() const { return document_; }
    [[nodiscard]] QVEJMAPJsonContexth handle() const { return document_.handle(); }

   private:
    void end(const TextPart& piece);

    const bool several_;
    Document document_;
    std::optional<std::size_t> text_;  // that is being fed
    bool open_ = false;
    bool isBefore_ = false;
    int64_t before_ = 0;
    uint64_t recordsBefore_ = 0;
};

}  // namespace qvej
