// See table_marks.h.
#include "tools/cli/reports/table_marks.h"

#include "client/text.h"
#include "tools/cli/reports/remarks.h"

namespace qvej::cli {

namespace {

std::string counted(uint64_t count, const std::string& noun) {
    return withCommas(count) + " " + noun + (count == 1 ? "" : "s");
}

// The names of columns with values of several kinds, of many the first.
std::string mixedColumns(const TableSchema& table) {
    constexpr std::size_t kMost = 5;
    std::string names;
    std::size_t count = 0;
    for (std::size_t c = 0; c < table.fields.size(); ++c) {
        const Column column = table.table->columns[c];
        if (isMixed(column, table.fields[c]) && count++ < kMost) {
            names += (count == 1 ? "" : ", ") + column.name;
        }
    }
    return count <= kMost ? names : names + " and " + withCommas(count - kMost) + " more";
}

}  // namespace

std::vector<std::string> marksOf(const Survey& survey, std::size_t index) {
    const TableSchema& table = survey.schema.tables[index];
    std::vector<std::string> marks;
    if (table.own && !table.key) {
        marks.push_back("no primary key: " + table.table->columns[*table.own].name +
                        (table.missing != 0 ? " is missing in " + counted(table.missing, "row")
                                            : " repeats in " + counted(table.repeated, "row")));
    }
    if (table.parent && table.parent->orphans != 0) {
        marks.push_back(counted(table.parent->orphans, "row") +
                        (table.parent->orphans == 1 ? " has" : " have") + " no row in " +
                        visible(survey.schema.tables[table.parent->table].table->name));
    }
    if (const std::string names = mixedColumns(table); !names.empty()) {
        marks.push_back("values of several kinds: " + names);
    }
    const RowLosses& losses = survey.losses[index];
    if (losses.overwritten != 0) {
        marks.push_back(counted(losses.overwritten, "value") + " overwritten by a later one");
    }
    if (losses.strayed != 0) {
        marks.push_back(counted(losses.strayed, "value") +
                        (losses.strayed == 1 ? " strayed into a row" : " strayed into rows") +
                        " that may be another parent's");
    }
    return marks;
}

}  // namespace qvej::cli
