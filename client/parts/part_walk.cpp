// See part_walk.h.
#include "client/parts/part_walk.h"

#include "client/error.h"
#include "client/parts/part_document.h"
#include "client/parts/part_sequence.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace qvej {
namespace {

// A part needs memory for all columns, and time to make it: it must be worth that.
constexpr uint64_t kBytesForAColumn = 64;

}  // namespace

// The walk of one part, or of all as one.
class PartWalk::Walk final : public Line::Worker {
   public:
    Walk(PartWalk& rows, Line::Put put)
        : rows_(rows), put_(std::move(put)), part_(rows.parts_), work_(rows.borrowWork()) {
        check(jmapWalkOpen(part_.handle(), rows.document_.handle(), rows.tables_.data(),
                           static_cast<QVStrSize>(rows.tables_.size()), 0, &Walk::take, this,
                           &handle_));
        work_->begin(handle_);
    }
    ~Walk() override { (void)jmapPassClose(handle_); }  // it has no file

    void feed(TextPart next) override {
        const bool first = piece_ == nullptr;
        piece_ = std::make_shared<TextPart>(std::move(next));
        work_->holdText(piece_, piece_->partition.text);
        if (!rows_.asOne_) {
            text_ = piece_->text;
        }
        if (first) {
            guarded([&] { part_.begin(*piece_); });
            setCounts();
        }
        guarded([&] { part_.feed(*piece_); });
    }

    void finish() override {
        guarded([&] { part_.finish(); });
        Result last = takeResult();
        // Given, not made in its place: for clang it cannot be constructed where the class is open.
        PartEnd& end = last.end.emplace(PartEnd());
        end.last = piece_ != nullptr && piece_->last;
        end.valuesLeft = jmapWalkLeft(handle_) != 0;
        for (QVStrSize t = 0; t < static_cast<QVStrSize>(rows_.tables_.size()); ++t) {
            const PassCell* cells = nullptr;
            QVStrSize count = 0;
            jmapPassLeft(handle_, t, &cells, &count);
            for (QVStrSize c = 0; c < count; ++c) {
                jmapPassColumn(handle_, t, c, &end.columns.emplace_back());
                if (end.last || rows_.parts_.excerpt) {
                    addLeft(end.left.emplace_back(), cells[c]);
                }
            }
        }
        rows_.giveBack(std::move(work_));
        put_(std::move(last));
    }

   private:
    // What the parts before have counted.
    void setCounts() {
        if (rows_.asOne_) {
            return;
        }
        for (const Ordinal& of : rows_.ordinals_) {
            *jmapWalkCount(handle_, static_cast<QVStrSize>(of.table),
                           static_cast<QVStrSize>(of.column)) = piece_->before[of.path];
        }
    }

    // No exception goes through the engine: what taking an item throws is thrown after it.
    static QVStatus take(void* arg, const JMAPPassItem* item) {
        Walk& walk = *static_cast<Walk*>(arg);
        try {
            walk.add(itemOf(*item));
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

    void add(PassItem item) {
        if (rows_.asOne_) {
            findText();
        }
        if (rows_.source_) {
            item = withSource(item, rows_.document_.texts()[text_], row_);
        }
        if (part_.isBefore() || seen_++ < rows_.passed_) {
            work_->passOver(item);
            return;
        }
        work_->take(item);
        ++items_;
        if (work_->full()) {
            deliver();
        }
    }
    // Of several texts that are walked as one: as in TablePass::addSource.
    void findText() {
        const std::vector<TextSource>& texts = part_.document().texts();
        const uint64_t roots = jmapPassRoots(handle_);
        std::size_t text = text_;
        while (text + 1 < texts.size() && texts[text + 1].rootsBefore < roots) {
            ++text;
        }
        if (text != text_) {
            deliver();
            text_ = text;
        }
    }
    Result takeResult() { return {work_->result(), std::exchange(items_, 0), text_}; }
    void deliver() {
        put_(takeResult());
        work_->holdText(piece_, piece_->partition.text);
    }
    static void addLeft(Left& left, const PassCell& cell) {
        left.cell = cell;
        if (cell.kind != JMAP_CELL_MISSING && cell.kind != JMAP_CELL_COUNT) {
            left.text = view(cell.text, cell.textLen);
        }
    }

    PartWalk& rows_;
    const Line::Put put_;
    PartDocument part_;
    std::unique_ptr<RowWork> work_;
    JMAPPassh handle_ = nullptr;
    std::shared_ptr<const TextPart> piece_;
    std::size_t text_ = 0;
    uint64_t seen_ = 0;   // items
    uint64_t items_ = 0;  // in the open result
    std::vector<PassCell> row_;
    std::exception_ptr failure_;
};

PartWalk::PartWalk(const Document& document, std::vector<JMAPTableh> tables, MakeRowWork make,
                   bool source)
    : document_(document),
      parts_(*document.parts()),
      tables_(std::move(tables)),
      make_(std::move(make)),
      source_(source),
      asOne_(parts_.asOne) {
    findOrdinals();
    columns_.assign(firstColumn_.back(), {});
    Left nothing;
    nothing.cell.kind = JMAP_CELL_MISSING;
    left_.assign(firstColumn_.back(), nothing);  // of a range of blank lines it stays so
}

PartWalk::~PartWalk() {
    line_.reset();  // its threads use the rest
}

void PartWalk::findOrdinals() {
    std::unordered_map<std::string, std::size_t> paths;
    firstColumn_.push_back(0);
    for (std::size_t t = 0; t < tables_.size(); ++t) {
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
            ordinals_.push_back({t, columns, at->second});
            if (isNew) {
                counted_.push_back(at->first);
            }
        }
        firstColumn_.push_back(firstColumn_.back() + columns);
    }
}

// On the thread that reads.
void PartWalk::read(const TakePart& take) const {
    if (asOne_) {
        readAsOne(parts_, take);
        return;
    }
    PartCounts::Sums sums(parts_.counts, counted_);
    bool begins = true;
    const uint64_t least = parts_.excerpt ? 0 : firstColumn_.back() * kBytesForAColumn;
    readInParts(parts_, least, Members::JOINED, [&](TextPart piece) {
        if (piece.number >= parts_.counts.parts()) {
            throw Indivisible();  // these are others than those that were counted
        }
        if (begins) {
            piece.before = sums.before(piece.number);
        }
        begins = piece.endsPart;
        take(std::move(piece));
    });
}

void PartWalk::start() {
    line_ = std::make_unique<Line>(
        [this](const TakePart& take) { read(take); }, asOne_ ? 1 : parts_.threads,
        [this](Line::Put put) { return makeWalk(std::move(put)); }, parts_.options.stopped);
}

std::unique_ptr<PartWalk::Line::Worker> PartWalk::makeWalk(Line::Put put) {
    return std::make_unique<Walk>(*this, std::move(put));
}

void PartWalk::walkAsOne() {
    if (parts_.excerpt) {
        throw Error(QV_UNSUPPORTED,
                    "the part has values for rows of the next one: such a text is "
                    "read as a whole");
    }
    line_.reset();
    asOne_ = true;
    idle_.clear();  // what they know is of the parts
    notApart_ = false;
    passed_ = taken_;
    columns_.assign(firstColumn_.back(), {});
}

bool PartWalk::nextResult(Result& result) {
    try {
        if (line_ == nullptr) {
            start();
        }
        return line_->next(result);
    } catch (const Indivisible&) {
        walkAsOne();
        start();
        return line_->next(result);
    }
}

// Hands out what came.
std::unique_ptr<RowResult> PartWalk::accept(Result result) {
    text_ = result.text;
    taken_ += result.items;
    end_ = std::move(result.end);
    return std::move(result.rows);
}

// Looks at the end of a part, if the last result was at one.
void PartWalk::takeEnd() {
    if (!end_) {
        return;
    }
    PartEnd end = std::move(*end_);
    end_.reset();
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
    if (end.last || parts_.excerpt) {
        left_ = std::move(end.left);
        for (Left& left : left_) {
            left.cell.text = left.text.data();
        }
    }
    ended_ = end.last;
    notApart_ = !end.last && end.valuesLeft;
}

std::unique_ptr<RowResult> PartWalk::next() {
    Result result;
    for (takeEnd(); !ended_; takeEnd()) {
        if (notApart_) {
            walkAsOne();
        }
        if (!nextResult(result)) {
            ended_ = true;
        } else if (std::unique_ptr<RowResult> rows = accept(std::move(result))) {
            return rows;
        }
    }
    return nullptr;
}

void PartWalk::run(const TakeRowResult& take) {
    try {
        if (parts_.threads > 1) {
            while (std::unique_ptr<RowResult> rows = next()) {
                take(std::move(rows));
            }
            return;
        }
        while (!walkAlone(take)) {
            walkAsOne();
        }
    } catch (...) {
        endWork();
        throw;
    }
}

// The work is gone then, and no thread goes on: what `make` stands on may be gone after a throw.
void PartWalk::endWork() {
    line_.reset();
    idle_.clear();
}

// False: the parts cannot be walked apart.
bool PartWalk::walkAlone(const TakeRowResult& take) {
    try {
        Line::run([this](const TakePart& pieces) { read(pieces); },
                  [this](Line::Put put) { return makeWalk(std::move(put)); },
                  [&](Result result) {
                      if (std::unique_ptr<RowResult> rows = accept(std::move(result))) {
                          take(std::move(rows));
                      }
                      takeEnd();
                      if (notApart_) {
                          throw Indivisible();
                      }
                  });
        return true;
    } catch (const Indivisible&) {
        return false;
    }
}

std::unique_ptr<RowWork> PartWalk::borrowWork() {
    {
        const std::lock_guard lock(mutex_);
        if (!idle_.empty()) {
            std::unique_ptr<RowWork> work = std::move(idle_.back());
            idle_.pop_back();
            return work;
        }
    }
    return make_();
}

void PartWalk::giveBack(std::unique_ptr<RowWork> work) {
    const std::lock_guard lock(mutex_);
    idle_.push_back(std::move(work));
}

}  // namespace qvej
