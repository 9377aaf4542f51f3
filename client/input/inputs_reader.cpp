// See inputs_reader.h.
#include "client/input/inputs_reader.h"

#include "client/input/text_of_document.h"
#include "client/quiet_thread.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace qvej {
namespace {

constexpr std::size_t kMostAhead = 4;  // files

}  // namespace

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
    each([&](std::size_t /*text*/, DocumentReader& reader) {
        TextOfDocument text(document, reader.name(), reader.documentOptions());
        read(text);
    });
    document.finish();
}

void InputsReader::each(const std::function<void(std::size_t text, DocumentReader& reader)>& read) {
    for (std::size_t i = 0; i < inputs_.files.size(); ++i) {
        lookAhead();
        if (i != 0) {
            current_ = coming_.front().get();
            coming_.pop_front();
        }
        read(i, *current_);
    }
}

void InputsReader::lookAhead() {
    const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
    while (asked_ < inputs_.files.size() && coming_.size() < std::min(cores, kMostAhead)) {
        askFor(inputs_.files[asked_++]);
    }
}

void InputsReader::askFor(const std::string& file) {
    try {
        const auto source = std::make_shared<ByteSource>(open_(file));
        const SignalsBlocked blocked;
        coming_.push_back(std::async(
            source->isFile() ? std::launch::async | std::launch::deferred : std::launch::deferred,
            [source, this] {
                return std::make_unique<DocumentReader>(std::move(*source), options_);
            }));
    } catch (...) {  // told when it is the file's turn
        std::promise<std::unique_ptr<DocumentReader>> failed;
        failed.set_exception(std::current_exception());
        coming_.push_back(failed.get_future());
    }
}

std::string InputsReader::name() const {
    const std::string& first = inputs_.files.front();
    const std::string name = first == "-" ? "<stdin>" : first;
    const std::size_t others = inputs_.files.size() - 1;
    return others == 0 ? name : name + " and " + std::to_string(others) + " more";
}

}  // namespace qvej
