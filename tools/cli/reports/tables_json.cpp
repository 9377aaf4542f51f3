// See tables_json.h.
#include "tools/cli/reports/tables_json.h"

#include "client/escape.h"
#include "client/path_names.h"
#include "client/text.h"
#include "tools/cli/reports/table_marks.h"

#include <array>
#include <string_view>

namespace qvej::cli {

namespace {

class TablesWriter {
   public:
    TablesWriter(Writer& out, const Schema& schema) : out_(out), schema_(schema) {}

    void put(const std::string& input, const std::vector<PathAccount>& account) {
        out_.append("{\"version\":");
        putString(QVEJMAP_VERSION);
        putText("input", input);
        out_.append(",\n\"tables\":[");
        for (std::size_t t = 0; t < schema_.tables.size(); ++t) {
            out_.append(t == 0 ? "\n" : ",\n");
            putTable(schema_.tables[t]);
        }
        out_.append("],\n\"account\":");
        putAccount(account);
        out_.append("}\n");
    }

   private:
    void putTable(const TableSchema& table) {
        out_.append("{\"name\":");
        putString(table.table->name);
        putText("path", withSlashes(table.table->path()));
        putNumber("rows", table.rows);
        putKeys(table);
        out_.append(",\"columns\":[");
        for (std::size_t c = 0; c < table.fields.size(); ++c) {
            out_.append(c == 0 ? "\n" : ",\n");
            putColumn(table.table->columns[c], table.fields[c]);
        }
        out_.append("]}");
    }

    void putColumn(const Column& column, const Field& field) {
        out_.append("  {\"name\":");
        putString(column.name);
        if (column.path.empty()) {
            putNull("path");
        } else {
            putText("path", withSlashes(column.path));
        }
        if (column.type == ColumnType::ORDINAL || column.path.empty()) {
            putNull("originalName");
        } else {
            putText("originalName", lastPiece(column.path));
        }
        putText("type", nameOf(field.type));
        putFlag("ordinal", column.type == ColumnType::ORDINAL);
        putNumber("filled", field.filled);
        putNumber("longest", field.longest);
        putFlag("mixed", isMixed(column, field));
        if (column.label.empty()) {
            putNull("label");
        } else {
            putText("label", column.label);
        }
        out_.put('}');
    }

    void putKeys(const TableSchema& table) {
        if (table.key) {
            putText("primaryKey", table.table->columns[*table.own].name);
        } else {
            putNull("primaryKey");
        }
        if (!table.parent) {
            putNull("parent");
            putNull("foreignKey");
            putFlag("oneToOne", false);
            putNumber("orphans", 0);
            return;
        }
        const ParentKey& parent = *table.parent;
        const Table& above = *schema_.tables[parent.table].table;
        putText("parent", above.name);
        if (parent.foreignKey) {
            out_.append(",\"foreignKey\":{\"column\":");
            putString(table.table->columns[parent.column].name);
            putText("table", above.name);
            putText("parentColumn", above.columns[parent.ordinal].name);
            out_.put('}');
        } else {
            putNull("foreignKey");
        }
        putFlag("oneToOne", isOneToOne(table));
        putNumber("orphans", parent.orphans);
    }

    void putAccount(const std::vector<PathAccount>& accounts) {
        static constexpr std::array<std::string_view, kLosses> kNames = {"overwritten", "noColumn",
                                                                         "noRow", "rejected"};
        uint64_t values = 0;
        uint64_t cells = 0;
        uint64_t strayed = 0;
        uint64_t cut = 0;
        std::array<uint64_t, kLosses> lost = {};
        for (const PathAccount& account : accounts) {
            values += account.values;
            cells += account.cells;
            strayed += account.strayed.count;
            cut += account.cut.count;
            for (std::size_t loss = 0; loss < kLosses; ++loss) {
                lost[loss] += account.lost[loss].count;
            }
        }
        out_.append("{\"values\":" + std::to_string(values));
        putNumber("cells", cells);
        for (std::size_t loss = 0; loss < kLosses; ++loss) {
            putNumber(kNames[loss], lost[loss]);
        }
        putNumber("strayed", strayed);
        putNumber("cut", cut);
        out_.put('}');
    }

    void putString(std::string_view text) {
        out_.put('"');
        appendEscaped(out_, text, JSON_STRING);
        out_.put('"');
    }
    void putKey(std::string_view key) {
        out_.append(",\"");
        out_.append(key);
        out_.append("\":");
    }
    void putText(std::string_view key, std::string_view text) {
        putKey(key);
        putString(text);
    }
    void putNull(std::string_view key) {
        putKey(key);
        out_.append("null");
    }
    void putFlag(std::string_view key, bool flag) {
        putKey(key);
        out_.append(flag ? "true" : "false");
    }
    void putNumber(std::string_view key, uint64_t number) {
        putKey(key);
        out_.append(std::to_string(number));
    }

    Writer& out_;
    const Schema& schema_;
};

}  // namespace

void printJson(Writer& out, const std::string& input, const Schema& schema,
               const std::vector<PathAccount>& account) {
    TablesWriter(out, schema).put(input, account);
}

}  // namespace qvej::cli
