// See page.h.
#include "tools/cli/report/page.h"

#include "client/path_names.h"
#include "client/text.h"
#include "tools/cli/embedded.h"
#include "tools/cli/pictures/diagram.h"
#include "tools/cli/pictures/markup.h"
#include "tools/cli/pictures/writers.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/table_marks.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace qvej::cli {

namespace {

constexpr std::size_t kMostPictureTables = 200;
constexpr std::size_t kMostPictureColumns = 12;
constexpr std::size_t kMostContents = 5000;     // tables that are listed
constexpr std::size_t kMostBytes = 24'000'000;  // after which tables are only listed
constexpr std::size_t kMostAccountRows = 1000;
constexpr std::size_t kDeepestIndent = 12;

// It may not even load anything: the browser refuses whatever the policy does not allow.
constexpr std::string_view kPolicy =
    "default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'";

std::string counted(uint64_t count, const std::string& noun) {
    return withCommas(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string tag(const std::string& name, const std::string& content,
                const std::string& attributes = {}) {
    return "<" + name + attributes + ">" + content + "</" + name + ">";
}

std::string ofClass(const std::string& name) {
    return " class=\"" + name + "\"";
}

std::string number(uint64_t value) {
    return tag("td", withCommas(value), ofClass("number"));
}

std::string linkTo(std::size_t table, const std::string& content) {
    return tag("a", content, " href=\"#t" + std::to_string(table) + "\"");
}

std::string shortName(const std::string& name) {
    return shortMarkup(visible(name), kLongestShown);
}

std::string path(const std::string& path) {
    return tag("code", shortMarkup(withSlashes(path), 2 * kLongestShown));
}

// A head of a table with these columns; a leading "#" is one of numbers.
std::string headsOf(std::initializer_list<std::string> names) {
    std::string cells;
    for (const std::string& name : names) {
        const bool isNumber = name[0] == '#';
        cells += tag("th", name.substr(isNumber ? 1 : 0),
                     " scope=\"col\"" + (isNumber ? ofClass("number") : ""));
    }
    return tag("thead", tag("tr", cells)) + "\n";
}

std::string beginTable(const std::string& caption, const std::string& heads) {
    return "<div class=\"wide\" tabindex=\"0\" role=\"region\" aria-label=\"" + caption +
           "\"><table>\n" + tag("caption", caption) + "\n" + heads + "<tbody>\n";
}

constexpr std::string_view kEndTable = "</tbody></table></div>\n";

// The share of rows with a value, never 100 % or 0 % when it is not.
std::string percent(uint64_t part, uint64_t all) {
    if (part == 0 || part == all) {
        return part == 0 ? "0" : "100";
    }
    const double share = 100.0 * static_cast<double>(part) / static_cast<double>(all);
    char text[16];
    (void)std::snprintf(text, sizeof text, "%.0f", std::clamp(share, 1.0, 99.0));
    return text;
}

std::string filledCell(uint64_t filled, uint64_t rows) {
    const std::string share = percent(filled, rows);
    return tag("td", share + " %",
               " class=\"number filled\" style=\"--share:" + share + "%\" title=\"" +
                   withCommas(filled) + " of " + counted(rows, "row") + "\"");
}

std::string distinctOf(const ColumnDetails& details) {
    if (!details.counted) {
        return "not counted";
    }
    return details.distinct ? withCommas(*details.distinct) : "&gt; " + withCommas(kMostDistinct);
}

std::string valueText(const std::string& text) {
    return text.empty() ? tag("span", "empty", ofClass("soft")) : tag("bdi", markup(text));
}

// "a.json:"; whoever gets the page has no use for the folder.
std::string withoutFolder(const std::string& file) {
    return file.empty() ? "" : file.substr(file.rfind('/') + 1) + ":";
}

std::string examplesOf(const ColumnDetails& details) {
    std::string items;
    for (const Example& example : details.examples) {
        const std::string at =
            example.place.line == 0
                ? ""
                : tag("span",
                      markup(withoutFolder(example.file)) + std::to_string(example.place.line) +
                          ":" + std::to_string(example.place.column),
                      " class=\"place\" title=\"line and column\"");
        items += tag("li", valueText(example.text) + " " + at);
    }
    return items.empty() ? "" : tag("ul", items, ofClass("examples"));
}

// A text that is not divided between lines.
std::string whole(const std::string& text) {
    return tag("span", markup(text), ofClass("whole"));
}

bool isNumeric(const DataType& type) {
    return type.kind == DataType::BIGINT || type.kind == DataType::DOUBLE ||
           type.kind == DataType::DECIMAL;
}

bool isTime(const DataType& type) {
    return type.kind == DataType::DATE || type.kind == DataType::TIMESTAMP;
}

std::string cellOf(const DetailCell& cell, const DataType& type) {
    switch (cell.kind) {
        case DetailCell::MISSING:
            return "<td></td>";
        case DetailCell::NUL:
            return tag("td", "null", ofClass("soft"));
        case DetailCell::NUMBER:
            return tag("td", markup(cell.text), ofClass("number"));
        default:
            return tag("td", valueText(cell.text), isTime(type) ? ofClass("whole") : "");
    }
}

}  // namespace

ReportPage::ReportPage(const ReportFacts& facts, const Survey& survey) : survey_(survey) {
    putHead(facts);
    putPicture();
}

void ReportPage::putHead(const ReportFacts& facts) {
    uint64_t rows = 0;
    uint64_t columns = 0;
    for (const TableSchema& table : survey_.schema.tables) {
        rows += table.rows;
        columns += table.fields.size();
    }
    out_ =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
        std::string(kPolicy) +
        "\">\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta name=\"color-scheme\" content=\"light dark\">\n" +
        tag("title", markup(facts.name)) + "\n" + tag("style", "\n" + std::string(kReportCss)) +
        "\n</head>\n<body>\n<header>\n" + tag("h1", tag("bdi", markup(facts.name))) +
        "\n<dl class=\"facts\">\n";
    const auto fact = [&](const std::string& name, const std::string& value) {
        out_ += tag("div", tag("dt", name) + tag("dd", value)) + "\n";
    };
    fact("Tables", withCommas(survey_.schema.tables.size()));
    fact("Columns", withCommas(columns));
    fact("Rows", withCommas(rows));
    fact("Values", withCommas(facts.values));
    if (facts.bytes) {
        fact("Size", counted(*facts.bytes, "byte"));
    }
    fact("Made", facts.made);
    out_ += "</dl>\n";
    if (!facts.shape.empty()) {
        std::string rules;
        for (const std::string& rule : facts.shape) {
            rules += tag("li", tag("code", markup(rule)));
        }
        out_ += tag("details", tag("summary", "Read with " + counted(facts.shape.size(), "rule") +
                                                  " of a shape") +
                                   tag("ul", rules)) +
                "\n";
    }
    out_ += "</header>\n<main>\n";
}

void ReportPage::putPicture() {
    const Diagram diagram = diagramOf(survey_.schema, kMostPictureTables, kMostPictureColumns);
    out_ +=
        "<section>\n<h2>Picture</h2>\n"
        "<p class=\"soft\">An arrow leads from a table to those whose rows belong to its rows: "
        "a crow's foot to any number of them, a bar to at most one. A dashed arrow is no "
        "foreign key. The primary key is bold.</p>\n"
        "<div class=\"picture\" tabindex=\"0\" role=\"region\" aria-label=\"Picture of the "
        "tables\">\n" +
        svgOf(diagram, true) + "</div>\n</section>\n";
}

void ReportPage::putTables(const std::vector<std::size_t>& tables,
                           const std::vector<TableDetails>& details) {
    const std::string before = std::exchange(out_, {});
    std::vector<bool> detailed(survey_.schema.tables.size());
    for (std::size_t t = 0; t < tables.size() && out_.size() < kMostBytes; ++t) {
        putTable(tables[t], details[t]);
        detailed[tables[t]] = true;
    }
    const std::string sections = std::exchange(out_, before);
    putContents(detailed);
    out_ += sections;
}

void ReportPage::putContents(const std::vector<bool>& detailed) {
    out_ += "<section>\n<h2>Tables</h2>\n" +
            beginTable("All tables, each below the one that its rows belong to",
                       headsOf({"Table", "#Rows", "#Columns", "Path"}));
    const std::vector<TreeNode> tree = treeOf(survey_.schema);
    for (std::size_t n = 0; n < std::min(tree.size(), kMostContents); ++n) {
        const TreeNode& node = tree[n];
        const TableSchema& table = survey_.schema.tables[node.table];
        const std::string name = shortName(table.table->name);
        const std::string indent =
            " style=\"--depth:" + std::to_string(std::min(node.depth, kDeepestIndent)) + "\"";
        out_ += tag("tr",
                    tag("th", detailed[node.table] ? linkTo(node.table, name) : name,
                        " scope=\"row\" class=\"indented\"" + indent) +
                        number(table.rows) + number(table.fields.size()) +
                        tag("td", path(table.table->path())),
                    detailed[node.table] ? "" : " id=\"t" + std::to_string(node.table) + "\"") +
                "\n";
    }
    out_ += kEndTable;
    if (tree.size() > kMostContents) {
        out_ += tag("p", "And " + withCommas(tree.size() - kMostContents) +
                             " more tables, which qvejmap tables lists.") +
                "\n";
    }
    const auto shown = static_cast<std::size_t>(std::count(detailed.begin(), detailed.end(), true));
    if (shown < tree.size()) {
        out_ += tag("p", "Shown in detail are the " + withCommas(shown) +
                             " tables with most rows; --table and --path choose others.") +
                "\n";
    }
    out_ += "</section>\n";
}

void ReportPage::putTable(std::size_t index, const TableDetails& details) {
    const TableSchema& table = survey_.schema.tables[index];
    out_ += "<section id=\"t" + std::to_string(index) + "\">\n" +
            tag("h2", tag("bdi", shortName(table.table->name))) + "\n";
    putKeys(table);
    const std::vector<std::string> marks = marksOf(survey_, index);
    if (!marks.empty()) {
        std::string items;
        for (const std::string& mark : marks) {
            items += tag("li", markup(mark));
        }
        out_ += tag("ul", items, ofClass("marks")) + "\n";
    }
    putColumns(index, details);
    putRows(table, details);
    out_ += "</section>\n";
}

void ReportPage::putKeys(const TableSchema& table) {
    std::string sentence = counted(table.rows, "row");
    if (!table.table->path().empty()) {
        sentence += ", path " + path(table.table->path());
    }
    if (table.key) {
        sentence += ", primary key " + tag("b", shortName(table.table->columns[*table.own].name));
    }
    if (table.parent) {
        const ParentKey& parent = *table.parent;
        const Table& above = *survey_.schema.tables[parent.table].table;
        sentence += std::string(", ") + (parent.foreignKey ? "foreign key " : "belongs by ") +
                    tag("i", shortName(table.table->columns[parent.column].name)) + " to " +
                    linkTo(parent.table, shortName(above.name)) +
                    (isOneToOne(table) ? " (one to one)" : "");
    }
    out_ += tag("p", sentence + ".") + "\n";
}

void ReportPage::putColumns(std::size_t index, const TableDetails& details) {
    const TableSchema& table = survey_.schema.tables[index];
    out_ += beginTable("Columns of " + shortName(table.table->name),
                       headsOf({"Column", "Type", "#Filled", "#Distinct", "#Longest", "Range",
                                "Examples, with line:column"}));
    for (std::size_t c = 0; c < details.columns.size(); ++c) {
        putColumn(table, c, details.columns[c]);
    }
    out_ += kEndTable;
    putMoreColumns(table, details);
}

void ReportPage::putColumn(const TableSchema& table, std::size_t c, const ColumnDetails& details) {
    const Column column = table.table->columns[c];
    const Field& field = table.fields[c];
    const bool ordinal = column.type == ColumnType::ORDINAL;
    std::string name = shortName(column.name);
    name = table.key && c == table.own                 ? tag("b", name)
           : table.parent && c == table.parent->column ? tag("i", name)
                                                       : name;
    const std::string note = !column.label.empty() ? column.label
                             : !ordinal && lastPiece(column.path) != column.name
                                 ? std::string(lastPiece(column.path))
                                 : std::string();
    if (!note.empty()) {
        name += "<br>" + tag("small", shortMarkup(note, kLongestShown), ofClass("soft"));
    }
    const std::string mixed =
        isMixed(column, field) ? "<br>" + tag("small", "several kinds", ofClass("soft")) : "";
    const std::string range =
        details.least.empty()
            ? ""
            : whole(details.least) +
                  (details.least == details.greatest ? "" : " to " + whole(details.greatest));
    out_ += tag("tr", tag("th", name,
                          " scope=\"row\" title=\"" +
                              shortMarkup(withSlashes(column.path), 4 * kLongestShown) + "\"") +
                          tag("td", markup(nameOf(field.type)) + mixed, ofClass("type")) +
                          filledCell(field.filled, table.rows) +
                          tag("td", ordinal ? "" : distinctOf(details), ofClass("number")) +
                          tag("td", field.longest == 0 ? "" : withCommas(field.longest),
                              ofClass("number")) +
                          tag("td", range, ofClass("range")) + tag("td", examplesOf(details))) +
            "\n";
}

void ReportPage::putRows(const TableSchema& table, const TableDetails& details) {
    if (details.rows.empty()) {
        return;
    }
    std::string heads;
    for (std::size_t c = 0; c < details.columns.size(); ++c) {
        heads += tag("th", shortName(table.table->columns[c].name),
                     " scope=\"col\"" + (isNumeric(table.fields[c].type) ? ofClass("number") : ""));
    }
    const std::string caption =
        details.rows.size() < table.rows
            ? "First " + std::to_string(details.rows.size()) + " of " + counted(table.rows, "row")
            : "All rows";
    out_ += beginTable(caption + " of " + shortName(table.table->name),
                       tag("thead", tag("tr", heads)) + "\n");
    for (const std::vector<DetailCell>& row : details.rows) {
        std::string cells;
        for (std::size_t c = 0; c < row.size(); ++c) {
            cells += cellOf(row[c], table.fields[c].type);
        }
        out_ += tag("tr", cells) + "\n";
    }
    out_ += kEndTable;
}

void ReportPage::putMoreColumns(const TableSchema& table, const TableDetails& details) {
    if (details.columns.size() < table.fields.size()) {
        out_ +=
            tag("p", "And " + counted(table.fields.size() - details.columns.size(), "more column") +
                         ", which qvejmap tables --columns lists.") +
            "\n";
    }
}

void ReportPage::putAccount(const AccountText& account) {
    out_ += "<section>\n<h2>Account of all values</h2>\n";
    for (const std::string& sum : account.sums) {
        out_ += tag("p", markup(sum)) + "\n";
    }
    if (!account.rows.empty()) {
        out_ += beginTable("Values that no cell has, or another row",
                           headsOf({"Path", "#Values", "How", "First"}));
        const std::size_t count = std::min(account.rows.size(), kMostAccountRows + 1);
        for (std::size_t r = 1; r < count; ++r) {
            const Row& row = account.rows[r];
            out_ += tag("tr", tag("th", tag("code", markup(row[0])), " scope=\"row\"") +
                                  tag("td", markup(row[1]), ofClass("number")) +
                                  tag("td", markup(row[2])) + tag("td", markup(row[3]))) +
                    "\n";
        }
        out_ += kEndTable;
        if (count < account.rows.size()) {
            out_ += tag("p", "And " + withCommas(account.rows.size() - count) +
                                 " more lines of qvejmap check --account.") +
                    "\n";
        }
    }
    out_ += "</section>\n";
}

std::string ReportPage::text() {
    out_ += "</main>\n" + tag("footer", "Made by qvejmap " QVEJMAP_VERSION) + "\n" +
            tag("script", "\n" + std::string(kReportJs)) + "\n</body>\n</html>\n";
    return std::move(out_);
}

}  // namespace qvej::cli
