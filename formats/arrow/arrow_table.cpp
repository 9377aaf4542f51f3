// See arrow_table.h.
#include "formats/arrow/arrow_table.h"

#include "formats/table_metadata.h"

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

std::shared_ptr<const arrow::KeyValueMetadata> metadataOf(std::vector<MetadataPair> pairs) {
    std::vector<std::string> names;
    std::vector<std::string> values;
    for (MetadataPair& pair : pairs) {
        names.push_back(std::move(pair.name));
        values.push_back(std::move(pair.value));
    }
    return arrow::KeyValueMetadata::Make(std::move(names), std::move(values));
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
    const std::vector<std::string> names = fieldNames(*of.table);
    std::vector<std::shared_ptr<arrow::Field>> fields;
    for (std::size_t c = 0; c < names.size(); ++c) {
        fields.push_back(arrow::field(names[c], arrowType(of.fields[c].type), !alwaysFilled(of, c),
                                      metadataOf(columnMetadata(of, c, names[c]))));
    }
    return arrow::schema(std::move(fields), metadataOf(tableMetadata(schema, table, names)));
}

}  // namespace qvej
