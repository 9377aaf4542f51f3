// See part_document.h.
#include "client/parts/part_document.h"

namespace qvej {
namespace {

using Kind = Partition::Kind;

DocumentOptions optionsOfPart(DocumentOptions options) {
    options.part = true;
    options.ofParts = false;
    options.lines = options.sequence = false;  // a piece says it
    return options;
}

bool hasComma(const TextPart& piece) {
    const Kind kind = piece.partition.kind;
    return piece.form == TextForm::DOCUMENT && (kind == Kind::FIRST || kind == Kind::MIDDLE);
}

}  // namespace

PartDocument::PartDocument(const PartsOfDocument& parts)
    : several_(parts.options.several), document_(*parts.engine, optionsOfPart(parts.options)) {}

void PartDocument::begin(const TextPart& piece) {
    text_ = piece.text;
    DocumentOptions options;
    options.lines = piece.form == TextForm::LINES;
    options.sequence = piece.form == TextForm::SEQUENCE;
    if (several_) {
        document_.beginText(piece.name, options);
    } else if (options.lines || options.sequence) {
        document_.setForm(options);
    }
    const Kind kind = piece.partition.kind;
    if (piece.form == TextForm::DOCUMENT && (kind == Kind::MIDDLE || kind == Kind::LAST)) {
        document_.feed("[");
        before_ = 1;
    }
}

void PartDocument::end(const TextPart& piece) {
    if (hasComma(piece)) {
        document_.feed("]");
    }
    if (several_) {
        document_.endText();
    }
}

void PartDocument::feed(const TextPart& piece) {
    if (text_ != piece.text) {
        begin(piece);
    }
    std::string_view text = piece.partition.text;
    text.remove_suffix(hasComma(piece) ? 1 : 0);
    document_.feed(text);
    if (!piece.partition.more) {
        end(piece);
    }
}

}  // namespace qvej
