// See table_metadata.h.
#include "formats/table_metadata.h"

#include "client/path_names.h"
#include "client/text.h"
#include "formats/target_names.h"

#include <utility>

namespace qvej {

namespace {

class Pairs {
   public:
    void add(const std::string& name, std::string value) {
        if (!value.empty()) {
            pairs_.push_back({"qvejmap." + name, std::move(value)});
        }
    }
    [[nodiscard]] std::vector<MetadataPair> end() && { return std::move(pairs_); }

   private:
    std::vector<MetadataPair> pairs_;
};

bool isOrdinal(const TableSchema& table, std::size_t column) {
    return table.table->columns.type(column) == ColumnType::ORDINAL;
}

}  // namespace

std::vector<std::string> fieldNames(const Table& table) {
    std::vector<std::string> names;
    for (const Column& column : table.columns) {
        names.push_back(column.name);
    }
    return fittedNames(names, {.forbidden = kNul, .mayBeEmpty = true}).names;
}

bool alwaysFilled(const TableSchema& table, std::size_t column) {
    return isOrdinal(table, column) && table.fields[column].filled == table.rows;
}

std::vector<MetadataPair> columnMetadata(const TableSchema& table, std::size_t c,
                                         const std::string& name) {
    const Column column = table.table->columns[c];
    const bool primary = table.key && c == *table.own;
    const bool foreign = table.parent && table.parent->foreignKey && c == table.parent->column;
    Pairs pairs;
    pairs.add("path", withSlashes(column.path));
    pairs.add("name", isOrdinal(table, c) ? std::string() : std::string(lastPiece(column.path)));
    pairs.add("column", name == column.name ? std::string() : column.name);
    pairs.add("label", column.label);
    pairs.add("key", primary ? "primary" : foreign ? "foreign" : "");
    return std::move(pairs).end();
}

std::vector<MetadataPair> tableMetadata(const Schema& schema, std::size_t table,
                                        const std::vector<std::string>& names) {
    const TableSchema& of = schema.tables[table];
    Pairs pairs;
    pairs.add("version", QVEJMAP_VERSION);
    pairs.add("table", of.table->name);
    pairs.add("path", withSlashes(of.table->path()));
    if (of.key) {
        pairs.add("primary_key", names[*of.own]);
    }
    if (of.parent) {
        pairs.add("parent", schema.tables[of.parent->table].table->name);
        pairs.add("parent_column", names[of.parent->column]);
        pairs.add("foreign_key", of.parent->foreignKey ? names[of.parent->column] : "");
    }
    return std::move(pairs).end();
}

}  // namespace qvej
