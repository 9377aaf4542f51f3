// See batch_maker.h.
#include "formats/arrow_c/batch_maker.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace qvej {

namespace {

std::vector<std::size_t> allColumns(const TableSchema& table) {
    std::vector<std::size_t> columns(table.fields.size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    return columns;
}

}  // namespace

BatchMaker::BatchMaker(const TableSchema& table) : BatchMaker(table, allColumns(table)) {}

BatchMaker::BatchMaker(const TableSchema& table, std::vector<std::size_t> columns)
    : columns_(std::move(columns)) {
    for (const std::size_t c : columns_) {
        builders_.push_back(makeColumnBuffers(table.fields[c].type));
    }
}

template <class CellAt>
void BatchMaker::takeCells(const CellAt& cellAt) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        builders_[i]->take(cellAt(columns_[i]));
    }
    ++rows_;
}

void BatchMaker::take(const PassRow& row) {
    takeCells([&](std::size_t column) { return row.at(column); });
}

void BatchMaker::take(std::span<const Cell> row) {
    takeCells([&](std::size_t column) { return row[column]; });
}

bool BatchMaker::full() const {
    return std::any_of(builders_.begin(), builders_.end(),
                       [](const auto& builder) { return builder->full(); });
}

std::shared_ptr<const RecordBatch> BatchMaker::batch() {
    if (rows_ == 0) {
        return nullptr;
    }
    auto batch = std::make_shared<RecordBatch>();
    batch->rows = static_cast<int64_t>(std::exchange(rows_, 0));
    for (const std::unique_ptr<ColumnBuffers>& builder : builders_) {
        batch->columns.push_back(builder->finish());
    }
    return batch;
}

}  // namespace qvej
