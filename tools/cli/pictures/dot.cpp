// The language of Graphviz.  See writers.h.
#include "client/text.h"
#include "tools/cli/pictures/markup.h"
#include "tools/cli/pictures/writers.h"

namespace qvej::cli {

namespace {

constexpr std::size_t kLongestName = 60;  // characters

constexpr std::string_view kHead =
    R"(digraph tables {
  graph [rankdir=LR, nodesep=0.25, ranksep=0.9, bgcolor=white, fontname="Helvetica,Arial,sans-serif"];
  node [shape=plain, fontname="Helvetica,Arial,sans-serif", fontsize=11];
  edge [dir=both, color="#5a6472"];
)";

std::string cell(const std::string& attributes, const std::string& content) {
    return "<TD ALIGN=\"LEFT\"" + attributes + ">" + content + "</TD>";
}

std::string nameCell(const Diagram::Column& column, std::size_t at) {
    const std::string name = shortMarkup(column.name, kLongestName);
    return cell(" PORT=\"c" + std::to_string(at) + "\"", column.primary  ? "<B>" + name + "</B>"
                                                         : column.parent ? "<I>" + name + "</I>"
                                                                         : name);
}

void putTable(std::string& out, const Diagram::Table& table, std::size_t at) {
    out += "  t" + std::to_string(at) +
           " [label=<<TABLE BORDER=\"0\" CELLBORDER=\"1\" CELLSPACING=\"0\" CELLPADDING=\"4\" "
           "COLOR=\"#5a6472\">\n"
           "    <TR><TD COLSPAN=\"2\" ALIGN=\"LEFT\" BGCOLOR=\"#dbe7f5\"><B>" +
           shortMarkup(table.name, kLongestName) + "</B>  " + withCommas(table.rows) +
           (table.rows == 1 ? " row" : " rows") + "</TD></TR>\n";
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        out += "    <TR>" + nameCell(table.columns[c], c) +
               cell(" PORT=\"t" + std::to_string(c) + "\"", markup(table.columns[c].type)) +
               "</TR>\n";
    }
    if (table.moreColumns != 0) {
        out += "    <TR><TD COLSPAN=\"2\" ALIGN=\"LEFT\">and " + withCommas(table.moreColumns) +
               " more</TD></TR>\n";
    }
    out += "  </TABLE>>];\n";
}

void putEdge(std::string& out, const Diagram::Edge& edge, std::size_t at) {
    out += "  t" + std::to_string(edge.table) + ":t" + std::to_string(edge.parentColumn) +
           ":e -> t" + std::to_string(at) + ":c" + std::to_string(edge.column) +
           ":w [arrowtail=" + (edge.foreignKey ? "teetee" : "teeodot") +
           ", arrowhead=" + (edge.one ? "teeodot" : "crowodot") +
           (edge.foreignKey ? "" : ", style=dashed") + "];\n";
}

}  // namespace

std::string dotOf(const Diagram& diagram) {
    std::string out(kHead);
    for (std::size_t t = 0; t < diagram.tables.size(); ++t) {
        putTable(out, diagram.tables[t], t);
    }
    for (std::size_t t = 0; t < diagram.tables.size(); ++t) {
        if (diagram.tables[t].parent) {
            putEdge(out, *diagram.tables[t].parent, t);
        }
    }
    if (const std::string rest = leftOut(diagram); !rest.empty()) {
        out += "  label=\"" + rest + "\";\n";
    }
    return out + "}\n";
}

}  // namespace qvej::cli
