// See arrow_table.h.
#include "formats/arrow/arrow_table.h"

#include "client/document.h"
#include "client/path_names.h"
#include "client/text.h"
#include "formats/target_names.h"

#include <arrow/util/key_value_metadata.h>

#include <string>
#include <utility>
#include <vector>

namespace qvej {

namespace {

// The smallest unit that holds the digits after the second.
arrow::TimeUnit::type unitOf(const DataType& type) {
    return type.fraction == 0   ? arrow::TimeUnit::SECOND
           : type.fraction <= 3 ? arrow::TimeUnit::MILLI
           : type.fraction <= 6 ? arrow::TimeUnit::MICRO
                                : arrow::TimeUnit::NANO;
}

class Metadata {
   public:
    void add(std::string name, std::string value) {
        if (!value.empty()) {
            names_.push_back("qvejmap." + std::move(name));
            values_.push_back(std::move(value));
        }
    }
    [[nodiscard]] std::shared_ptr<const arrow::KeyValueMetadata> end() && {
        return arrow::KeyValueMetadata::Make(std::move(names_), std::move(values_));
    }

   private:
    std::vector<std::string> names_, values_;
};

std::shared_ptr<arrow::Field> arrowField(const TableSchema& table, std::size_t c,
                                         const std::string& name) {
    const Column column = table.table->columns[c];
    const bool ordinal = column.type == ColumnType::ORDINAL;
    const bool primary = table.key && c == *table.own;
    const bool foreign = table.parent && table.parent->foreignKey && c == table.parent->column;
    Metadata metadata;
    metadata.add("path", withSlashes(column.path));
    metadata.add("name", ordinal ? std::string() : std::string(lastPiece(column.path)));
    metadata.add("column", name == column.name ? std::string() : column.name);
    metadata.add("label", column.label);
    metadata.add("key", primary ? "primary" : foreign ? "foreign" : "");
    const bool always = ordinal && table.fields[c].filled == table.rows;
    return arrow::field(name, arrowType(table.fields[c].type), !always, std::move(metadata).end());
}

}  // namespace

std::shared_ptr<arrow::DataType> arrowType(const DataType& type) {
    switch (type.kind) {
        case DataType::BOOLEAN:
            return arrow::boolean();
        case DataType::BIGINT:
            return arrow::int64();
        case DataType::DOUBLE:
            return arrow::float64();
        case DataType::DECIMAL:
            return arrow::decimal128(type.precision, type.scale);
        case DataType::DATE:
            return arrow::date32();
        case DataType::TIMESTAMP: {
            const arrow::TimeUnit::type unit = unitOf(type);
            return type.utc ? arrow::timestamp(unit, "UTC") : arrow::timestamp(unit);
        }
        default:
            return arrow::utf8();
    }
}

std::shared_ptr<arrow::Schema> arrowSchema(const Schema& schema, std::size_t table) {
    const TableSchema& of = schema.tables[table];
    std::vector<std::string> names;
    for (const Column& column : of.table->columns) {
        names.push_back(column.name);
    }
    names = fittedNames(names, {.mayBeEmpty = true}).names;
    std::vector<std::shared_ptr<arrow::Field>> fields;
    for (std::size_t c = 0; c < names.size(); ++c) {
        fields.push_back(arrowField(of, c, names[c]));
    }
    Metadata metadata;
    metadata.add("version", QVEJMAP_VERSION);
    metadata.add("table", of.table->name);
    metadata.add("path", withSlashes(of.table->path()));
    if (of.key) {
        metadata.add("primary_key", names[*of.own]);
    }
    if (of.parent) {
        metadata.add("parent", schema.tables[of.parent->table].table->name);
        metadata.add("parent_column", names[of.parent->column]);
        metadata.add("foreign_key", of.parent->foreignKey ? names[of.parent->column] : "");
    }
    return arrow::schema(std::move(fields), std::move(metadata).end());
}

}  // namespace qvej
