// See table_pass.h.
#include "client/table_pass.h"

#include "client/error.h"

#include <cmath>
#include <utility>

namespace qvej {

TablePass::TablePass(const Document& document, const std::vector<const Table*>& tables,
                     bool retain) {
    std::vector<JMAPTableh> handles;
    handles.reserve(tables.size());
    for (const Table* table : tables) {
        handles.push_back(table->handle);
    }
    check(jmapPassOpen(document.handle(), handles.data(), static_cast<QVStrSize>(handles.size()),
                       retain ? uint64_t{QVEJMAP_RETAIN} : 0, &handle_));
    textsStay_ = jmapPassTextsStay(handle_) != 0;
}

TablePass::~TablePass() {
    (void)jmapPassClose(handle_);  // only read from: nothing can be lost
}

bool TablePass::next(PassItem& item) {
    JMAPPassItem raw = {};
    const QVStatus status = jmapPassNext(handle_, &raw);
    if (status == QV_EOF) {
        return false;
    }
    check(status);
    item.kind = raw.kind == JMAP_PASS_ROW ? PassItem::ROW : PassItem::NOT_NUMBER;
    item.table = static_cast<std::size_t>(raw.table);
    item.cells = {raw.cells, static_cast<std::size_t>(raw.cellCount)};
    item.column = static_cast<std::size_t>(raw.column);
    item.text = {raw.text, static_cast<std::size_t>(raw.textLen)};
    return true;
}

PassRow::PassRow(const Document& document, const Table& table, RejectHandler onReject)
    : CellValues(document, table, std::move(onReject)) {}

bool PassRow::take(const PassItem& item) {
    cells_ = item.cells;
    if (item.kind == PassItem::NOT_NUMBER) {
        notNumber(item.column, item.text);
        return false;
    }
    endRow();
    for (Converted* converted : withInformat()) {
        const PassCell& cell = cells_[converted->column];
        converted->kind = cell.kind;
        converted->fresh = cell.fresh != 0;
        convert(*converted, rawText(cell));
    }
    return true;
}

std::string_view PassRow::rawText(const PassCell& cell) {
    return cell.kind == JMAP_CELL_MISSING || cell.kind == JMAP_CELL_COUNT
               ? std::string_view{}
               : std::string_view{cell.text, static_cast<std::size_t>(cell.textLen)};
}

Cell PassRow::number(const PassCell& cell) const {
    if (cell.kind == JMAP_CELL_MISSING) {
        return {Cell::MISSING, 0, {}};
    }
    if (cell.kind == JMAP_CELL_COUNT) {
        return {Cell::NUMBER, static_cast<double>(cell.count), {}};
    }
    double number = 0;
    const QVStatus status = jmapToNumber(document().handle(), cell.text, cell.textLen, &number);
    return {status == QV_OK && !std::isnan(number) ? Cell::NUMBER : Cell::MISSING, number, {}};
}

Cell PassRow::cell(std::size_t column) const {
    const PassCell& cell = cells_[column];
    const Place& at = place(column);
    if (at.converted != nullptr) {
        return convertedCell(
            at, at.numeric && at.converted->informat == nullptr ? number(cell) : Cell{});
    }
    if (at.numeric) {
        return number(cell);
    }
    const std::string_view raw = cell.kind == JMAP_KIND_NULL ? std::string_view{} : rawText(cell);
    return {Cell::TEXT, 0, text(column, raw.substr(0, at.length))};
}

}  // namespace qvej
