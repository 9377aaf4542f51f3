// See scan_parts.h.
#include "client/parts/scan_parts.h"

#include "client/error.h"
#include "client/parts/part_document.h"
#include "client/parts/part_pipeline.h"
#include "client/parts/part_sequence.h"

#include <string>
#include <utility>

namespace qvej {
namespace {

constexpr uint64_t kPartBytes = uint64_t{1} << 20;
// Where names are data, adding up the parts costs more than counting the whole.
constexpr uint64_t kMostPaths = 30'000;

struct CountedPart {
    std::string bytes;  // see jmapTakePart
    uint32_t flags = 0;
    std::size_t text = 0;
    std::string name;
    bool wholeText = false;
    int64_t line = 0;  // where it begins
    int64_t column = 0;
};

CountedPart countPart(const PartsOfDocument& of, PieceSource& pieces) {
    PartDocument part(of, kMostPaths);
    jmapCountOnly(part.handle(), 1);
    CountedPart counted;
    TextPart piece;
    for (bool first = true; pieces.next(piece); first = false) {
        const Partition& partition = piece.partition;
        part.feed(piece);
        if (!first) {
            continue;
        }
        counted.text = piece.text;
        counted.name = piece.name;
        counted.wholeText = partition.kind == Partition::Kind::WHOLE;
        counted.line = partition.begin.line;
        counted.column = partition.begin.column - part.before();
    }
    part.finish();
    const char* bytes = nullptr;
    QVStrSize bytesLen = 0;
    check(jmapTakePart(part.handle(), &bytes, &bytesLen));
    counted.bytes = std::string(view(bytes, bytesLen));
    counted.flags = jmapPartFlags(part.handle());
    return counted;
}

// Whether the sum of the parts is that of the whole.
bool addsUp(const CountedPart& part) {
    const uint32_t harmless = part.wholeText ? uint32_t{JMAP_PART_OTHER_ELEMENTS} : 0;
    return (part.flags & ~harmless) == 0;
}

bool addAll(PartPipeline<CountedPart>& line, Document& sum, bool several) {
    std::size_t texts = 0;
    std::size_t parts = 0;
    bool firstAddsUp = true;
    CountedPart part;
    while (line.next(part)) {
        firstAddsUp = parts == 0 ? addsUp(part) : firstAddsUp;
        ++parts;
        if (parts > 1 && !(firstAddsUp && addsUp(part))) {
            return false;
        }
        if (several && part.text == texts) {
            sum.addText(part.name);
            ++texts;
        }
        sum.addPart(part.bytes, part.line, part.column);
    }
    sum.finishParts();
    return true;
}

}  // namespace

bool scanParts(const PartsOfDocument& parts, Document& sum) {
    try {
        PartPipeline<CountedPart> line(
            [&](const TakePart& take) { readInParts(parts, kPartBytes, Members::APART, take); },
            parts.threads,
            [&](PieceSource& pieces, const PartPipeline<CountedPart>::Put& put) {
                put(countPart(parts, pieces));
            });
        return addAll(line, sum, parts.options.several);
    } catch (const Indivisible&) {
        return false;
    } catch (const Error& error) {
        if (!error.file().empty() && error.line() == 0) {
            throw;  // it is not about the text
        }
        return false;
    }
}

}  // namespace qvej
