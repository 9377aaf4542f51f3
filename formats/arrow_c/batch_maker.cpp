// See batch_maker.h.
#include "formats/arrow_c/batch_maker.h"

#include <algorithm>
#include <utility>

namespace qvej {

BatchMaker::BatchMaker(const TableSchema& table, std::vector<std::size_t> columns)
    : columns_(std::move(columns)) {
    for (const std::size_t c : columns_) {
        builders_.push_back(makeColumnBuffers(table.fields[c].type));
    }
}

void BatchMaker::take(const PassRow& row) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        builders_[i]->take(row.at(columns_[i]));
    }
    ++rows_;
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
