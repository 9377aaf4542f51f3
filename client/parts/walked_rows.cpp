// See walked_rows.h.
#include "client/parts/walked_rows.h"

#include "client/error.h"
#include "client/parts/part_document.h"
#include "client/parts/part_sequence.h"

#include <algorithm>
#include <string>
#include <thread>
#include <unordered_map>
#include <utility>

namespace qvej {
namespace {

// A part needs memory for all columns, and time to make it: it must be worth that.
constexpr uint64_t kBytesForAColumn = 64;
constexpr uint64_t kPartBytes = uint64_t{1} << 20;

}  // namespace

// The walk of one part, or of all as one.
class WalkedRows::Walk {
   public:
    Walk(const WalkedRows& rows, const Line::Put& put)
        : rows_(rows), put_(put), part_(rows.parts_) {
        begin(0);
        check(jmapWalkOpen(part_.handle(), rows.document_.handle(), rows.tables_.data(),
                           static_cast<QVStrSize>(rows.tables_.size()), 0, &Walk::take, this,
                           &handle_));
    }
    ~Walk() { (void)jmapPassClose(handle_); }  // it has no file
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    void feed(TextPart next) {
        piece_ = std::make_shared<TextPart>(std::move(next));
        if (!rows_.asOne_) {
            batch_.text = piece_->text;
        }
        batch_.items->hold(piece_);
        last_ = piece_->last;
        guarded([&] { part_.feed(*piece_); });
    }

    void finish() {
        guarded([&] { part_.finish(); });
        PartEnd& end = batch_.end.emplace();
        end.last = last_;
        end.valuesLeft = jmapWalkLeft(handle_) != 0;
        for (const auto& [table, column] : rows_.counted_) {
            end.counts.push_back(*jmapWalkCount(handle_, static_cast<QVStrSize>(table),
                                                static_cast<QVStrSize>(column)));
        }
        for (QVStrSize t = 0; t < static_cast<QVStrSize>(rows_.tables_.size()); ++t) {
            const PassCell* cells = nullptr;
            QVStrSize count = 0;
            jmapPassLeft(handle_, t, &cells, &count);
            const std::span<PassCell> left =
                batch_.items->copied({cells, static_cast<std::size_t>(count)}, {});
            end.left.insert(end.left.end(), left.begin(), left.end());
            for (QVStrSize c = 0; c < count; ++c) {
                jmapPassColumn(handle_, t, c, &end.columns.emplace_back());
            }
        }
        put_(std::move(batch_));
    }

   private:
    // No exception goes through the engine: what taking an item throws is thrown after it.
    static QVStatus take(void* arg, const JMAPPassItem* item) {
        Walk& walk = *static_cast<Walk*>(arg);
        try {
            if (!walk.part_.isBefore()) {
                walk.add(*item);
            }
            return QV_OK;
        } catch (...) {
            walk.failure_ = std::current_exception();
            return QV_NOMEM;
        }
    }
    template <class Routine>
    void guarded(const Routine& routine) {
        try {
            routine();
        } catch (...) {
            if (failure_ != nullptr) {
                std::rethrow_exception(failure_);
            }
            throw;
        }
    }

    void add(const JMAPPassItem& item) {
        if (rows_.asOne_) {
            findText();
        }
        batch_.items->add(item, piece_->partition.text);
        if (batch_.items->full()) {
            deliver(batch_.text);
        }
    }
    // Of several texts that are walked as one: as in TablePass::addSource.
    void findText() {
        const std::vector<TextSource>& texts = part_.document().texts();
        const uint64_t roots = jmapPassRoots(handle_);
        std::size_t text = batch_.text;
        while (text + 1 < texts.size() && texts[text + 1].rootsBefore < roots) {
            ++text;
        }
        if (text != batch_.text) {
            deliver(text);
        }
    }
    void begin(std::size_t text) {
        batch_ = {std::make_unique<ItemBatch>(), text};
        if (piece_ != nullptr) {
            batch_.items->hold(piece_);
        }
    }
    void deliver(std::size_t nextText) {
        put_(std::move(batch_));
        begin(nextText);
    }

    const WalkedRows& rows_;
    const Line::Put& put_;
    PartDocument part_;
    JMAPPassh handle_ = nullptr;
    Batch batch_;
    std::shared_ptr<const TextPart> piece_;
    bool last_ = false;
    std::exception_ptr failure_;
};

WalkedRows::WalkedRows(const Document& document, std::vector<JMAPTableh> tables)
    : document_(document), parts_(*document.parts()), tables_(std::move(tables)) {
    findOrdinals();
    start();
}

WalkedRows::~WalkedRows() = default;

void WalkedRows::findOrdinals() {
    std::unordered_map<std::string, std::size_t> paths;
    firstColumn_.push_back(0);
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        std::vector<Ordinal>& of = ordinals_.emplace_back();
        std::size_t columns = 0;
        for (JMAPColumnh column = nullptr; jmapNextColumn(tables_[t], &column) == QV_OK;
             ++columns) {
            JMAPColumnInfo info = {};
            jmapColumnInfo(column, &info);
            if (info.type != JMAP_ORDINAL || info.pathLen == 0) {
                continue;
            }
            std::string path(static_cast<std::size_t>(info.pathLen), '\0');
            jmapColumnPath(column, path.data());
            const auto [at, isNew] = paths.try_emplace(std::move(path), paths.size());
            of.push_back({columns, at->second});
            if (isNew) {
                counted_.emplace_back(t, columns);
            }
        }
        firstColumn_.push_back(firstColumn_.back() + columns);
    }
}

void WalkedRows::start() {
    counts_.assign(counted_.size(), 0);
    columns_.assign(firstColumn_.back(), {});
    items_ = 0;
    const uint64_t bytes = std::max(kPartBytes, firstColumn_.back() * kBytesForAColumn);
    line_ = std::make_unique<Line>(
        [this, bytes](const TakePart& take) {
            asOne_ ? readAsOne(parts_, take) : readInParts(parts_, bytes, Members::JOINED, take);
        },
        asOne_ ? 1 : parts_.threads,
        [this](PieceSource& pieces, const Line::Put& put) {
            Walk walk(*this, put);
            TextPart piece;
            while (pieces.next(piece)) {
                walk.feed(std::move(piece));
            }
            walk.finish();
        });
}

void WalkedRows::startAsOne() {
    line_.reset();
    batch_ = {};
    asOne_ = true;
    start();
}

void WalkedRows::addCounts(const PassItem& item) const {
    PassCell* cells = ItemBatch::cellsOf(item);
    for (const Ordinal& ordinal : ordinals_[item.table]) {
        PassCell& cell = cells[ordinal.cell];
        const uint64_t count =
            counts_[ordinal.path] + (cell.kind == JMAP_CELL_COUNT ? cell.count : 0);
        if (count != 0) {
            cell.kind = JMAP_CELL_COUNT;
            cell.fresh = 1;
            cell.count = count;
        }
    }
}

void WalkedRows::takeEnd(PartEnd end) {
    for (std::size_t i = 0; i < counts_.size(); ++i) {
        counts_[i] += end.counts[i];
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        JMAPPassColumn& sum = columns_[i];
        const JMAPPassColumn& part = end.columns[i];
        if (sum.overwritten == 0 && part.overwritten != 0) {
            sum.firstOverwritten = sum.values + part.firstOverwritten;
        }
        sum.values += part.values;
        sum.overwritten += part.overwritten;
        sum.strayed += part.strayed;
        sum.below = part.below;
    }
    left_ = std::move(end.left);
    ended_ = end.last;
    if (!end.last && end.valuesLeft) {
        startAsOne();
    }
}

// Larger parts than those that were counted may not be divided as those were.
bool WalkedRows::nextBatch() {
    try {
        return line_->next(batch_);
    } catch (const Indivisible&) {
        startAsOne();
        return line_->next(batch_);
    }
}

bool WalkedRows::next(PassItem& item) {
    for (;;) {
        while (batch_.items != nullptr && at_ < batch_.items->items().size()) {
            const PassItem& found = batch_.items->items()[at_++];
            if (items_++ >= handedOut_) {
                ++handedOut_;
                addCounts(found);
                item = found;
                return true;
            }
        }
        if (batch_.end) {
            takeEnd(*std::exchange(batch_.end, {}));
        }
        if (ended_ || !nextBatch()) {
            ended_ = true;
            return false;
        }
        at_ = 0;
    }
}

JMAPPassColumn WalkedRows::column(std::size_t table, std::size_t column) const {
    return columns_[firstColumn_[table] + column];
}

const PassCell& WalkedRows::left(std::size_t table, std::size_t column) const {
    return left_[firstColumn_[table] + column];
}

}  // namespace qvej
