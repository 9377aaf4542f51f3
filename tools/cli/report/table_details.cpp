// See table_details.h.
#include "tools/cli/report/table_details.h"

#include "client/schema/typed_value.h"
#include "client/table_pass.h"
#include "tools/cli/pictures/markup.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace qvej::cli {

namespace {

constexpr std::size_t kMostHashes = 4'000'000;  // in all columns at a time

// Counts different texts by their hashes, up to kMostDistinct.
class DistinctCount {
   public:
    // `room`: hashes that all columns may hold further.
    void take(std::string_view text, std::size_t& room) {
        if (state_ != COUNTING) {
            return;
        }
        const std::size_t hash = std::hash<std::string_view>{}(text);
        const auto at = std::lower_bound(hashes_.begin(), hashes_.end(), hash);
        if (at != hashes_.end() && *at == hash) {
            return;
        }
        if (hashes_.size() == kMostDistinct || room == 0) {
            state_ = hashes_.size() == kMostDistinct ? MANY : NO_ROOM;
            room += hashes_.size();
            hashes_ = {};
            return;
        }
        --room;
        hashes_.insert(at, hash);
    }

    void end(ColumnDetails& details) const {
        details.counted = state_ != NO_ROOM;
        if (state_ == COUNTING) {
            details.distinct = hashes_.size();
        }
    }

   private:
    enum { COUNTING, MANY, NO_ROOM } state_ = COUNTING;
    std::vector<std::size_t> hashes_;  // in order
};

// The least and the greatest value of a column whose type has an order.
class Range {
   public:
    void take(const Cell& cell, const DataType& type, std::string_view text) {
        if (type.kind == DataType::TEXT || type.kind == DataType::BOOLEAN) {
            return;
        }
        const Key key = keyOf(cell, type);
        if (!any_ || key < leastKey_) {
            leastKey_ = key;
            least_ = text;
        }
        if (!any_ || greatestKey_ < key) {
            greatestKey_ = key;
            greatest_ = text;
        }
        any_ = true;
    }

    void end(ColumnDetails& details, std::size_t longest) const {
        details.least = shortened(least_, longest);
        details.greatest = shortened(greatest_, longest);
    }

   private:
    using Key = std::pair<Int128, double>;  // one of them is 0

    static Key keyOf(const Cell& cell, const DataType& type) {
        switch (type.kind) {
            case DataType::BIGINT:
                return {bigintOf(cell), 0};
            case DataType::DECIMAL:
                return {decimalOf(cell, type.scale), 0};
            case DataType::DATE:
                return {daysOf(cell), 0};
            case DataType::TIMESTAMP:
                return {unitsOf(cell, type.fraction), 0};
            default:
                return {0, doubleOf(cell)};
        }
    }

    bool any_ = false;
    Key leastKey_, greatestKey_;
    std::string least_, greatest_;
};

// The rows of one table.
class TableFacts {
   public:
    TableFacts(const Document& document, const TableSchema& table, std::size_t longest)
        : table_(table), longest_(longest), row_(document, *table.table) {
        const std::size_t columns = std::min(table.fields.size(), kMostDetailColumns);
        distinct_.resize(columns);
        ranges_.resize(columns);
        for (std::size_t c = 0; c < columns; ++c) {
            ordinal_.push_back(table.table->columns.type(c) == ColumnType::ORDINAL);
        }
    }

    void take(const PassItem& item, std::size_t& room) {
        if (!row_.take(item)) {
            return;
        }
        if (rows_.size() < kMostDetailRows) {
            keepRow();
        }
        for (std::size_t c = 0; c < distinct_.size(); ++c) {
            const Cell cell = ordinal_[c] ? Cell{} : row_.cell(c);
            if (hasValue(cell)) {
                const DataType& type = table_.fields[c].type;
                const std::string_view text = textOf(cell, type, buffer_);
                distinct_[c].take(text, room);
                ranges_[c].take(cell, type, text);
            }
        }
    }

    [[nodiscard]] TableDetails end() {
        TableDetails details;
        details.columns.resize(distinct_.size());
        for (std::size_t c = 0; c < distinct_.size(); ++c) {
            distinct_[c].end(details.columns[c]);
            ranges_[c].end(details.columns[c], longest_);
        }
        details.rows = std::move(rows_);
        return details;
    }

   private:
    void keepRow() {
        std::vector<DetailCell>& row = rows_.emplace_back(distinct_.size());
        for (std::size_t c = 0; c < row.size(); ++c) {
            const Cell cell = row_.cell(c);
            if (!hasValue(cell)) {
                row[c].kind = cell.kind == Cell::NUL ? DetailCell::NUL : DetailCell::MISSING;
                continue;
            }
            const bool number =
                cell.kind == Cell::COUNT || cell.kind == Cell::NUMBER || cell.kind == Cell::DIGITS;
            row[c].kind = number ? DetailCell::NUMBER : DetailCell::TEXT;
            row[c].text = shortened(textOf(cell, table_.fields[c].type, buffer_), longest_);
        }
    }

    const TableSchema& table_;
    std::size_t longest_;
    PassRow row_;
    std::vector<bool> ordinal_;
    std::vector<DistinctCount> distinct_;
    std::vector<Range> ranges_;
    std::vector<std::vector<DetailCell>> rows_;
    std::string buffer_;
};

// A value of a path that is to be shown, until its record comes.
struct Wanted {
    int32_t kind;  // of the record; 0: any
    int64_t size;  // of its value; -1: any
    Example example;
    bool found = false;
};

struct PathHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view path) const {
        return std::hash<std::string_view>{}(path);
    }
};
using Examples = std::unordered_map<std::string, std::vector<Wanted>, PathHash, std::equal_to<>>;

std::vector<Wanted> wantedOf(const PathStatistics& path) {
    std::vector<Wanted> wanted;
    for (const KindStatistics& kind : path.kinds) {
        if (kind.kind != JMAP_KIND_FAKE_VARIABLE && wanted.size() < kMostExamples) {
            wanted.push_back({kind.kind, -1, {{}, kind.first}});
        }
    }
    const bool isNew = std::none_of(wanted.begin(), wanted.end(), [&](const Wanted& one) {
        return one.example.place.line == path.longestAt.line &&
               one.example.place.column == path.longestAt.column &&
               one.example.place.text == path.longestAt.text;
    });
    if (isNew && wanted.size() < kMostExamples) {
        wanted.push_back({0, path.longest, {{}, path.longestAt}});
    }
    return wanted;
}

// Fills in the values of the paths.
void findExamples(const Document& document, Examples& examples, std::size_t longest) {
    for (const PathStatistics& path : document.pathStatistics()) {
        const auto at = examples.find(path.path);
        if (at != examples.end()) {
            at->second = wantedOf(path);
        }
    }
    RecordCursor records(document);
    for (Record record = {}; records.next(record);) {
        if (record.kind == JMAP_KIND_NOVAL || record.kind == JMAP_KIND_FAKE_VARIABLE) {
            continue;
        }
        const auto at = examples.find(record.path);
        if (at == examples.end()) {
            continue;
        }
        for (Wanted& wanted : at->second) {
            if (!wanted.found && (wanted.kind == 0 || wanted.kind == record.kind) &&
                (wanted.size < 0 || wanted.size == static_cast<int64_t>(record.value.size()))) {
                wanted.found = true;
                wanted.example.text = shortened(record.value, longest);
                if (!document.texts().empty()) {
                    wanted.example.file = document.texts()[wanted.example.place.text].name;
                }
            }
        }
    }
}

void addExamples(const Document& document, const Schema& schema,
                 const std::vector<std::size_t>& tables, std::vector<TableDetails>& details,
                 std::size_t longest) {
    const auto eachColumn = [&](const auto& act) {
        for (std::size_t t = 0; t < tables.size(); ++t) {
            const Columns& columns = schema.tables[tables[t]].table->columns;
            for (std::size_t c = 0; c < details[t].columns.size(); ++c) {
                if (columns.type(c) != ColumnType::ORDINAL) {
                    act(columns[c].path, details[t].columns[c]);
                }
            }
        }
    };
    Examples examples;
    eachColumn([&](const std::string& path, ColumnDetails&) { examples.try_emplace(path); });
    findExamples(document, examples, longest);
    eachColumn([&](const std::string& path, ColumnDetails& column) {
        for (const Wanted& wanted : examples.at(path)) {
            if (wanted.found) {
                column.examples.push_back(wanted.example);
            }
        }
    });
}

}  // namespace

std::vector<TableDetails> detailsOf(const Document& document, const Schema& schema,
                                    const std::vector<std::size_t>& tables, const Options& options,
                                    std::size_t longest) {
    std::vector<const Table*> passed;
    std::vector<std::unique_ptr<TableFacts>> facts;
    for (const std::size_t table : tables) {
        passed.push_back(schema.tables[table].table);
        facts.push_back(std::make_unique<TableFacts>(document, schema.tables[table], longest));
    }
    std::size_t room = kMostHashes;
    TablePass pass(document, passed, options.retain, options.carry);
    for (PassItem item = {}; pass.next(item);) {
        facts[item.table]->take(item, room);
    }
    std::vector<TableDetails> details;
    for (const std::unique_ptr<TableFacts>& table : facts) {
        details.push_back(table->end());
    }
    addExamples(document, schema, tables, details, longest);
    return details;
}

}  // namespace qvej::cli
