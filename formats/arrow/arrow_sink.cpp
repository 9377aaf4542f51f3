// See arrow_sink.h.
#include "formats/arrow/arrow_sink.h"

#include "formats/arrow/arrow_table.h"

#include <utility>

namespace qvej {

ArrowSink::ArrowSink(Writer out, const SinkParms& parms)
    : table_(parms.schema->tables[parms.position]),
      threads_(parms.options.threads > 1),
      stream_(std::make_shared<ArrowStream>(std::move(out))),
      schema_(arrowSchema(*parms.schema, parms.position)),
      rows_(table_, schema_, &memory_),
      left_(table_.rows) {}

void ArrowSink::append(std::unique_ptr<Piece> piece) {
    auto* const batch = static_cast<BatchPiece*>(piece.release());
    waiting_.emplace_back(batch);
    waitingBytes_ += batch->bytes();
    left_ -= static_cast<uint64_t>(batch->rows()->num_rows());
    if (left_ == 0) {
        finish();
    } else if (waitingBytes_ > kBatchBytes) {
        encode();
    }
}

// Pieces are much smaller than what is worth encoding.
std::shared_ptr<arrow::RecordBatch> ArrowSink::takeRows() {
    if (waiting_.empty()) {
        return rows_.finish();
    }
    std::vector<std::shared_ptr<arrow::RecordBatch>> batches;
    for (const std::unique_ptr<BatchPiece>& piece : waiting_) {
        batches.push_back(piece->rows());
    }
    std::shared_ptr<arrow::RecordBatch> all =
        stream_->check(arrow::ConcatenateRecordBatches(batches, &memory_));
    waiting_.clear();
    waitingBytes_ = 0;
    return all;
}

void ArrowSink::finish() {
    close();
    stream_->check(stream_->Close());
}

}  // namespace qvej
