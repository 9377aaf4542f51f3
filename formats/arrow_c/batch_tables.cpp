// See batch_tables.h.
#include "formats/arrow_c/batch_tables.h"

#include "formats/arrow_c/batch_maker.h"

#include <utility>

namespace qvej {

namespace {

struct BatchPiece final : Piece {
    explicit BatchPiece(std::shared_ptr<const RecordBatch> made) : batch(std::move(made)) {}
    std::shared_ptr<const RecordBatch> batch;
};

class BatchSink final : public Sink {
   public:
    // `to`: gets the batches; null: they are handed out as pieces.
    BatchSink(const TableSchema& table, BatchTables::Batches* to)
        : maker_(table), rowBytes_(table.fields.size() * kCellBytes), to_(to) {}

    void row(const PassRow& row) override {
        maker_.take(row);
        if (to_ != nullptr && maker_.full()) {
            flush();
        }
    }
    void end() override { flush(); }
    [[nodiscard]] std::size_t held() const override { return maker_.rows() * rowBytes_; }
    void flush() override { keep(maker_.batch()); }
    [[nodiscard]] std::unique_ptr<Piece> piece() override {
        return std::make_unique<BatchPiece>(maker_.batch());
    }
    void append(std::unique_ptr<Piece> piece) override {
        flush();
        keep(std::move(static_cast<BatchPiece&>(*piece).batch));
    }

   private:
    static constexpr std::size_t kCellBytes = 16;  // nearly

    void keep(std::shared_ptr<const RecordBatch> batch) {
        if (batch != nullptr) {
            to_->push_back(std::move(batch));
        }
    }

    BatchMaker maker_;
    std::size_t rowBytes_;
    BatchTables::Batches* to_;
};

}  // namespace

void BatchTables::open(const std::vector<const Table*>& tables, const Schema* schema) {
    schema_ = schema;
    batches_.resize(tables.size());
}

std::unique_ptr<Sink> BatchTables::sink(std::size_t table) {
    return std::make_unique<BatchSink>(schema_->tables[table], &batches_[table]);
}

std::unique_ptr<Sink> BatchTables::pieceSink(std::size_t table) const {
    return std::make_unique<BatchSink>(schema_->tables[table], nullptr);
}

}  // namespace qvej
