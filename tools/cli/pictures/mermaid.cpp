// erDiagram of Mermaid.  See writers.h.
//
// Names of entities stand in quotes, with entity codes (#quot;) for what may not stand there. Names
// of attributes and types have no quotes: what is no letter or digit becomes "_", and the name
// itself is the comment.
#include "client/escape.h"
#include "client/text.h"
#include "tools/cli/pictures/unique_names.h"
#include "tools/cli/pictures/writers.h"

#include <algorithm>

namespace qvej::cli {

namespace {

// In quotes.
std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : shown(text)) {
        constexpr std::string_view kCoded = "\"#%\\;<>&{}`";
        result += kCoded.find(c) != kCoded.npos
                      ? "#" + std::to_string(static_cast<unsigned char>(c)) + ";"
                      : std::string(1, c);
    }
    return result + "\"";
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// A word of the grammar; one of a type may hold brackets.
std::string word(std::string_view text, std::string_view further = {}) {
    std::string result;
    for (const char c : text) {
        result += isLetter(c) || isDigit(c) || further.find(c) != further.npos ? c : '_';
    }
    return result.empty() || !isLetter(result[0]) ? "_" + result : result;
}

void putTable(std::string& out, const Diagram::Table& table, const std::string& name) {
    out += "    " + name + " {\n";
    for (const Diagram::Column& column : table.columns) {
        const std::string attribute = word(column.name);
        const std::string& note =
            column.note.empty() && attribute != column.name ? column.name : column.note;
        out += "        " + word(column.type, "()") + " " + attribute +
               (column.primary && column.parent ? " PK, FK"
                : column.primary                ? " PK"
                : column.parent                 ? " FK"
                                                : "") +
               (note.empty() ? "" : " " + quoted(note)) + "\n";
    }
    out += "    }\n";
    if (table.moreColumns != 0) {
        out += "    %% and " + withCommas(table.moreColumns) + " more columns\n";
    }
}

void putEdge(std::string& out, const Diagram::Edge& edge, const std::string& parent,
             const std::string& child, const std::string& column) {
    out += "    " + parent + (edge.foreignKey ? " ||--" : " |o..") + (edge.one ? "o| " : "o{ ") +
           child + " : " + quoted(column) + "\n";
}

}  // namespace

std::string mermaidOf(const Diagram& diagram) {
    std::string out = "erDiagram\n";
    std::vector<std::string> names;
    for (const Diagram::Table& table : diagram.tables) {
        names.push_back(table.name);
    }
    names = uniqueNames(std::move(names));
    std::transform(names.begin(), names.end(), names.begin(), quoted);
    for (std::size_t t = 0; t < diagram.tables.size(); ++t) {
        putTable(out, diagram.tables[t], names[t]);
    }
    for (std::size_t t = 0; t < diagram.tables.size(); ++t) {
        const Diagram::Table& table = diagram.tables[t];
        if (table.parent) {
            putEdge(out, *table.parent, names[table.parent->table], names[t],
                    table.columns[table.parent->column].name);
        }
    }
    if (const std::string rest = leftOut(diagram); !rest.empty()) {
        out += "    %% " + rest + "\n";
    }
    return out;
}

}  // namespace qvej::cli
