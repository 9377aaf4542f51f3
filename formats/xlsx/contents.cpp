// See contents.h.
#include "formats/xlsx/contents.h"

#include "client/document.h"
#include "client/path_names.h"
#include "client/text.h"
#include "formats/xlsx/sheet_sink.h"

#include <initializer_list>

namespace qvej {

namespace {

constexpr std::size_t kMostLinks = 65530;  // of a sheet

std::string keyOf(const TableSchema& table, std::size_t column) {
    if (table.key && column == *table.own) {
        return "primary";
    }
    return table.parent && table.parent->foreignKey && column == table.parent->column ? "foreign"
                                                                                      : "";
}

class Lines {
   public:
    explicit Lines(Sheet& sheet) : sheet_(sheet) {}

    void header(std::initializer_list<std::string_view> names) {
        std::size_t column = 0;
        for (const std::string_view name : names) {
            sheet_.text(column++, name, sheet_.looks().header);
        }
        next();
    }
    void next() { sheet_.begin(++row_); }

    void table(const Schema& schema, std::size_t t, const std::string& sheet) {
        const TableSchema& of = schema.tables[t];
        sheet_.text(0, of.table->name);
        if (t < kMostLinks) {
            sheet_.link(1, sheet);
        } else {
            sheet_.text(1, sheet);
        }
        sheet_.number(2, static_cast<double>(of.rows));
        sheet_.text(3, withSlashes(of.table->path()));
        if (of.parent) {
            sheet_.text(4, schema.tables[of.parent->table].table->name);
        }
        next();
    }

    void column(const TableSchema& table, std::size_t c) {
        const Column column = table.table->columns[c];
        const Field& field = table.fields[c];
        sheet_.text(0, table.table->name);
        sheet_.text(1, column.name);
        sheet_.text(2, nameOf(field.type) + (isTextInSheet(field) ? ", as text" : ""));
        sheet_.text(3, withSlashes(column.path));
        sheet_.text(4, column.type == ColumnType::ORDINAL ? "" : lastPiece(column.path));
        sheet_.text(5, keyOf(table, c));
        sheet_.text(6, column.label);
        next();
    }

   private:
    Sheet& sheet_;
    lxw_row_t row_ = 0;
};

}  // namespace

void writeContents(Sheet& sheet, const Schema& schema, const std::vector<std::string>& sheets) {
    Lines lines(sheet);
    sheet.freezeHeader();
    lines.header({"Table", "Sheet", "Rows", "Path", "Parent"});
    for (std::size_t t = 0; t < schema.tables.size(); ++t) {
        lines.table(schema, t, sheets[t]);
    }
    lines.next();
    lines.header({"Table", "Column", "Type", "Path", "Name in the document", "Key", "Label"});
    for (const TableSchema& table : schema.tables) {
        for (std::size_t c = 0; c < table.fields.size(); ++c) {
            lines.column(table, c);
        }
    }
}

}  // namespace qvej
