// See tables_tree.h.
#include "tools/cli/reports/tables_tree.h"

#include "client/escape.h"
#include "client/text.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/table_marks.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace qvej::cli {

namespace {

constexpr std::size_t kMostLines = 200;

// A table's line: the name with the branches before it, then fields of numbers and words.
struct Line {
    std::string name;
    std::array<std::string, 2> counts;  // rows and columns
    std::string key;
    std::string below;  // what a further line on the table begins with
    std::vector<std::string> marks;
};

std::string counted(uint64_t count, const std::string& noun) {
    return withCommas(count) + " " + noun + (count == 1 ? " " : "s");
}

Line lineOf(const Survey& survey, const TreeNode& node, const std::string& trunk,
            bool hasChildren) {
    const TableSchema& table = survey.schema.tables[node.table];
    Line line;
    const std::string branch = node.depth == 0 ? "" : node.last ? "└─ " : "├─ ";
    const std::string on = node.depth == 0 ? "" : node.last ? "   " : "│  ";
    line.name = trunk + branch + escaped(visible(table.table->name));
    line.below = trunk + on + (hasChildren ? "│  " : "   ");
    line.counts = {counted(table.rows, "row"), counted(table.table->columns.size(), "column")};
    if (table.key) {
        line.key = "key " + escaped(table.table->columns[*table.own].name);
    }
    if (isOneToOne(table)) {
        line.key += line.key.empty() ? "1:1" : "  1:1";
    }
    line.marks = marksOf(survey, node.table);
    return line;
}

// The first lines of the tree; of the last table maybe more.
std::vector<Line> linesOf(const Survey& survey, const std::vector<TreeNode>& tree) {
    std::vector<Line> lines;
    std::vector<std::string> trunks = {""};  // what stands before the branches, by depth
    std::size_t count = 0;
    for (std::size_t n = 0; n < tree.size() && count < kMostLines; ++n) {
        const TreeNode& node = tree[n];
        trunks.resize(node.depth + 1);
        const std::string on = node.depth == 0 ? "" : node.last ? "   " : "│  ";
        const bool hasChildren = n + 1 < tree.size() && tree[n + 1].depth > node.depth;
        lines.push_back(lineOf(survey, node, trunks[node.depth], hasChildren));
        trunks.push_back(trunks[node.depth] + on);
        count += 1 + lines.back().marks.size();
    }
    return lines;
}

std::string blanks(std::size_t width, std::size_t wanted) {
    return std::string(wanted - std::min(width, wanted), ' ');
}

// Without blanks at the end.
void putLine(Writer& out, std::string line) {
    line.resize(line.find_last_not_of(' ') + 1);
    out.append(line + "\n");
}

}  // namespace

void printTree(Writer& out, const Survey& survey) {
    const std::vector<TreeNode> tree = treeOf(survey.schema);
    const std::vector<Line> lines = linesOf(survey, tree);
    std::size_t nameWidth = 0;
    std::array<std::size_t, 2> countWidths = {};
    for (const Line& line : lines) {
        nameWidth = std::max(nameWidth, displayWidth(line.name));
        for (std::size_t i = 0; i < countWidths.size(); ++i) {
            countWidths[i] = std::max(countWidths[i], line.counts[i].size());
        }
    }
    for (const Line& line : lines) {
        std::string text = line.name + blanks(displayWidth(line.name), nameWidth);
        for (std::size_t i = 0; i < countWidths.size(); ++i) {
            text += "  " + blanks(line.counts[i].size(), countWidths[i]) + line.counts[i];
        }
        putLine(out, text + "  " + line.key);
        for (const std::string& mark : line.marks) {
            putLine(out, line.below + escaped(mark));
        }
    }
    if (lines.size() < tree.size()) {
        out.append("... and " + withCommas(tree.size() - lines.size()) +
                   " more tables: all are in a pipe (qvejmap tables FILE | less) and in --format "
                   "json\n");
    }
}

}  // namespace qvej::cli
