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

struct CountedPart {
    std::string bytes;  // see jmapTakePart
    uint32_t flags = 0;
    std::vector<ContainerCount> containers = {};
    std::size_t text = 0;
    std::string name;
    bool wholeText = false;
    int64_t line = 0;  // where it begins
    int64_t column = 0;
};

using Line = PartPipeline<CountedPart>;

class PartCounter final : public Line::Worker {
   public:
    PartCounter(const PartsOfDocument& of, Line::Put put)
        : put_(std::move(put)), part_(of, kMostPathsCounted) {
        jmapCountOnly(part_.handle(), 1);
    }

    void feed(TextPart piece) override {
        const Partition& partition = piece.partition;
        part_.feed(piece);
        if (std::exchange(first_, false)) {
            counted_.text = piece.text;
            counted_.name = piece.name;
            counted_.wholeText = partition.kind == Partition::Kind::WHOLE;
            counted_.line = partition.begin.line;
            counted_.column = partition.begin.column - part_.before();
        }
    }

    void finish() override {
        part_.finish();
        const char* bytes = nullptr;
        QVStrSize bytesLen = 0;
        check(jmapTakePart(part_.handle(), &bytes, &bytesLen));
        counted_.bytes = std::string(view(bytes, bytesLen));
        counted_.flags = jmapPartFlags(part_.handle());
        counted_.containers = containersOf(part_.handle());
        put_(std::move(counted_));
    }

   private:
    const Line::Put put_;
    PartDocument part_;
    CountedPart counted_;
    bool first_ = true;
};

// Whether the sum of the parts is that of the whole.
bool addsUp(const CountedPart& part) {
    const uint32_t harmless = part.wholeText ? uint32_t{JMAP_PART_OTHER_ELEMENTS} : 0;
    return (part.flags & ~harmless) == 0;
}

// Adds the parts up, as far as that gives what the whole gives.
class PartSum {
   public:
    PartSum(PartsOfDocument& parts, Document& sum) : parts_(parts), sum_(sum) {}

    void add(const CountedPart& part) {
        firstAddsUp_ = count_ == 0 ? addsUp(part) : firstAddsUp_;
        ++count_;
        if (count_ > 1 && !(firstAddsUp_ && addsUp(part))) {
            throw Indivisible();
        }
        if (parts_.options.several && part.text == texts_) {
            sum_.addText(part.name);
            ++texts_;
        }
        sum_.addPart(part.bytes, part.line, part.column);
        parts_.counts.add(part.containers);
    }

   private:
    PartsOfDocument& parts_;
    Document& sum_;
    std::size_t texts_ = 0;
    std::size_t count_ = 0;
    bool firstAddsUp_ = true;
};

}  // namespace

std::vector<ContainerCount> containersOf(QVEJMAPJsonContexth document) {
    std::vector<ContainerCount> containers;
    for (JMAPContainerh at = nullptr; jmapNextContainer(document, &at) == QV_OK;) {
        QVStrSize pathLen = 0;
        const char* path = jmapContainerPath(document, at, &pathLen);
        check(path == nullptr ? QV_NOMEM : QV_OK);
        containers.push_back({std::string(view(path, pathLen)), jmapContainerCount(at)});
    }
    return containers;
}

bool scanParts(PartsOfDocument& parts, Document& sum) {
    const Line::Read read = [&](const TakePart& take) {
        readInParts(parts, 0, Members::APART, take);
    };
    const Line::Make make = [&](Line::Put put) {
        return std::make_unique<PartCounter>(parts, std::move(put));
    };
    PartSum all(parts, sum);
    try {
        if (parts.threads > 1) {
            Line line(read, parts.threads, make, parts.options.stopped);
            for (CountedPart part; line.next(part);) {
                all.add(part);
            }
        } else {
            Line::run(read, make, [&](const CountedPart& part) { all.add(part); });
        }
        sum.finishParts();
        return true;
    } catch (const Indivisible&) {
        return false;
    } catch (const Error& error) {
        if (error.status() == QV_STOPPED || (!error.file().empty() && error.line() == 0)) {
            throw;  // it is not about the text
        }
        return false;
    }
}

}  // namespace qvej
