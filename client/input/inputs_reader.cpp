// See inputs_reader.h.
#include "client/input/inputs_reader.h"

#include "client/input/text_of_document.h"

#include <utility>

namespace qvej {

InputsReader::InputsReader(InputList inputs, const TextOptions& options, Open open)
    : inputs_(std::move(inputs)),
      options_(options),
      open_(std::move(open)),
      current_(std::make_unique<DocumentReader>(open_(inputs_.files.front()), options_)) {}

DocumentOptions InputsReader::documentOptions(DocumentOptions options) const {
    options.several = inputs_.several;
    return current_->documentOptions(options);
}

void InputsReader::read(Document& document, const ReadText& readText) {
    const auto read = [&](TextConsumer& text) {
        readText ? readText(*current_, text) : current_->read(text);
    };
    if (!inputs_.several) {
        read(document);
        return;
    }
    for (std::size_t i = 0; i < inputs_.files.size(); ++i) {
        if (i != 0) {
            current_ = std::make_unique<DocumentReader>(open_(inputs_.files[i]), options_);
        }
        TextOfDocument text(document, current_->name(), current_->documentOptions());
        read(text);
    }
    document.finish();
}

std::string InputsReader::name() const {
    const std::string& first = inputs_.files.front();
    const std::string name = first == "-" ? "<stdin>" : first;
    const std::size_t others = inputs_.files.size() - 1;
    return others == 0 ? name : name + " and " + std::to_string(others) + " more";
}

}  // namespace qvej
