// See batch_sink.h.
#include "formats/arrow/batch_sink.h"

#include "formats/arrow/arrow_table.h"
#include "formats/arrow/batch_builder.h"

#include <arrow/memory_pool.h>

namespace qvej {

namespace {

class BatchSink final : public Sink {
   public:
    explicit BatchSink(const SinkParms& parms)
        // Pieces may outlive this object, so their memory is of no pool that it owns.
        : rows_(parms.schema->tables[parms.position], arrowSchema(*parms.schema, parms.position),
                arrow::system_memory_pool()) {}

    void row(const PassRow& row) override { rows_.take(row); }
    void end() override {}
    [[nodiscard]] std::size_t held() const override { return rows_.bytes(); }
    [[nodiscard]] std::unique_ptr<Piece> piece() override {
        const std::size_t bytes = rows_.bytes();
        return std::make_unique<BatchPiece>(rows_.finish(), bytes);
    }

   private:
    BatchBuilder rows_;
};

}  // namespace

std::unique_ptr<Sink> makeBatchSink(const SinkParms& parms) {
    return std::make_unique<BatchSink>(parms);
}

}  // namespace qvej
