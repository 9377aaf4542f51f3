// See partial_scan.h.
#include "client/ranges/partial_scan.h"

#include "client/error.h"
#include "client/parts/part_document.h"
#include "client/parts/scan_parts.h"
#include "client/parts/text_part.h"
#include "client/ranges/bad_lines.h"
#include "client/shape/shape_plans.h"
#include "client/text_consumer.h"

#include <algorithm>
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
    parts.options.shape = options.shape;
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
        if (piece_.form == TextForm::LINES) {
            feeds_ += static_cast<uint64_t>(std::count(text.begin(), text.end(), '\n'));
            blank_ = blank_ && isBlank(text);
        }
        piece_.partition.text = text;
        piece_.partition.more = more;
        piece_.endsPart = !more;
        part_.feed(piece_);
    }
    void feed(std::string_view text) override { give(text, true); }
    void finish() override { give({}, false); }
    [[nodiscard]] Place end() const override { return part_.document().end(); }
    [[nodiscard]] int64_t before() const { return part_.before(); }
    // Of lines: are they blank, and how many line feeds are there?
    [[nodiscard]] bool blank() const { return piece_.form == TextForm::LINES && blank_; }
    [[nodiscard]] uint64_t feeds() const { return feeds_; }

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
    bool blank_ = true;
    uint64_t feeds_ = 0;
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

// Are elements of a large member shaped each by itself?  Not where a rule is for the member or what
// is around it, or holds it back until something is in it.
bool shapedApart(const Shape& shape, const std::string& member) {
    ShapePlans plans(shape);
    const bool asItStands = member.find('\\') == std::string::npos;
    return shape.empty() || (asItStands && !plans.dropsEmpty() && plans.root().plain &&
                             plans.child(plans.root(), member).plain);
}

// Blank lines are no part: to a parser they would be an empty array.
std::optional<PartialScan> scanned(const PartsOfDocument& parts, const TextRange& range,
                                   const TextPiece& piece, bool skipBadLines, SeenLines& seen) {
    if (!piece.member.empty() && !shapedApart(parts.options.shape, piece.member)) {
        throw Error(QV_UNSUPPORTED, "cannot be scanned in parts: a rule of the shape needs all",
                    range.file);
    }
    PieceScan scan(parts, range.form, piece);
    try {
        if (skipBadLines && range.form == TextForm::LINES) {
            readSifted(*parts.engine, range, piece, parts.options.maxDepth, scan,
                       [&](const BadLine&) { ++seen.bad; });
        } else {
            readPiece(range, piece,
                      [&](std::string_view bytes, bool more) { scan.give(bytes, more); });
        }
        seen.feeds += scan.feeds();
        if (scan.blank()) {
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
                         const PartialScanOptions& options, SeenLines& seen) {
    source.stopWhen(parts.options.stopped);
    TextOptions text = options.text;
    text.late = options.skipBadLines;
    DocumentReader reader(std::move(source), text);
    PartsOfDocument whole = parts;
    whole.options = reader.documentOptions(parts.options);
    PieceScan scan(whole, reader.form(), {});
    if (options.skipBadLines && reader.form() == TextForm::LINES) {
        LineSieve sieve(
            *parts.engine, scan, [&](const BadLine&) { ++seen.bad; }, options.maxDepth);
        reader.read(sieve);
    } else {
        reader.read(scan);
    }
    seen.feeds = scan.feeds();
    try {
        return scan.bytes();
    } catch (const Error& error) {
        failIn(reader.name(), {}, scan.before(), error);
    }
}

// The sum of scans, on its way.
class Sum {
   public:
    explicit Sum(Engine& engine, uint64_t maxPaths = 0) : document_(engine, ofParts(maxPaths)) {}

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
    static DocumentOptions ofParts(uint64_t maxPaths) {
        DocumentOptions options;
        options.ofParts = true;
        options.maxPaths = maxPaths;
        return options;
    }

    Document document_;
    std::size_t count_ = 0;
};

}  // namespace

PartialScan PartialScan::of(Engine& engine, const TextRange& range,
                            const PartialScanOptions& options, SeenLines* wanted) {
    const PartsOfDocument parts = partsOf(engine, options);
    SeenLines ignored;
    SeenLines& seen = wanted != nullptr ? *wanted : ignored;
    seen = {};
    if (range.whole()) {
        return PartialScan(scannedWhole(parts, wholeFile(range.file, range.readAt, options.stopped),
                                        options, seen));
    }
    const TextRange lines = withWholeLines(range);
    std::vector<PartialScan> pieces;
    for (const TextPiece& piece : lines.pieces) {
        if (std::optional<PartialScan> scan =
                scanned(parts, lines, piece, options.skipBadLines, seen)) {
            pieces.push_back(*std::move(scan));
        }
    }
    return pieces.size() == 1 ? pieces.front() : merged(engine, pieces);
}

PartialScan PartialScan::of(Engine& engine, std::string_view text,
                            const PartialScanOptions& options) {
    SeenLines ignored;
    return PartialScan(
        scannedWhole(partsOf(engine, options), ByteSource::memory(text), options, ignored));
}

PartialScan PartialScan::merged(Engine& engine, const std::vector<PartialScan>& scans,
                                uint64_t maxPaths) {
    Sum sum(engine, maxPaths);
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
