// See partial_scan.h.
#include "client/ranges/partial_scan.h"

#include "client/error.h"
#include "client/parts/part_document.h"
#include "client/parts/scan_parts.h"
#include "client/parts/text_part.h"
#include "client/text_consumer.h"

#include <optional>

namespace qvej {
namespace {

// Numbers of elements that are no objects: those of whole texts begin anew anyway.
constexpr uint32_t kHarmless = JMAP_PART_OTHER_ELEMENTS;

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// Why scans with these flags cannot be added to others; null: they can.
const char* whyAlone(uint32_t flags) {
    return (flags & JMAP_PART_EMPTY_NAME) != 0 ? "a member has the name \"\""
           : (flags & JMAP_PART_LONG_ELEMENTS) != 0
               ? "elements of an array would have names of 30 bytes or more"
           : flags != 0 ? "the outermost array has elements that are no objects"
                        : nullptr;
}

void checkDivisible(uint32_t flags, const std::string& file) {
    if (const char* const why = whyAlone(flags)) {
        throw Error(QV_UNSUPPORTED, std::string("cannot be scanned in parts: ") + why, file);
    }
}

PartsOfDocument partsOf(Engine& engine, const PartialScanOptions& options) {
    PartsOfDocument parts;
    parts.engine = &engine;
    parts.options.maxDepth = options.maxDepth;
    parts.options.maxPaths = options.maxPaths;
    parts.options.stopped = options.stopped;
    return parts;
}

// Counts a piece of a range.
class PieceScan final : public TextConsumer {
   public:
    PieceScan(const PartsOfDocument& parts, TextForm form, const TextPiece& piece) : part_(parts) {
        jmapCountOnly(part_.handle(), 1);
        piece_.form = form;
        piece_.member = piece.member;
        piece_.partition.kind = piece.kind;
    }

    void give(std::string_view text, bool more) {
        piece_.partition.text = text;
        piece_.partition.more = more;
        piece_.endsPart = !more;
        part_.feed(piece_);
    }
    void feed(std::string_view text) override { give(text, true); }
    void finish() override { give({}, false); }
    [[nodiscard]] Place end() const override { return part_.document().end(); }
    [[nodiscard]] int64_t before() const { return part_.before(); }

    [[nodiscard]] std::string bytes() {
        part_.finish();
        const char* bytes = nullptr;
        QVStrSize bytesLen = 0;
        check(jmapTakePart(part_.handle(), &bytes, &bytesLen));
        return std::string(view(bytes, bytesLen));
    }
    [[nodiscard]] uint32_t flags() const { return jmapPartFlags(part_.handle()); }

   private:
    PartDocument part_;
    TextPart piece_;
};

// The failure of a piece, with its place in the file.
[[noreturn]] void failIn(const std::string& file, const TextPiece& piece, int64_t before,
                         const Error& error) {
    if (!error.file().empty()) {
        throw error;
    }
    Place place = error.place();
    place.file = file;
    if (place.line != 0) {
        place.column += place.line == 1 ? piece.column - 1 - before : 0;
        place.line = piece.line == 0 ? 0 : place.line + piece.line - 1;
    }
    if (place.offset >= 0) {
        place.offset += static_cast<int64_t>(piece.begin) - before;
    }
    throw Error(error.status(), error.what(), place, error.excerpt());
}

// Blank lines are no part: to a parser they would be an empty array.
std::optional<PartialScan> scanned(const PartsOfDocument& parts, const TextRange& range,
                                   const TextPiece& piece) {
    PieceScan scan(parts, range.form, piece);
    bool blank = range.form == TextForm::LINES;
    try {
        readPiece(range, piece, [&](std::string_view bytes, bool more) {
            blank = blank && isBlank(bytes);
            scan.give(bytes, more);
        });
        if (blank) {
            return std::nullopt;
        }
        PartialScan counted(scan.bytes());
        checkDivisible(scan.flags(), range.file);
        return counted;
    } catch (const Error& error) {
        failIn(range.file, piece, scan.before(), error);
    }
}

std::string scannedWhole(const PartsOfDocument& parts, ByteSource source,
                         const TextOptions& options) {
    source.stopWhen(parts.options.stopped);
    DocumentReader reader(std::move(source), options);
    PartsOfDocument whole = parts;
    whole.options = reader.documentOptions(parts.options);
    PieceScan scan(whole, reader.form(), {});
    reader.read(scan);
    try {
        return scan.bytes();
    } catch (const Error& error) {
        failIn(reader.name(), {}, scan.before(), error);
    }
}

// The sum of scans, on its way.
class Sum {
   public:
    explicit Sum(Engine& engine) : document_(engine, ofParts()) {}

    void add(const PartialScan& scan) {
        try {
            document_.addPart(scan.bytes(), 1, 1);
        } catch (const Error& error) {
            throw error.status() == QV_BADPARMS
                ? Error(QV_BADPARMS, "these bytes are no partial scan, or are damaged")
                : error;
        }
        if (++count_ > 1) {
            checkDivisible(jmapPartFlags(document_.handle()) & ~kHarmless, {});
        }
    }
    [[nodiscard]] Document& document() { return document_; }

   private:
    static DocumentOptions ofParts() {
        DocumentOptions options;
        options.ofParts = true;
        return options;
    }

    Document document_;
    std::size_t count_ = 0;
};

}  // namespace

PartialScan PartialScan::of(Engine& engine, const TextRange& range,
                            const PartialScanOptions& options) {
    const PartsOfDocument parts = partsOf(engine, options);
    if (range.whole()) {
        return PartialScan(scannedWhole(parts, wholeFile(range.file, range.readAt, options.stopped),
                                        options.text));
    }
    const TextRange lines = withWholeLines(range);
    std::vector<PartialScan> pieces;
    for (const TextPiece& piece : lines.pieces) {
        if (std::optional<PartialScan> scan = scanned(parts, lines, piece)) {
            pieces.push_back(*std::move(scan));
        }
    }
    return pieces.size() == 1 ? pieces.front() : merged(engine, pieces);
}

PartialScan PartialScan::of(Engine& engine, std::string_view text,
                            const PartialScanOptions& options) {
    return PartialScan(
        scannedWhole(partsOf(engine, options), ByteSource::memory(text), options.text));
}

PartialScan PartialScan::merged(Engine& engine, const std::vector<PartialScan>& scans) {
    Sum sum(engine);
    for (const PartialScan& scan : scans) {
        sum.add(scan);
    }
    const char* bytes = nullptr;
    QVStrSize bytesLen = 0;
    check(jmapTakePart(sum.document().handle(), &bytes, &bytesLen));
    return PartialScan(std::string(view(bytes, bytesLen)));
}

std::string PartialScan::mapText(Engine& engine) const {
    Sum sum(engine);
    sum.add(*this);
    sum.document().finishParts();
    return sum.document().mapText();
}

bool PartialScan::tellsOrdinals(Engine& engine) const {
    Sum sum(engine);
    sum.add(*this);
    return (jmapPartFlags(sum.document().handle()) & JMAP_PART_OTHER_ELEMENTS) == 0;
}

std::vector<ContainerCount> PartialScan::counts(Engine& engine) const {
    Sum sum(engine);
    sum.add(*this);
    return containersOf(sum.document().handle());
}

}  // namespace qvej
