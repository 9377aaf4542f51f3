// One text of a document of several, as what takes a text: it begins when this is made, and its
// `finish` ends it, not the document.
#pragma once

#include "../document.h"
#include "../text_consumer.h"

#include <string>
#include <string_view>

namespace qvej {

class TextOfDocument final : public TextConsumer {
   public:
    // See Document::beginText.  `document` must outlive it.
    TextOfDocument(Document& document, const std::string& name, const DocumentOptions& options)
        : document_(document) {
        document.beginText(name, options);
    }

    void feed(std::string_view text) override { document_.feed(text); }
    void finish() override { document_.endText(); }
    [[nodiscard]] Place end() const override { return document_.end(); }

   private:
    Document& document_;
};

}  // namespace qvej
