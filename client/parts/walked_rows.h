// The rows of a document that keeps no records: its text is read again, in parts on several
// threads.
//
// Each part is walked as a document of its own (jmapWalkOpen) and counts its ordinals from 0; what
// the parts before it have counted is added when its rows are handed out.  When a value of one part
// belongs to a row of the next, the parts cannot be walked apart: the text is then walked from its
// beginning as one, and the rows that have been handed out already are passed over.
//
// Tested by tests/client/parts_test.cpp
#pragma once

#include "../document.h"
#include "../row_source.h"
#include "../table_pass.h"
#include "item_batch.h"
#include "part_pipeline.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace qvej {

class WalkedRows final : public RowSource {
   public:
    // Tables of the document's maps; it has parts, and must outlive this object.  Throws QV_NOMEM.
    WalkedRows(const Document& document, std::vector<JMAPTableh> tables);
    ~WalkedRows() override;

    bool next(PassItem& item) override;
    [[nodiscard]] JMAPPassColumn column(std::size_t table, std::size_t column) const override;
    [[nodiscard]] const PassCell& left(std::size_t table, std::size_t column) const override;
    [[nodiscard]] std::size_t text() const override { return batch_.text; }

   private:
    // An ordinal column of a table: its cell, and which of the counted paths it shows.
    struct Ordinal {
        std::size_t cell;
        std::size_t path;
    };
    // What the end of a part tells.
    struct PartEnd {
        bool last = false;                         // of the document
        bool valuesLeft = false;                   // the next part cannot be walked by itself
        std::vector<uint64_t> counts = {};         // of the counted paths
        std::vector<JMAPPassColumn> columns = {};  // of all tables
        std::vector<PassCell> left = {};           // likewise
    };
    struct Batch {
        std::unique_ptr<ItemBatch> items = {};
        std::size_t text = 0;
        std::optional<PartEnd> end = {};  // of the last batch of a part
    };
    using Line = PartPipeline<Batch>;
    class Walk;

    void findOrdinals();
    void start();
    bool nextBatch();
    void takeEnd(PartEnd end);
    void startAsOne();
    void addCounts(const PassItem& item) const;

    const Document& document_;
    const PartsOfDocument& parts_;
    const std::vector<JMAPTableh> tables_;
    std::vector<std::vector<Ordinal>> ordinals_;                // of each table
    std::vector<std::pair<std::size_t, std::size_t>> counted_;  // a table and a column of each path
    std::vector<std::size_t> firstColumn_;  // of each table in lists of all columns, and their end
    bool asOne_ = false;
    bool ended_ = false;
    std::unique_ptr<Line> line_;
    Batch batch_;
    std::size_t at_ = 0;      // the next item of it
    uint64_t items_ = 0;      // that have come
    uint64_t handedOut_ = 0;  // of them; those of an earlier walk too
    std::vector<uint64_t> counts_;
    std::vector<JMAPPassColumn> columns_;
    std::vector<PassCell> left_;
};

}  // namespace qvej
