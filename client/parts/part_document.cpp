// See part_document.h.
#include "client/parts/part_document.h"

#include "client/error.h"

namespace qvej {
namespace {

using Kind = Partition::Kind;

DocumentOptions optionsOfPart(DocumentOptions options, uint64_t mostPaths) {
    options.part = true;
    options.ofParts = false;
    options.lines = options.sequence = false;  // a piece says it
    if (mostPaths != 0 && (options.maxPaths == 0 || options.maxPaths > mostPaths)) {
        options.maxPaths = mostPaths;
    }
    return options;
}

// Whether other elements come after those of the part, or before them.
bool goesOn(const TextPart& piece) {
    const Kind kind = piece.partition.kind;
    return piece.form == TextForm::DOCUMENT && (kind == Kind::FIRST || kind == Kind::MIDDLE);
}
bool cameBefore(const TextPart& piece) {
    const Kind kind = piece.partition.kind;
    return piece.form == TextForm::DOCUMENT &&
           (kind == Kind::MIDDLE || kind == Kind::LAST || kind == Kind::TAIL);
}

bool isOfMember(const TextPart& piece) {
    return !piece.member.empty();
}

}  // namespace

PartDocument::PartDocument(const PartsOfDocument& parts, uint64_t mostPaths)
    : several_(parts.options.several),
      document_(*parts.engine, optionsOfPart(parts.options, mostPaths)) {}

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
    if (cameBefore(piece)) {
        const std::string before = piece.head != nullptr ? *piece.head
                                   : isOfMember(piece)   ? "{\"" + piece.member + "\":["
                                                         : "[";
        isBefore_ = true;
        document_.feed(before);
        before_ = static_cast<int64_t>(before.size());
        recordsBefore_ = document_.totals().records;
        jmapBeginPart(document_.handle());
        isBefore_ = false;
    }
}

void PartDocument::end(const TextPart& piece) {
    if (piece.endsPart && !piece.last) {
        check(jmapEndPart(document_.handle()));
    }
    if (goesOn(piece)) {
        document_.feed(isOfMember(piece) ? "]}" : "]");
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
    // The last elements of a member have none.
    const bool comma = goesOn(piece) && !piece.partition.more && text.ends_with(',');
    text.remove_suffix(comma ? 1 : 0);
    document_.feed(text);
    open_ = piece.partition.kind == Kind::HEAD;
    if (!piece.partition.more && !open_) {
        end(piece);
    }
}

void PartDocument::finish() {
    if (!open_) {
        document_.finish();
    }
}

}  // namespace qvej
