// DBML.  See writers.h.
#include "client/escape.h"
#include "client/text.h"
#include "tools/cli/pictures/unique_names.h"
#include "tools/cli/pictures/writers.h"

namespace qvej::cli {

namespace {

std::string escapedFor(std::string_view text, char quote) {
    std::string result(1, quote);
    for (const char c : shown(text)) {
        result += c == quote || c == '\\' ? "\\" + std::string(1, c) : std::string(1, c);
    }
    return result + quote;
}

std::string name(std::string_view text) {
    return escapedFor(text, '"');
}

// A word, or in quotes.
std::string type(const std::string& text) {
    return text.find(' ') == text.npos ? text : name(text);
}

std::string note(std::string_view text) {
    return escapedFor(text, '\'');
}

std::vector<std::string> columnNames(const Diagram::Table& table) {
    std::vector<std::string> names;
    for (const Diagram::Column& column : table.columns) {
        names.push_back(column.name);
    }
    return uniqueNames(std::move(names));
}

void putTable(std::string& out, const Diagram::Table& table, const std::string& tableName) {
    out += "Table " + name(tableName) + " {\n";
    const std::vector<std::string> names = columnNames(table);
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        const Diagram::Column& column = table.columns[c];
        std::string settings = column.primary ? "pk" : "";
        if (!column.note.empty()) {
            settings += (settings.empty() ? "note: " : ", note: ") + note(column.note);
        }
        out += "  " + name(names[c]) + " " + type(column.type) +
               (settings.empty() ? "" : " [" + settings + "]") + "\n";
    }
    std::string about = withCommas(table.rows) + (table.rows == 1 ? " row" : " rows");
    about += table.path.empty() ? "" : " of " + table.path;
    if (table.moreColumns != 0) {
        about += "; " + withCommas(table.moreColumns) + " more columns";
    }
    out += "\n  Note: " + note(about) + "\n}\n\n";
}

}  // namespace

std::string dbmlOf(const Diagram& diagram) {
    std::string out;
    std::vector<std::string> names;
    for (const Diagram::Table& table : diagram.tables) {
        names.push_back(table.name);
    }
    names = uniqueNames(std::move(names));
    for (std::size_t t = 0; t < diagram.tables.size(); ++t) {
        putTable(out, diagram.tables[t], names[t]);
    }
    for (std::size_t t = 0; t < diagram.tables.size(); ++t) {
        const Diagram::Table& table = diagram.tables[t];
        if (table.parent && table.parent->foreignKey) {
            const std::size_t above = table.parent->table;
            out += "Ref: " + name(names[t]) + "." + name(columnNames(table)[table.parent->column]) +
                   (table.parent->one ? " - " : " > ") + name(names[above]) + "." +
                   name(columnNames(diagram.tables[above])[table.parent->parentColumn]) + "\n";
        }
    }
    if (const std::string rest = leftOut(diagram); !rest.empty()) {
        out += "// " + rest + "\n";
    }
    return out;
}

}  // namespace qvej::cli
