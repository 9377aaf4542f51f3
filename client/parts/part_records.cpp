// See part_records.h.
#include "client/parts/part_records.h"

#include "client/error.h"
#include "client/parts/part_sequence.h"

#include <algorithm>
#include <span>
#include <string>

namespace qvej {
namespace {

// Records stay in memory as long as so much of what is free is left.
constexpr uint64_t kKeptFree = 8;

// Without the column that has the name of the text.
std::size_t columnsOf(const Document& document) {
    return document.alldata().columns.size() - (document.hasSourceColumn() ? 1 : 0);
}

PartsOfDocument withRecords(const PartsOfDocument& parts) {
    PartsOfDocument recorded = parts;
    recorded.options.keepFree = parts.engine->availableMemory() / kKeptFree;
    return recorded;
}

}  // namespace

PartRecords::PartRecords(const Document& document)
    : parts_(*document.parts()), cells_(columnsOf(document)) {
    if (!parts_.excerpt) {
        throw Error(QV_UNSUPPORTED, "ALLDATA is read from records of the whole document");
    }
}

void PartRecords::read() {
    readInParts(parts_, 0, Members::JOINED, [this](TextPart piece) {
        if (part_ == nullptr) {
            part_ = std::make_unique<PartDocument>(withRecords(parts_));
            part_->begin(piece);
        }
        part_->feed(piece);
    });
    if (part_ == nullptr) {
        return;  // blank lines
    }
    part_->finish();
    const JMAPTotals totals = part_->document().totals();
    if (totals.unstoredBytes != 0) {
        throw Error(totals.unstoredStatus, qvStatusText(totals.unstoredStatus),
                    part_->document().cacheFile());
    }
    JMAPTableh table = nullptr;
    check(jmapAlldataTable(part_->handle(), &table));
    pass_ = std::make_unique<TablePass>(part_->document(), std::vector<JMAPTableh>{table});
    PassItem item;
    for (uint64_t before = rowsBefore(); before > 0 && pass_->next(item); --before) {
    }
}

// Of the records of what stands around the part.
uint64_t PartRecords::rowsBefore() const {
    JMAPRecordCursorh cursor = nullptr;
    check(jmapRecordsOpen(part_->handle(), &cursor));
    uint64_t rows = 0;
    QVStatus status = QV_OK;
    JMAPRecord record = {};
    for (uint64_t left = part_->recordsBefore(); left > 0 && status == QV_OK; --left) {
        status = jmapRecordsNext(cursor, &record);
        const bool root = record.kind == JMAP_KIND_NOVAL && record.labelCount == 0;
        rows += root || record.kind == JMAP_KIND_FAKE_VARIABLE ? 0 : 1;
    }
    (void)jmapRecordsClose(cursor);  // only read from
    check(status);
    return rows;
}

bool PartRecords::next(PassItem& item) {
    if (!begun_) {
        begun_ = true;
        read();
    }
    if (pass_ == nullptr || !pass_->next(item)) {
        return false;
    }
    // A part may be less deep than the document: the last two columns, V and Value, come later
    // then.
    constexpr std::size_t kLast = 2;
    const std::span<const JMAPPassCell> cells = item.cells;
    if (cells.size() > cells_.size() || cells.size() < kLast) {
        throw Error(QV_IO_CHANGED, "the text is deeper than it was");
    }
    std::fill(cells_.begin(), cells_.end(), nothing_);
    std::copy(cells.begin(), cells.end() - kLast, cells_.begin());
    std::copy(cells.end() - kLast, cells.end(), cells_.end() - kLast);
    item.cells = cells_;
    item.table = 0;
    return true;
}

}  // namespace qvej
