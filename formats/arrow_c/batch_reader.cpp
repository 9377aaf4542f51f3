// See batch_reader.h.
#include "formats/arrow_c/batch_reader.h"

#include <utility>

namespace qvej {

BatchReader::BatchReader(const Document& document, const TableSchema& table,
                         std::vector<std::size_t> columns, std::size_t rows, bool carry)
    : pass_(document, std::vector<const Table*>{table.table}, false, carry),
      row_(document, *table.table),
      maker_(table, std::move(columns)),
      mostRows_(rows) {}

std::shared_ptr<const RecordBatch> BatchReader::next() {
    PassItem item;
    while (!ended_ && maker_.rows() < mostRows_ && !maker_.full()) {
        if (!pass_.next(item)) {
            ended_ = true;
        } else if (row_.take(item)) {
            maker_.take(row_);
        }
    }
    return maker_.batch();
}

}  // namespace qvej
