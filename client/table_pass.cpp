// See table_pass.h.
#include "client/table_pass.h"

#include "client/carried_columns.h"
#include "client/error.h"
#include "client/parts/part_records.h"
#include "client/parts/walked_rows.h"
#include "client/streamed_rows.h"

#include <cmath>
#include <utility>

namespace qvej {
namespace {

// Cells handed out between two looks at the memory: some milliseconds.
constexpr std::size_t kCellsBetweenChecks = 262144;

// Is it that table, alone?
bool isAlldata(const Document& document, const std::vector<JMAPTableh>& tables) {
    return document.stream() == nullptr && tables.size() == 1 &&
           tables[0] == document.alldata().handle;
}

}  // namespace

PassItem withSource(const PassItem& item, const TextSource& text, std::vector<PassCell>& cells) {
    PassCell name = {};
    name.kind = JMAP_KIND_STRING;
    name.fresh = 1;
    name.text = text.name.data();
    name.textLen = static_cast<QVStrSize>(text.name.size());
    cells.assign(1, name);
    cells.insert(cells.end(), item.cells.begin(), item.cells.end());
    return {item.kind, item.table, cells, item.column + 1, item.text};
}

TablePass::TablePass(const Document& document, const std::vector<const Table*>& tables, bool retain,
                     bool carry)
    : document_(document), sourceColumns_(document.hasSourceColumn() ? 1 : 0) {
    if (carry) {
        carried_ = std::make_unique<CarriedColumns>(document, tables);
        if (carried_->empty()) {
            carried_.reset();
        }
    }
    std::vector<JMAPTableh> handles;
    handles.reserve(tables.size());
    for (const Table* table : tables) {
        handles.push_back(table->handle);
    }
    open(carried_ != nullptr ? carried_->tables() : handles, retain);
}

TablePass::TablePass(const Document& document, const std::vector<JMAPTableh>& tables)
    : document_(document) {
    open(tables, false);
}

void TablePass::open(const std::vector<JMAPTableh>& tables, bool retain) {
    if (document_.parts() != nullptr || document_.stream() != nullptr) {
        if (retain) {
            throw Error(QV_UNSUPPORTED, "values are retained in records alone");
        }
        if (document_.stream() != nullptr) {
            walked_ = std::make_unique<StreamedRows>(document_, tables);
        } else if (isAlldata(document_, tables)) {
            walked_ = std::make_unique<PartRecords>(document_);
        } else {
            walked_ = std::make_unique<WalkedRows>(document_, tables);
        }
        return;
    }
    const QVStatus status =
        jmapPassOpen(document_.handle(), tables.data(), static_cast<QVStrSize>(tables.size()),
                     retain ? uint64_t{QVEJMAP_RETAIN} : 0, &handle_);
    if (status == QV_LIMIT_MEMORY) {
        document_.checkMemory("the tables of a pass");  // throws what the guard said
    }
    check(status);
    textsStay_ = jmapPassTextsStay(handle_) != 0;
}

TablePass::~TablePass() {
    if (handle_ != nullptr) {
        (void)jmapPassClose(handle_);  // only read from: nothing can be lost
    }
}

bool TablePass::next(PassItem& item) {
    if (!nextOfEngine(item)) {
        return false;
    }
    if (sourceColumns_ != 0) {
        addSource(item);
    }
    return true;
}

bool TablePass::works() const {
    return carried_ == nullptr && walked_ != nullptr && walked_->works();
}

void TablePass::work(const MakeRowWork& make, const TakeRowResult& take) {
    walked_->work(make, sourceColumns_ != 0, take);
}

void TablePass::flushInTime(std::function<void()> flush) {
    if (walked_ != nullptr) {
        walked_->flushInTime(std::move(flush));
    }
}

// Rows are handed out before the marker that ends them is counted, so the count is that of the last
// root that the row may be of.
void TablePass::addSource(PassItem& item) {
    const std::vector<TextSource>& texts = document_.texts();
    const uint64_t roots = walked_ == nullptr ? jmapPassRoots(handle_) : 0;
    text_ = walked_ == nullptr ? text_ : walked_->text();
    while (walked_ == nullptr && text_ + 1 < texts.size() && texts[text_ + 1].rootsBefore < roots) {
        ++text_;
    }
    item = withSource(item, texts[text_], row_);
}

bool TablePass::nextOfEngine(PassItem& item) {
    if (carried_ == nullptr) {
        return read(item);
    }
    while (!carried_->handOut(item)) {
        if (!read(item)) {
            carried_->finish();
            return false;
        }
        carried_->take(item);
    }
    return true;
}

bool TablePass::read(PassItem& item) {
    if (walked_ != nullptr) {
        return walked_->next(item);
    }
    JMAPPassItem raw = {};
    const QVStatus status = jmapPassNext(handle_, &raw);
    if (status == QV_EOF) {
        return false;
    }
    if (status == QV_LIMIT_MEMORY) {
        document_.checkMemory("the rows of a pass");
    }
    check(status);
    item = itemOf(raw);
    unchecked_ += item.cells.size() + 1;
    if (unchecked_ >= kCellsBetweenChecks) {
        unchecked_ = 0;
        document_.checkMemory("the rows of a pass");
    }
    return true;
}

void TablePass::checkRoom(std::size_t bytes) const {
    document_.checkMemory("the rows of a pass", bytes);
}

JMAPPassColumn TablePass::column(std::size_t table, std::size_t column) const {
    if (column < sourceColumns_) {
        return {};
    }
    column -= sourceColumns_;
    if (carried_ != nullptr) {
        if (const auto count = carried_->count(table, column)) {
            return count->column;
        }
    }
    if (walked_ != nullptr) {
        return walked_->column(table, column);
    }
    JMAPPassColumn info = {};
    jmapPassColumn(handle_, static_cast<QVStrSize>(table), static_cast<QVStrSize>(column), &info);
    return info;
}

std::optional<uint64_t> TablePass::shown(std::size_t table, std::size_t column) const {
    const auto count = carried_ == nullptr || column < sourceColumns_
                           ? std::nullopt
                           : carried_->count(table, column - sourceColumns_);
    return count ? std::optional(count->shown) : std::nullopt;
}

const PassCell& TablePass::left(std::size_t table, std::size_t column) const {
    if (walked_ != nullptr) {
        return walked_->left(table, column - sourceColumns_);
    }
    const PassCell* cells = nullptr;
    QVStrSize count = 0;
    jmapPassLeft(handle_, static_cast<QVStrSize>(table), &cells, &count);
    return cells[column - sourceColumns_];
}

PassRow::PassRow(const Document& document, const Table& table, RejectHandler onReject)
    : CellValues(document, table, std::move(onReject)) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const Place& at = place(i);
        if (!at.numeric && (at.converted == nullptr || at.converted->informat == nullptr)) {
            cuttable_.push_back({i, at.length});
        }
    }
}

bool PassRow::take(const PassItem& item) {
    cells_ = item.cells;
    if (item.kind == PassItem::NOT_NUMBER) {
        notNumber(item.column, item.text);
        return false;
    }
    endRow();
    convertAll();
    reportCuts();
    return true;
}

void PassRow::convertAll() {
    for (Converted* converted : withInformat()) {
        const PassCell& cell = cells_[converted->column];
        if (cell.fresh == 0 || cell.kind == JMAP_CELL_MISSING) {
            continue;  // the cell has none, or keeps its value
        }
        converted->kind = cell.kind;
        converted->fresh = true;
        convert(*converted, textOf(cell));
        const bool cut = cell.kind == JMAP_CELL_CUT && !place(converted->column).numeric;
        if (cut || converted->cut) {
            wasCut(converted->column, textOf(cell));
        }
    }
}

void PassRow::reportCuts() {
    for (const Cuttable& cuttable : cuttable_) {
        const PassCell& cell = cells_[cuttable.column];
        const bool text = cell.kind != JMAP_CELL_MISSING && cell.kind != JMAP_KIND_NULL;
        const bool cut =
            cell.kind == JMAP_CELL_CUT || static_cast<uint64_t>(cell.textLen) > cuttable.length;
        if (text && cut && cell.fresh != 0) {
            wasCut(cuttable.column, textOf(cell));
        }
    }
}

Cell PassRow::asDouble(const PassCell& cell) const {
    if (cell.kind == JMAP_CELL_COUNT) {
        return {Cell::NUMBER, static_cast<double>(cell.count)};
    }
    double number = 0;
    const QVStatus status =
        cell.kind == JMAP_CELL_CUT
            ? QV_NOTNUM
            : jmapToNumber(document().handle(), cell.text, cell.textLen, &number);
    return status != QV_OK || std::isnan(number) ? Cell{Cell::NUL} : Cell{Cell::NUMBER, number};
}

// A word, or a text that may be a number.
Cell PassRow::numberOfText(const Place& at, const PassCell& cell) const {
    const std::string_view text = textOf(cell);
    if (at.boolean) {
        return text == "true" ? Cell{Cell::BOOLEAN, 0, "true", 1}
                              : Cell{Cell::BOOLEAN, 0, "false", 0};
    }
    const Cell number = asDouble(cell);
    const bool digits = number.kind == Cell::NUMBER && text != "true" && text != "false";
    return digits ? Cell{Cell::DIGITS, 0, text} : number;
}

Cell PassRow::converted(const Place& at, const PassCell& cell) const {
    if (at.converted->informat != nullptr) {
        return convertedCell(at, {});
    }
    if (cell.kind == JMAP_KIND_NULL) {
        return {Cell::NUL};
    }
    return at.numeric ? convertedCell(at, asDouble(cell))
                      : character(at.converted->column, at, cell);
}

}  // namespace qvej
