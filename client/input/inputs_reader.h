// The texts of a list of inputs on their way into a Document, one after the other.
//
//     qvej::InputsReader reader(qvej::inputList({"a.json", "logs"}), {});
//     qvej::Document document(engine, reader.documentOptions());
//     reader.read(document);
//
// Tested by tests/client/several_texts_test.cpp and tests/tool/golden/inputs.t
#pragma once

#include "document_reader.h"
#include "input_list.h"

#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <string_view>

namespace qvej {

class InputsReader {
   public:
    // Gives the bytes of a file of the list.
    using Open = std::function<ByteSource(const std::string& file)>;

    // Opens the first file.  Throws as DocumentReader.
    InputsReader(InputList inputs, const TextOptions& options, Open open = &ByteSource::file);

    // `options` with what the document must know of its text or texts.
    [[nodiscard]] DocumentOptions documentOptions(DocumentOptions options = {}) const;

    // Has a text read into what takes it: `reader.read(text)`, or with something in between.
    using ReadText = std::function<void(DocumentReader& reader, TextConsumer& text)>;

    // Feeds all texts to the document, which was made with those options, and finishes it.  Throws
    // Error.
    void read(Document& document, const ReadText& readText = {});

    // Calls `read` for each text in order.  Throws what it throws, and Error.
    void each(const std::function<void(std::size_t text, DocumentReader& reader)>& read);

    // Of the text that is read, or was read last.
    [[nodiscard]] const DocumentReader& current() const { return *current_; }

    // What messages call all of it.
    [[nodiscard]] std::string name() const;

   private:
    void askFor(const std::string& file);
    void lookAhead();

    InputList inputs_;
    TextOptions options_;
    Open open_;
    std::unique_ptr<DocumentReader> current_;
    // Those that come next, on threads of their own: the beginnings of files are read ahead.
    std::deque<std::future<std::unique_ptr<DocumentReader>>> coming_;
    std::size_t asked_ = 1;  // files that were asked for
};

}  // namespace qvej
