// See table_fields.h.
#include "formats/arrow_c/table_fields.h"

#include "client/path_names.h"
#include "client/text.h"
#include "formats/arrow_c/column_buffers.h"
#include "formats/target_names.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace qvej {

namespace {

// Pairs of texts: their number, then of each its length and its bytes.  Numbers have 32 bits, in
// the order of the machine.
class Metadata {
   public:
    void add(const std::string& name, const std::string& value) {
        if (!value.empty()) {
            ++count_;
            addText("qvejmap." + name);
            addText(value);
        }
    }
    [[nodiscard]] std::string end() && {
        return count_ == 0 ? std::string() : numberText(count_) + pairs_;
    }

   private:
    static std::string numberText(int32_t number) {
        return {reinterpret_cast<const char*>(&number), sizeof number};
    }
    void addText(const std::string& text) {
        pairs_ += numberText(static_cast<int32_t>(text.size())) + text;
    }

    int32_t count_ = 0;
    std::string pairs_;
};

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

ArrowField fieldOf(const TableSchema& table, std::size_t c, const std::string& name) {
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
    return {name, formatOf(table.fields[c].type), std::move(metadata).end(), !always};
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

std::vector<std::string> fieldNames(const Table& table) {
    std::vector<std::string> names;
    for (const Column& column : table.columns) {
        names.push_back(column.name);
    }
    return fittedNames(names, {.mayBeEmpty = true}).names;
}

TableFields tableFields(const Schema& schema, std::size_t table,
                        const std::vector<std::size_t>& columns) {
    const TableSchema& of = schema.tables[table];
    const std::vector<std::string> names = fieldNames(*of.table);
    TableFields fields;
    for (const std::size_t c : columns) {
        fields.fields.push_back(fieldOf(of, c, names[c]));
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
    fields.metadata = std::move(metadata).end();
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
