// See document_reader.h.
#include "client/input/document_reader.h"

#include "client/error.h"

#include <utility>

namespace qvej {
namespace {

constexpr std::size_t kDescriptionBytes = 20;

// Is the file named as JSON Lines are, compressed or not?
bool namedAsLines(std::string_view file) {
    for (const std::string_view packed : {".gz", ".zst"}) {
        file.remove_suffix(file.ends_with(packed) ? packed.size() : 0);
    }
    return file.ends_with(".jsonl") || file.ends_with(".ndjson");
}

// What notes call the document: the end of its path, in whole characters.
std::string describe(const std::string& name) {
    const std::string base = name.substr(name.rfind('/') + 1);
    return std::string(withoutUnfinished(std::string_view(base).substr(0, kDescriptionBytes)));
}

}  // namespace

DocumentReader::DocumentReader(ByteSource source, const TextOptions& options)
    : text_(std::move(source), options.encoding, options.replaceInvalid),
      late_(options.late),
      linesSaid_(options.lines),
      linesByName_(!options.lines && namedAsLines(name())),
      form_(linesSaid_ || linesByName_ ? TextForm::LINES : text_.form()) {}

DocumentOptions DocumentReader::documentOptions(DocumentOptions options) const {
    options.lines = form_ == TextForm::LINES;
    options.sequence = form_ == TextForm::SEQUENCE;
    if (text_.recoded() && !late_) {
        options.columnOf = [this](int64_t offset) { return text_.columnOf(offset); };
    }
    options.description = describe(name());
    return options;
}

void DocumentReader::read(TextConsumer& document,
                          const std::function<void(std::string_view)>& observer) {
    try {
        feed(document, observer);
    } catch (const Error& error) {
        if (!error.file().empty()) {
            throw;  // not about the text
        }
        Place place = error.place();
        place.file = name();
        if (place.offset < 0) {
            throw Error(error.status(), error.what(), place);
        }
        place.offset =
            text_.recoded() && late_ ? -1 : text_.sourceOffset(place.offset, place.column);
        throw Error(error.status(), error.what(), place, trail_.excerpt(error.offset()));
    }
}

void DocumentReader::pass(const std::function<bool(std::string_view)>& take) {
    for (std::string_view piece = text_.next(); !piece.empty() && take(piece);) {
        piece = text_.next();
    }
}

void DocumentReader::feed(TextConsumer& document,
                          const std::function<void(std::string_view)>& observer) {
    for (std::string_view piece = text_.next(); !piece.empty(); piece = text_.next()) {
        trail_.take(piece);
        if (observer) {
            observer(piece);
        }
        document.feed(piece);
        trail_.passed();
    }
    if (text_.broken()) {
        throw Error(QV_JSON_UTF8, "the text is not valid " + text_.encoding(), document.end());
    }
    document.finish();
}

}  // namespace qvej
