// See range_document.h.
#include "client/ranges/range_document.h"

#include "client/maps/exact_map.h"
#include "client/parts/text_part.h"
#include "client/text_consumer.h"

#include <memory>
#include <optional>
#include <utility>

namespace qvej {
namespace {

DocumentOptions documentOptions(const RangeOptions& options) {
    DocumentOptions document;
    document.naming = options.naming;
    document.maxDepth = options.maxDepth;
    document.several = !options.sourceColumn.empty();
    document.sourceColumn = options.sourceColumn;
    document.stopped = options.stopped;
    return document;
}

// Gives the text of a whole file as it comes.
class WholeText final : public TextConsumer {
   public:
    WholeText(TextPart part, const TakePart& take) : part_(std::move(part)), take_(take) {}
    void feed(std::string_view text) override { give(text, true); }
    void finish() override { give({}, false); }
    [[nodiscard]] Place end() const override { return {}; }

   private:
    void give(std::string_view text, bool more) {
        TextPart part = part_;
        part.partition.text = text;
        part.partition.more = more;
        take_(std::move(part));
    }

    const TextPart part_;
    const TakePart& take_;
};

std::string textOf(const TextRange& range, const TextPiece& piece) {
    std::string text;
    readPiece(range, piece, [&](std::string_view bytes, bool) { text += bytes; });
    return text;
}

// The pieces of a range as the parts of a document.
void readRange(const TextRange& wanted, const TextOptions& options, const TakePart& take) {
    const TextRange range = withWholeLines(wanted);
    TextPart part;
    part.name = range.file;
    part.form = range.form;
    if (range.whole()) {
        DocumentReader reader(wholeFile(range.file, range.readAt, {}), options);
        part.name = reader.name();
        part.form = reader.form();
        WholeText whole(part, take);
        reader.read(whole);
        return;
    }
    if (range.head) {
        part.head = std::make_shared<const std::string>(textOf(range, *range.head));
    }
    for (const TextPiece& piece : range.pieces) {
        part.member = piece.member;
        readPiece(range, piece, [&](std::string_view bytes, bool more) {
            TextPart next = part;
            next.partition = {
                std::string(bytes), {piece.begin, piece.line, piece.column}, piece.kind, more};
            take(std::move(next));
        });
        part.head.reset();  // that of the first piece alone
    }
}

}  // namespace

RangeDocument::RangeDocument(Engine& engine, RangeOptions options)
    : document_(engine, [&] {
          DocumentOptions sum = documentOptions(options);
          sum.ofParts = true;
          return sum;
      }()) {
    if (document_.hasSourceColumn()) {
        document_.addText(options.range.file);
    }
    document_.addPart(options.whole.bytes(), 1, 1);
    document_.finishParts();
    if (!options.map.empty()) {
        document_.useMap(options.map);
    } else if (options.exact && !document_.inexactPaths().empty()) {
        document_.useMap(mapDocument(exactMap(document_, each(document_.tables())).map));
    }
    auto parts = std::make_shared<PartsOfDocument>();
    parts->engine = &engine;
    parts->options = documentOptions(options);
    parts->counts.add(options.before);
    for ([[maybe_unused]] const TextPiece& piece : options.range.pieces) {
        parts->counts.add({});
    }
    parts->excerpt = {1, options.last};
    parts->read = [range = std::move(options.range), text = options.text](
                      uint64_t, const TakePart& take) { readRange(range, text, take); };
    document_.setParts(std::move(parts));
}

}  // namespace qvej
