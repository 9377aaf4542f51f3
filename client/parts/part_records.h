// ALLDATA of a document of which one part is read: its rows come of records of that part.
//
// Tested by tests/client/partial_scan_test.cpp
#pragma once

#include "../document.h"
#include "../row_source.h"
#include "../table_pass.h"
#include "part_document.h"
#include "text_part.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace qvej {

class PartRecords final : public RowSource {
   public:
    // The document must outlive it.  The part is read when the first row is asked for.
    explicit PartRecords(const Document& document);

    bool next(PassItem& item) override;
    // ALLDATA has no columns that take the values of a path, and no rows that are not complete.
    [[nodiscard]] JMAPPassColumn column(std::size_t, std::size_t) const override { return {}; }
    [[nodiscard]] const JMAPPassCell& left(std::size_t, std::size_t) const override {
        return nothing_;
    }
    [[nodiscard]] std::size_t text() const override { return 0; }

   private:
    void read();
    [[nodiscard]] uint64_t rowsBefore() const;

    const PartsOfDocument& parts_;
    const JMAPPassCell nothing_ = {};
    std::vector<JMAPPassCell> cells_;     // of a row, as the table of the document has them
    std::unique_ptr<PartDocument> part_;  // null: it is to be read yet, or has no text
    std::unique_ptr<TablePass> pass_;     // over its own table ALLDATA
    bool begun_ = false;
};

}  // namespace qvej
