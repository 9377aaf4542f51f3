// See table_fields.h.
#include "formats/arrow_c/table_fields.h"

#include "formats/arrow_c/column_buffers.h"
#include "formats/table_metadata.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace qvej {

namespace {

std::string numberText(std::size_t number) {
    const auto small = static_cast<int32_t>(number);
    return {reinterpret_cast<const char*>(&small), sizeof small};
}

// Pairs of texts as the C data interface has them: their number, then of each its length and its
// bytes.  Numbers have 32 bits, in the order of the machine.
std::string packed(const std::vector<MetadataPair>& pairs) {
    std::string bytes = pairs.empty() ? std::string() : numberText(pairs.size());
    for (const MetadataPair& pair : pairs) {
        bytes += numberText(pair.name.size()) + pair.name;
        bytes += numberText(pair.value.size()) + pair.value;
    }
    return bytes;
}

std::string formatOf(const DataType& type) {
    switch (type.kind) {
        case DataType::BOOLEAN:
            return "b";
        case DataType::BIGINT:
            return "l";
        case DataType::DOUBLE:
            return "g";
        case DataType::DECIMAL:
            return "d:" + std::to_string(type.precision) + "," + std::to_string(type.scale);
        case DataType::DATE:
            return "tdD";
        case DataType::TIMESTAMP:
            return std::string("ts") + "smun"[unitDigits(type) / 3] + ":" + (type.utc ? "UTC" : "");
        default:
            return "u";
    }
}

// What an exported structure owns.
struct OwnedSchema {
    ArrowField field;
    std::vector<std::unique_ptr<ArrowSchema>> children = {};
    std::vector<ArrowSchema*> pointers = {};
};

void release(ArrowSchema* schema) {
    auto* const owned = static_cast<OwnedSchema*>(schema->private_data);
    for (const std::unique_ptr<ArrowSchema>& child : owned->children) {
        if (child->release != nullptr) {
            child->release(child.get());
        }
    }
    delete owned;
    schema->release = nullptr;
}

void fill(std::unique_ptr<OwnedSchema> owned, ArrowSchema* out) {
    const ArrowField& field = owned->field;
    *out = {};
    out->format = field.format.c_str();
    out->name = field.name.c_str();
    out->metadata = field.metadata.empty() ? nullptr : field.metadata.data();
    out->flags = field.nullable ? ARROW_FLAG_NULLABLE : 0;
    out->n_children = static_cast<int64_t>(owned->pointers.size());
    out->children = owned->pointers.empty() ? nullptr : owned->pointers.data();
    out->release = release;
    out->private_data = owned.release();
}

}  // namespace

TableFields tableFields(const Schema& schema, std::size_t table,
                        const std::vector<std::size_t>& columns) {
    const TableSchema& of = schema.tables[table];
    const std::vector<std::string> names = fieldNames(*of.table);
    TableFields fields;
    for (const std::size_t c : columns) {
        fields.fields.push_back({names[c], formatOf(of.fields[c].type),
                                 packed(columnMetadata(of, c, names[c])), !alwaysFilled(of, c)});
    }
    fields.metadata = packed(tableMetadata(schema, table, names));
    return fields;
}

void exportSchema(const TableFields& fields, ArrowSchema* out) {
    auto owned = std::make_unique<OwnedSchema>(OwnedSchema{{"", "+s", fields.metadata, false}});
    for (std::size_t i = 0; i < fields.fields.size(); ++i) {
        owned->children.push_back(std::make_unique<ArrowSchema>());
        owned->pointers.push_back(owned->children.back().get());
    }
    // From here on `release` gives back what there is, whatever fails.
    ArrowSchema made = {};
    fill(std::move(owned), &made);
    try {
        for (std::size_t i = 0; i < fields.fields.size(); ++i) {
            fill(std::make_unique<OwnedSchema>(OwnedSchema{fields.fields[i]}), made.children[i]);
        }
    } catch (...) {
        release(&made);
        throw;
    }
    *out = made;
}

}  // namespace qvej
