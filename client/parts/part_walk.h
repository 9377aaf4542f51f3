// The rows of a document that keeps no records: its text is read again, in parts on several
// threads, and each part is walked as a document of its own (jmapWalkOpen).
//
// What the parts before it have counted is known (PartCounts), so the rows of a part are the final
// ones, and whatever is to be made of them is made by the worker (RowWork).  When a value of one
// part belongs to a row of the next, the parts cannot be walked apart: the text is then walked from
// its beginning as one, and the rows that have been taken already are passed over.
//
// Tested by tests/client/parts_test.cpp
#pragma once

#include "../document.h"
#include "../row_work.h"
#include "../table_pass.h"
#include "part_pipeline.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace qvej {

class PartWalk {
   public:
    // Tables of the document's maps; it has parts, and must outlive this object.
    //   make    of what the workers do with the items
    //   source  items begin with the name of their text
    // Throws QV_NOMEM.
    PartWalk(const Document& document, std::vector<JMAPTableh> tables, MakeRowWork make,
             bool source);
    ~PartWalk();

    // The next result, of rows of one text; null after the last.  Throws what reading, walking or
    // the work threw.
    [[nodiscard]] std::unique_ptr<RowResult> next();

    // The same to the end, on no other thread when the document has but one for its parts.  When it
    // throws, all work has ended.
    void run(const TakeRowResult& take);

    // Which text the rows of the last result are of.
    [[nodiscard]] std::size_t text() const { return text_; }

    // What has come before the part of the last result; after the end, everything.
    [[nodiscard]] JMAPPassColumn column(std::size_t table, std::size_t column) const {
        return columns_[firstColumn_[table] + column];
    }
    [[nodiscard]] const PassCell& left(std::size_t table, std::size_t column) const {
        return left_[firstColumn_[table] + column].cell;
    }

   private:
    // An ordinal column of a table, and the place of its path among those that are counted.
    struct Ordinal {
        std::size_t table, column, path;
    };
    // A cell with its text.
    struct Left {
        PassCell cell = {};
        std::string text = {};
    };
    // What the end of a part tells.
    struct PartEnd {
        bool last = false;                         // of the document
        bool valuesLeft = false;                   // the next part cannot be walked by itself
        std::vector<JMAPPassColumn> columns = {};  // of all tables
        std::vector<Left> left = {};               // likewise
    };
    struct Result {
        std::unique_ptr<RowResult> rows = {};
        uint64_t items = 0;
        std::size_t text = 0;
        std::optional<PartEnd> end = {};  // of the last result of a part
    };
    using Line = PartPipeline<Result>;
    class Walk;

    void findOrdinals();
    void read(const TakePart& take) const;
    void start();
    [[nodiscard]] std::unique_ptr<Line::Worker> makeWalk(Line::Put put);
    void walkAsOne();
    void endWork();
    bool walkAlone(const TakeRowResult& take);
    bool nextResult(Result& result);
    std::unique_ptr<RowResult> accept(Result result);
    void takeEnd();
    [[nodiscard]] std::unique_ptr<RowWork> borrowWork();
    void giveBack(std::unique_ptr<RowWork> work);

    const Document& document_;
    const PartsOfDocument& parts_;
    const std::vector<JMAPTableh> tables_;
    const MakeRowWork make_;
    const bool source_;
    std::vector<Ordinal> ordinals_;
    std::vector<std::string> counted_;      // the paths of ordinals
    std::vector<std::size_t> firstColumn_;  // of each table in lists of all columns, and their end
    bool asOne_;
    bool notApart_ = false;  // the next results come of a walk as one
    bool ended_ = false;
    std::unique_ptr<Line> line_;
    std::size_t text_ = 0;
    uint64_t taken_ = 0;          // items, in results that have been handed out
    uint64_t passed_ = 0;         // of them those that a walk as one passes over
    std::optional<PartEnd> end_;  // of the last result, not yet looked at
    std::vector<JMAPPassColumn> columns_;
    std::vector<Left> left_;

    std::mutex mutex_;  // for `idle_`
    std::vector<std::unique_ptr<RowWork>> idle_;
};

}  // namespace qvej
