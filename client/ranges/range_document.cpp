// See range_document.h.
#include "client/ranges/range_document.h"

#include "client/maps/exact_map.h"
#include "client/parts/input_parts.h"
#include "client/parts/text_part.h"
#include "client/ranges/bad_lines.h"
#include "client/text_consumer.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace qvej {
namespace {

DocumentOptions documentOptions(const RangeOptions& options) {
    DocumentOptions document;
    document.naming = options.naming;
    document.maxDepth = options.maxDepth;
    document.several = !options.sourceColumn.empty();
    document.sourceColumn = options.sourceColumn;
    document.shape = options.shape;
    document.stopped = options.stopped;
    return document;
}

// Gives the text of a part as it comes.
class StreamedPart final : public TextConsumer {
   public:
    StreamedPart(TextPart part, const TakePart& take) : part_(std::move(part)), take_(take) {}
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

void ignore(const BadLine&) {}

// How a range is read.
struct Reading {
    Engine* engine;
    TextOptions text;
    bool skipBadLines;
    uint64_t maxDepth;
};

void readWhole(const Reading& reading, const ReadAt& readAt, TextPart part, const TakePart& take) {
    DocumentReader reader(wholeFile(part.name, readAt, {}), reading.text);
    part.name = reader.name();
    part.form = reader.form();
    StreamedPart whole(part, take);
    if (reading.skipBadLines && part.form == TextForm::LINES) {
        LineSieve sieve(*reading.engine, whole, &ignore, reading.maxDepth);
        reader.read(sieve);
    } else {
        reader.read(whole);
    }
}

// The pieces of a range as the parts of a document.
void readRange(const TextRange& wanted, const Reading& reading, const TakePart& take) {
    const TextRange range = withWholeLines(wanted);
    TextPart part;
    part.name = range.file;
    part.form = range.form;
    if (range.whole()) {
        readWhole(reading, range.readAt, std::move(part), take);
        return;
    }
    if (reading.skipBadLines && range.form == TextForm::LINES) {
        const TextPiece& piece = range.pieces.front();
        part.partition = {{}, {piece.begin, piece.line, piece.column}, piece.kind};
        StreamedPart lines(part, take);
        readSifted(*reading.engine, range, piece, reading.maxDepth, lines, &ignore);
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

void addTexts(Engine& engine, const RangeOptions& options, Document& document) {
    const auto add = [&](const TextRange& range, const PartialScan& scan) {
        if (document.hasSourceColumn()) {
            document.addText(range.file);
        }
        document.addPart(scan.bytes(), 1, 1);
    };
    if (options.together.empty()) {
        add(options.range, options.whole);
        return;
    }
    std::vector<PartialScan> scans;
    for (const ScannedFile& file : options.together) {
        add(file.range, file.scan);
        scans.push_back(file.scan);
    }
    (void)PartialScan::merged(engine, scans);  // throws when there is no sum
}

void readTogether(const std::vector<ScannedFile>& files, const Reading& reading,
                  const TakePart& take) {
    for (std::size_t i = 0; i < files.size(); ++i) {
        TextPart part;
        part.text = i;
        part.name = files[i].range.file;
        readWhole(reading, files[i].range.readAt, std::move(part), take);
    }
}

// The files of this machine that are read.
InputList localFiles(const RangeOptions& options) {
    InputList local;
    const auto add = [&](const TextRange& range) {
        if (!range.readAt) {
            local.files.push_back(range.file);
        }
    };
    if (options.together.empty()) {
        add(options.range);
    }
    for (const ScannedFile& file : options.together) {
        add(file.range);
    }
    return local;
}

// Throws QV_IO_CHANGED when a file is not what it is now.
ReadParts whileUnchanged(const RangeOptions& options, ReadParts read) {
    return [read = std::move(read), check = checkOfChanges(localFiles(options))](
               uint64_t bytes, const TakePart& take) {
        check();
        read(bytes, take);
        check();
    };
}

}  // namespace

RangeDocument::RangeDocument(Engine& engine, RangeOptions options)
    : document_(engine, [&] {
          DocumentOptions sum = documentOptions(options);
          sum.ofParts = true;
          return sum;
      }()) {
    addTexts(engine, options, document_);
    document_.finishParts();
    if (!options.map.empty()) {
        document_.useMap(options.map);
    } else if (options.exact && !document_.inexactPaths().empty()) {
        document_.useMap(mapDocument(exactMap(document_, each(document_.tables())).map));
    }
    auto parts = std::make_shared<PartsOfDocument>();
    parts->engine = &engine;
    parts->options = documentOptions(options);
    const Reading reading = {&engine, options.text, options.skipBadLines, options.maxDepth};
    if (!options.together.empty()) {
        parts->asOne = true;
        parts->read = whileUnchanged(
            options, [files = options.together, reading](uint64_t, const TakePart& take) {
                readTogether(files, reading, take);
            });
        document_.setParts(std::move(parts));
        return;
    }
    parts->counts.add(options.before);
    for ([[maybe_unused]] const TextPiece& piece : options.range.pieces) {
        parts->counts.add({});
    }
    parts->excerpt = {1, options.last};
    parts->read =
        whileUnchanged(options, [range = options.range, reading](uint64_t, const TakePart& take) {
            readRange(range, reading, take);
        });
    document_.setParts(std::move(parts));
}

}  // namespace qvej
