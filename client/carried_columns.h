// Columns that show a value of an ancestor, such as an item with the id of its order.
//
// A row is complete before the objects around it are, so a value of theirs may come after it.
// Another pass reads ahead, to the end of the ancestor, before a row in it is handed out:
//
//     [{"id":1,"items":[{"s":"a"},{"s":"b"}],"paid":true},{"id":2,...
//                                ^ a row is complete      ^ and here its order is
//
// That pass hands out each instance of the ancestor's path as a row, with all its values.  Ordinals
// say which instance a row is in.  Only the current instance of each ancestor path is kept.  Paths
// of one depth do not lie in each other, nor do their instances, so one pass serves them all: the
// records are read once more for each depth that ancestors have, which mostly is one.
//
// Tested by tests/client/carried_columns_test.cpp and tests/tool/carry_join.py
#pragma once

#include "table_pass.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// The path of the ancestor whose value a column shows: the deepest that both paths are, or lie
// below.  Empty: none, since the column's path is the table's or lies below it.  Separator 0x02.
[[nodiscard]] std::string_view ancestorOf(std::string_view tablePath, std::string_view columnPath);

// Likewise; empty for an ordinal, which counts.
[[nodiscard]] std::string ancestorOf(const Table& table, const Column& column);

// What rows show of a column of a parent when it is not carried.
inline constexpr std::string_view kWithoutCarry =
    "the order of the document decides which row has the value";

// Stands between a pass and its caller, and replaces the cells of carried columns.
class CarriedColumns {
   public:
    // Opens the passes that read ahead.  Throws as TablePass.
    CarriedColumns(const Document& document, const std::vector<const Table*>& tables);
    ~CarriedColumns() = default;
    CarriedColumns(const CarriedColumns&) = delete;
    CarriedColumns& operator=(const CarriedColumns&) = delete;

    // No table has such a column.
    [[nodiscard]] bool empty() const { return ancestors_.empty(); }

    // What the pass reads in place of the tables.  A carried column is an ordinal of its ancestor
    // there: its cell says which instance the row is in, and its values make no rows.
    [[nodiscard]] const std::vector<JMAPTableh>& tables() const { return tables_; }

    // Takes an item of such a table, which must live until all that comes of it is handed out.
    void take(const PassItem& item);

    // Hands out what comes of it: a NOT_NUMBER for each value of an ancestor that a numeric column
    // cannot take, when it would be shown first, and then the item.  False: no more.  Throws as
    // TablePass::next.
    bool handOut(PassItem& item);

    // After the last item: reads what is left ahead, so that counts are complete.
    void finish();

    // What has come for a carried column, and how many of these values rows have shown.
    struct Count {
        JMAPPassColumn column;
        uint64_t shown;
    };
    [[nodiscard]] std::optional<Count> count(std::size_t table, std::size_t column) const;

   private:
    struct Walk;

    struct Ancestor {
        std::string_view path;
        JMAPTableh table = nullptr;  // an ordinal, then the columns of all tables
        std::size_t columns = 0;     // of the table
        Walk* walk = nullptr;
        std::size_t place = 0;  // in the walk
        uint64_t instance = 0;  // that the walk has come to, from 1
    };
    // A pass that reads ahead, for ancestors of one depth.  It stays at an instance while there are
    // rows in it: those of another ancestor are all before or after that.
    struct Walk {
        std::vector<Ancestor*> ancestors;
        std::unique_ptr<TablePass> pass;
        PassItem item = {};  // the instance that it has come to
    };
    // A carried column of a table.
    struct Use {
        std::size_t column;
        Ancestor* ancestor;
        std::size_t cell;  // of the ancestor's
        bool number;       // takes numbers, without an informat
        uint64_t last;     // instance that the table showed last
        uint64_t shown;    // values
    };

    void addUses(JMAPTableh table, std::vector<Use>& uses);
    JMAPTableh standIn(JMAPTableh table, const std::vector<Use>& uses);
    Ancestor& ancestorAt(std::string_view path);
    void openWalks();
    static bool step(Walk& walk);
    static PassCell valueOf(const Use& use, uint64_t instance);
    void fill();
    void fillCell(Use& use, PassCell& cell);

    const Document& document_;
    std::vector<JMAPTableh> tables_;
    std::vector<std::vector<Use>> uses_;                      // of each table, in order of columns
    std::map<std::string, Ancestor, std::less<>> ancestors_;  // by path
    std::map<std::size_t, Walk> walks_;                       // by depth

    PassItem item_ = {};   // that was taken
    bool taken_ = false;   // and not yet handed out
    bool filled_ = false;  // its cells are in `row_`
    std::vector<PassCell> row_;
    std::vector<std::size_t> notNumbers_;  // columns of it, from the last to the first
};

}  // namespace qvej
