// SVG with a layout of ours.  See writers.h.
#include "client/escape.h"
#include "client/text.h"
#include "tools/cli/embedded.h"
#include "tools/cli/pictures/layout.h"
#include "tools/cli/pictures/markup.h"
#include "tools/cli/pictures/writers.h"

#include <algorithm>
#include <cmath>

namespace qvej::cli {

namespace {

// In pixels.
constexpr double kCharacter = 7.23;  // of a fixed font of 12 pixels
constexpr double kLine = 19;
constexpr double kHead = 25;
constexpr double kPadding = 9;
constexpr double kBaseline = 5;  // below the middle of a line
constexpr double kGapX = 64;
constexpr double kGapY = 18;
constexpr double kMargin = 16;
constexpr double kCorner = 7;  // radius of an arrow's corners

constexpr std::size_t kLongestName = 36;  // characters

// Bars and crow's feet, as they stand at the end of an arrow.
constexpr std::string_view kMarkers =
    R"(<defs>
<marker id="one" viewBox="0 0 14 14" refX="0" refY="7" markerWidth="14" markerHeight="14" markerUnits="userSpaceOnUse"><path d="M5 2v10M9 2v10"/></marker>
<marker id="maybe-one" viewBox="0 0 18 14" refX="18" refY="7" markerWidth="18" markerHeight="14" markerUnits="userSpaceOnUse"><circle cx="5" cy="7" r="3.5"/><path d="M12 2v10"/></marker>
<marker id="many" viewBox="0 0 18 14" refX="18" refY="7" markerWidth="18" markerHeight="14" markerUnits="userSpaceOnUse"><circle cx="5" cy="7" r="3.5"/><path d="M18 2L9 7l9 5"/></marker>
</defs>
)";

std::string number(double value) {
    const auto tenths = static_cast<int64_t>(value * 10 + 0.5);
    std::string text = std::to_string(tenths / 10);
    return tenths % 10 == 0 ? text : text + "." + std::to_string(tenths % 10);
}

std::string text(double x, double y, const std::string& attributes, const std::string& content) {
    return "<text x=\"" + number(x) + "\" y=\"" + number(y + kBaseline) + "\"" + attributes + ">" +
           content + "</text>\n";
}

double widthOf(const std::string& name) {
    return kCharacter * static_cast<double>(displayWidth(shown(shortened(name, kLongestName))));
}

std::string rowsOf(const Diagram::Table& table) {
    return withCommas(table.rows) + (table.rows == 1 ? " row" : " rows");
}

std::string moreOf(const Diagram::Table& table) {
    return "and " + withCommas(table.moreColumns) + " more";
}

Box boxOf(const Diagram::Table& table, std::size_t at) {
    const double gap = 2 * kCharacter;
    double width = widthOf(table.name) + gap + widthOf(rowsOf(table));
    for (const Diagram::Column& column : table.columns) {
        width = std::max(width, widthOf(column.name) + gap + widthOf(column.type));
    }
    const std::size_t lines = table.columns.size() + (table.moreColumns == 0 ? 0 : 1);
    return {width + 2 * kPadding, kHead + kLine * static_cast<double>(lines) + 4,
            table.parent ? table.parent->table : at};
}

double middleOf(const Box& box, std::size_t column) {
    return box.y + kHead + 2 + kLine * (static_cast<double>(column) + 0.5);
}

void putTable(std::string& out, const Diagram::Table& table, const Box& box) {
    const std::string at = "x=\"" + number(box.x) + "\" y=\"" + number(box.y) + "\" width=\"" +
                           number(box.width) + "\" height=\"";
    const double left = box.x + kPadding;
    const double right = box.x + box.width - kPadding;
    const std::string atEnd = " class=\"soft\" text-anchor=\"end\"";
    out += "<title>" + markup(table.name + (table.path.empty() ? "" : ": " + table.path)) +
           "</title>\n<rect class=\"box\" " + at + number(box.height) +
           "\" rx=\"4\"/>\n<rect class=\"head\" " + at + number(kHead) + "\" rx=\"4\"/>\n";
    out += text(left, box.y + kHead / 2, " class=\"name\"", shortMarkup(table.name, kLongestName));
    out += text(right, box.y + kHead / 2, atEnd, rowsOf(table));
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        const Diagram::Column& column = table.columns[c];
        const std::string style = column.primary  ? " class=\"key\""
                                  : column.parent ? " class=\"up\""
                                                  : "";
        out += text(left, middleOf(box, c), style, shortMarkup(column.name, kLongestName));
        out += text(right, middleOf(box, c), atEnd, markup(column.type));
    }
    if (table.moreColumns != 0) {
        out += text(left, middleOf(box, table.columns.size()), " class=\"soft\"", moreOf(table));
    }
}

// From the parent's key to the right, down or up in the middle of the gap, and to the child's
// column.
std::string wayOf(double x1, double y1, double x2, double y2) {
    const std::string start = "M" + number(x1) + " " + number(y1);
    if (std::abs(y2 - y1) < 2 * kCorner) {
        return start + "H" + number(x2 - kGapX / 2 - kCorner) + "L" +
               number(x2 - kGapX / 2 + kCorner) + " " + number(y2) + "H" + number(x2);
    }
    const double turn = y2 > y1 ? kCorner : -kCorner;
    const std::string middle = number(x2 - kGapX / 2);
    return start + "H" + number(x2 - kGapX / 2 - kCorner) + "Q" + middle + " " + number(y1) + " " +
           middle + " " + number(y1 + turn) + "V" + number(y2 - turn) + "Q" + middle + " " +
           number(y2) + " " + number(x2 - kGapX / 2 + kCorner) + " " + number(y2) + "H" +
           number(x2);
}

void putEdge(std::string& out, const Diagram& diagram, const std::vector<Box>& boxes,
             std::size_t child) {
    const Diagram::Edge& edge = *diagram.tables[child].parent;
    const Box& from = boxes[edge.table];
    out += "<path class=\"arrow" + std::string(edge.foreignKey ? "" : " loose") +
           "\" data-from=\"" + std::to_string(diagram.tables[edge.table].schemaTable) +
           "\" data-to=\"" + std::to_string(diagram.tables[child].schemaTable) + "\" d=\"" +
           wayOf(from.x + from.width, middleOf(from, edge.parentColumn), boxes[child].x,
                 middleOf(boxes[child], edge.column)) +
           "\" marker-start=\"url(#one)\" marker-end=\"url(#" + (edge.one ? "maybe-one" : "many") +
           ")\"/>\n";
}

}  // namespace

std::string svgOf(const Diagram& diagram, bool links) {
    std::vector<Box> boxes;
    for (std::size_t t = 0; t < diagram.tables.size(); ++t) {
        boxes.push_back(boxOf(diagram.tables[t], t));
    }
    // A page that the links are for has all columns.
    const std::string rest = links && diagram.moreTables == 0 ? "" : leftOut(diagram);
    Extent size = place(boxes, kGapX, kGapY);
    size.width = std::max(size.width, kCharacter * static_cast<double>(rest.size()));
    size.height += rest.empty() ? 0 : 2 * kLine;
    const std::string width = number(size.width + 2 * kMargin);
    const std::string height = number(size.height + 2 * kMargin);
    std::string out = std::string("<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"tables\"") +
                      (links ? "" : " role=\"img\"") + " width=\"" + width + "\" height=\"" +
                      height + "\" viewBox=\"" + "-" + number(kMargin) + " " + "-" +
                      number(kMargin) + " " + width + " " + height + "\">\n" +
                      (links ? "" : "<title>Tables and their keys</title>\n") + "<style>\n" +
                      std::string(kPictureCss) + "</style>\n" + std::string(kMarkers) + "<g>\n";
    for (std::size_t t = 0; t < boxes.size(); ++t) {
        if (diagram.tables[t].parent) {
            putEdge(out, diagram, boxes, t);
        }
    }
    for (std::size_t t = 0; t < boxes.size(); ++t) {
        const std::string id = std::to_string(diagram.tables[t].schemaTable);
        out += links ? "<a href=\"#t" + id + "\" data-table=\"" + id + "\">\n" : "<g>\n";
        putTable(out, diagram.tables[t], boxes[t]);
        out += links ? "</a>\n" : "</g>\n";
    }
    if (!rest.empty()) {
        out += text(0, size.height - kLine / 2, " class=\"soft\"", rest);
    }
    return out + "</g>\n</svg>\n";
}

}  // namespace qvej::cli
