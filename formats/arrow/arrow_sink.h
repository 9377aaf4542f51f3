// What the sinks of Parquet and Arrow share: rows are collected until they are worth encoding, and
// the file ends with the last row of the table, so that few of many files are open at a time.
//
// Tested by tests/formats/typed_files.py
#pragma once

#include "formats/arrow/arrow_stream.h"
#include "formats/arrow/batch_builder.h"
#include "formats/arrow/batch_sink.h"
#include "formats/formats.h"

#include <arrow/memory_pool.h>
#include <arrow/record_batch.h>
#include <arrow/type.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace qvej {

class ArrowSink : public Sink {
   public:
    // A derived class cuts the stream off before its writer goes.
    ArrowSink(Writer out, const SinkParms& parms);

    void row(const PassRow& row) final {
        rows_.take(row);
        if (--left_ == 0) {
            finish();
        } else if (rows_.bytes() > kBatchBytes) {
            encode();
        }
    }
    void end() final {
        if (!stream_->closed()) {  // a table without rows
            finish();
        }
    }
    // All that the library has for this file.
    [[nodiscard]] std::size_t held() const final {
        return static_cast<std::size_t>(memory_.bytes_allocated()) + waitingBytes_;
    }
    void append(std::unique_ptr<Piece> piece) final;

   protected:
    // Encodes the rows that are held; there are some.
    virtual void encode() = 0;
    // Likewise if there are any, and ends the file.
    virtual void close() = 0;

    [[nodiscard]] bool holdsRows() const { return rows_.rows() != 0 || !waiting_.empty(); }
    [[nodiscard]] std::shared_ptr<arrow::RecordBatch> takeRows();

    const TableSchema& table_;
    const bool threads_;  // several may be used
    // The system's: that of the library gives pages back to the system too soon.
    arrow::ProxyMemoryPool memory_{arrow::system_memory_pool()};
    std::shared_ptr<ArrowStream> stream_;
    std::shared_ptr<arrow::Schema> schema_;

   private:
    // Of rows that are encoded at once: what the caches of a processor hold.
    static constexpr std::size_t kBatchBytes = std::size_t{2} << 20;

    void finish();

    BatchBuilder rows_;
    std::vector<std::unique_ptr<BatchPiece>> waiting_;  // others have made them
    std::size_t waitingBytes_ = 0;
    uint64_t left_;  // rows to come
};

[[nodiscard]] std::unique_ptr<Sink> makeParquetSink(Writer out, const SinkParms& parms);
[[nodiscard]] std::unique_ptr<Sink> makeIpcSink(Writer out, const SinkParms& parms);

}  // namespace qvej
