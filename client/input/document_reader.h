// A document's text, from wherever it comes, on its way into a Document or another TextConsumer.
//
//     qvej::DocumentReader reader(qvej::ByteSource::file("orders.json.gz"), {});
//     qvej::Document document(engine, reader.documentOptions());
//     reader.read(document);
//
// What goes wrong is an Error with the name of the source or of another file; a mistake in the text
// has its place in the source and its excerpt too.
//
// Tested by tests/client/document_reader_test.cpp and tests/tool/golden/check.t
#pragma once

#include "../document.h"
#include "../text_form.h"
#include "byte_source.h"
#include "document_text.h"
#include "text_trail.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace qvej {

struct TextOptions {
    std::string encoding = "auto";  // any name that ICU knows; "auto": by the first bytes
    bool replaceInvalid = false;    // what is wrong in the encoding becomes U+FFFD
    bool late = false;              // the document gets the text later than it is read: columns are
                                    // counted in UTF-8, whatever its encoding
    bool lines = false;             // JSON Lines, whatever the source is called or holds
};

class DocumentReader {
   public:
    // Reads the first bytes.  Throws Error: they cannot be read, or no encoding has that name.
    DocumentReader(ByteSource source, const TextOptions& options);
    DocumentReader(const DocumentReader&) = delete;
    DocumentReader& operator=(const DocumentReader&) = delete;

    // `options` with what the document must know of this text.  They hold on to the reader, which
    // must live as long as the document is read.
    [[nodiscard]] DocumentOptions documentOptions(DocumentOptions options = {}) const;

    // Feeds the whole text to the document, which was made with those options, and finishes it.
    // `observer` sees each piece before the document does.  Throws Error.
    void read(TextConsumer& document, const std::function<void(std::string_view)>& observer = {});

    // Gives the text to `take` instead, in UTF-8, until that says false.  Throws Error when it
    // cannot be read; what is wrong in its encoding ends it.
    void pass(const std::function<bool(std::string_view)>& take);

    // One document, JSON Lines or a sequence?  As the options say, else the name of the source,
    // else the beginning of the text.
    [[nodiscard]] TextForm form() const { return form_; }

    // Is its encoding another than UTF-8?
    [[nodiscard]] bool recoded() const { return text_.recoded(); }

    // As of DocumentText.
    [[nodiscard]] std::optional<int64_t> bytesBefore() const { return text_.bytesBefore(); }

    // What messages call the source.
    [[nodiscard]] const std::string& name() const { return text_.name(); }

    // JSON Lines, only because of the name of the source?
    [[nodiscard]] bool linesByName() const { return linesByName_; }
    // JSON Lines, only because of the beginning of the text?
    [[nodiscard]] bool linesByContent() const {
        return form_ == TextForm::LINES && !linesSaid_ && !linesByName_;
    }

    // Another encoding than the one that was named, when the first bytes look like that; else null.
    [[nodiscard]] const std::string* otherEncoding() const { return text_.otherEncoding(); }

   private:
    void feed(TextConsumer& document, const std::function<void(std::string_view)>& observer);

    DocumentText text_;
    bool late_;
    bool linesSaid_;
    bool linesByName_;
    TextForm form_;
    TextTrail trail_;
};

}  // namespace qvej
