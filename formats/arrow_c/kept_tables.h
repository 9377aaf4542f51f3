// Keeps the rows of tables in memory as bytes, and makes batches of Arrow of them when all rows
// have shown what types the columns have: so types need no walk of their own.
//
// Tested by tests/bindings/python/test_arrow.py
#pragma once

#include "formats/arrow_c/batch_tables.h"
#include "formats/arrow_c/row_bytes.h"
#include "formats/destination.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace qvej {

class KeptTables final : public Destination {
   public:
    // `wanted`: of which of the tables rows are kept, by their positions.
    explicit KeptTables(std::vector<std::size_t> wanted) : wanted_(std::move(wanted)) {}

    // Of each wanted table, in order; once, when all sinks have ended.  The bytes go as the batches
    // come.  Throws std::bad_alloc and QV_STOPPED.
    //   stopped  whether to give up; it is called on the calling thread
    [[nodiscard]] std::vector<BatchTables::Batches> batches(const Schema& schema, unsigned threads,
                                                            const std::function<bool()>& stopped);

    void open(const std::vector<const Table*>& tables, const Schema* schema) override;
    [[nodiscard]] bool shares(const OutputFiles& /*files*/) const override { return false; }
    [[nodiscard]] std::unique_ptr<Sink> sink(std::size_t table) override;
    [[nodiscard]] bool makesPieces() const override { return true; }
    [[nodiscard]] std::unique_ptr<Sink> pieceSink(std::size_t table) const override;
    void end(const Schema& /*schema*/) override {}
    [[nodiscard]] std::vector<std::string> commit(OutputFiles* /*with*/) override { return {}; }

   private:
    struct OfTable {
        std::size_t columns = 0;
        bool wanted = false;
        std::vector<RowBytes> rows = {};
    };

    const std::vector<std::size_t> wanted_;
    std::vector<OfTable> tables_;
};

}  // namespace qvej
