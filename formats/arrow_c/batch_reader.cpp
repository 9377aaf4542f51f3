// See batch_reader.h.
#include "formats/arrow_c/batch_reader.h"

#include <algorithm>
#include <utility>

namespace qvej {

BatchReader::BatchReader(const Document& document, const TableSchema& table,
                         std::vector<std::size_t> columns, std::size_t rows)
    : pass_(document, std::vector<const Table*>{table.table}),
      row_(document, *table.table),
      columns_(std::move(columns)),
      mostRows_(rows) {
    for (const std::size_t c : columns_) {
        builders_.push_back(makeColumnBuffers(table.fields[c].type));
    }
}

bool BatchReader::full() const {
    return rows_ == mostRows_ || std::any_of(builders_.begin(), builders_.end(),
                                             [](const auto& builder) { return builder->full(); });
}

void BatchReader::take() {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        builders_[i]->take(row_.at(columns_[i]));
    }
    ++rows_;
}

std::shared_ptr<const RecordBatch> BatchReader::next() {
    PassItem item;
    while (!ended_ && !full()) {
        if (!pass_.next(item)) {
            ended_ = true;
        } else if (row_.take(item)) {
            take();
        }
    }
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
