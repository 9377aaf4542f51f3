// See schema_report.h.
#include "tools/cli/reports/schema_report.h"

#include "client/text.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/tell.h"

#include <re2/re2.h>

#include <string>

namespace qvej::cli {

namespace {

// A line that names the first of many.
class Summary {
   public:
    void add(const std::string& sentence) { first_ = count_++ == 0 ? sentence : first_; }
    // `one`, `several`: what the others are, "table has none" and "tables have none".
    void tellAll(const std::string& one, const std::string& several) const {
        if (count_ != 0) {
            tell(first_ + (count_ == 1 ? std::string()
                                       : "; " + std::to_string(count_ - 1) + " other " +
                                             (count_ == 2 ? one : several)));
        }
    }

   private:
    std::size_t count_ = 0;
    std::string first_;
};

std::string nameOf(const TableSchema& table, std::size_t column) {
    return visible(table.table->name) + "." + table.table->columns[column].name;
}

std::string rows(uint64_t count) {
    return std::to_string(count) + (count == 1 ? " row" : " rows");
}

void tellKeys(const Schema& schema) {
    Summary keys;
    Summary parents;
    for (const TableSchema& table : schema.tables) {
        const std::string name = visible(table.table->name);
        if (table.own && !table.key) {
            const std::string column = table.table->columns[*table.own].name;
            keys.add(name + " has no primary key: " + column +
                     (table.missing != 0 ? " is missing in " + rows(table.missing)
                                         : " repeats in " + rows(table.repeated)));
        }
        if (table.parent && table.parent->orphans != 0) {
            parents.add(rows(table.parent->orphans) + " of " + name +
                        (table.parent->orphans == 1 ? " has" : " have") + " no row in " +
                        visible(schema.tables[table.parent->table].table->name) + ", so " +
                        table.table->columns[table.parent->column].name + " is no foreign key");
        }
    }
    keys.tellAll("table has none", "tables have none");
    parents.tellAll("table has such rows", "tables have such rows");
}

void tellTypes(const Schema& schema) {
    static const RE2 kTimeName("(?i)time|date|stamp|epoch|_at$|_ts$|^ts$|created|updated|modified");
    Summary mixed;
    Summary times;
    for (const TableSchema& table : schema.tables) {
        for (std::size_t c = 0; c < table.fields.size(); ++c) {
            const Field& field = table.fields[c];
            const Column column = table.table->columns[c];
            if (column.logicalType == LogicalType::MIXED && field.any) {
                mixed.add(nameOf(table, c) + " has values of several kinds, all as " +
                          (column.type == ColumnType::NUMERIC ? "numbers: true is 1, false is 0"
                                                              : "texts"));
            }
            if (field.unixLike != Field::NO_UNIX && column.type == ColumnType::NUMERIC &&
                RE2::PartialMatch(std::string(lastPiece(column.path)), kTimeName)) {
                const bool seconds = field.unixLike == Field::SECONDS;
                times.add(nameOf(table, c) + " looks like " +
                          (seconds ? "seconds" : "milliseconds") + " since 1970: with INFORMAT " +
                          (seconds ? "unix" : "unixms") + " in a map it is a time");
            }
        }
    }
    mixed.tellAll("column has such values", "columns have such values");
    times.tellAll("column looks like times", "columns look like times");
}

}  // namespace

void tellSchema(const Options& options, const Document& document, const Schema& schema) {
    // With ordinals left out, or in a map of the user's, it is no surprise.
    if (options.reading.ordinals == UINT64_MAX &&
        &document.tables() == &document.automaticTables()) {
        tellKeys(schema);
    }
    tellTypes(schema);
}

}  // namespace qvej::cli
