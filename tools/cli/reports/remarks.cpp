// See remarks.h.
#include "tools/cli/reports/remarks.h"

#include "client/carried_columns.h"
#include "tools/cli/reports/tell.h"

#include <algorithm>
#include <unordered_map>

namespace qvej::cli {

namespace {

constexpr std::size_t kMostNames = 5;
constexpr std::size_t kLongestName = 64;  // characters of a column's name; a map may have any

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text;
}

// Of many the first few.
std::string firstOf(std::vector<std::string> words) {
    if (words.size() > kMostNames) {
        const std::size_t more = words.size() - kMostNames;
        words.resize(kMostNames);
        words.back() += " and " + std::to_string(more) + " more";
    }
    return joined(words);
}

// Does the table show values of its own, as ALLDATA and a table of ordinals alone do not?
bool hasOwnValues(const Table& table) {
    return !table.alldata &&
           std::any_of(table.columns.begin(), table.columns.end(),
                       [](const auto& column) { return column.type != ColumnType::ORDINAL; });
}

// Do rows show the column's numbers as doubles, and not by their own digits?
bool goesThroughDouble(const Column& column) {
    return !column.format.name.empty() || !column.informat.name.empty();
}

}  // namespace

std::string hiddenAlldata(const std::vector<const Table*>& tables, const std::string& alldataName) {
    for (const Table* table : tables) {
        if (equalIgnoringCase(table->name, alldataName)) {
            return "the table " + visible(table->name) +
                   " hides ALLDATA (--alldata-name gives that another name)";
        }
    }
    return {};
}

std::string sharedNames(const std::vector<const Table*>& tables, Naming naming,
                        const std::string& alldataName) {
    std::unordered_map<std::string, std::size_t> counts;
    std::vector<std::string> order;
    const bool anyCase = naming == Naming::MAP;
    for (const Table* table : tables) {
        std::size_t& count = counts[anyCase ? lowerCased(table->name) : table->name];
        if (++count == 2) {
            order.push_back(visible(table->name));
        }
    }
    std::string text;
    if (!order.empty()) {
        text = "more than one table is named " + firstOf(order) +
               ": read opens the first, and any by its path";
    }
    const std::string hidden = hiddenAlldata(tables, alldataName);
    return text + (text.empty() || hidden.empty() ? "" : "; ") + hidden;
}

std::string shortened(std::string_view text) {
    constexpr std::size_t kShownBytes = 40;
    const std::string_view start = withoutUnfinished(text.substr(0, kShownBytes));
    return "\"" + std::string(start) + (start.size() < text.size() ? "..." : "") + "\"";
}

void tellInexact(const std::string& file, const Document& document,
                 const std::vector<const Table*>& tables, Inexact which) {
    const bool all = which == Inexact::ALL;
    std::unordered_map<std::string, PathStatistics> inexact;
    for (PathStatistics& path : document.inexactPaths()) {
        inexact.emplace(path.path, path);
    }
    if (inexact.empty()) {
        return;
    }
    std::size_t told = 0;
    for (const Table* table : tables) {
        for (const Column& column : table->columns) {
            const auto found = inexact.find(column.path);
            if (column.type != ColumnType::NUMERIC || found == inexact.end() ||
                (which == Inexact::ROUNDED && !goesThroughDouble(column)) ||
                (++told > kMostNames && !all)) {
                continue;
            }
            const int64_t count = found->second.inexact;
            tell(spotText(file, found->second.firstInexact, document.texts()) + ": " +
                 visible(table->name) + "." + column.name + " has " + std::to_string(count) +
                 (count == 1 ? " number that a double does not keep, here"
                             : " numbers that a double does not keep, the first here"));
        }
    }
    if (told > kMostNames && !all) {
        const std::size_t more = told - kMostNames;
        tell(file + ": " + std::to_string(more) +
             (more == 1 ? " more column has" : " more columns have") +
             " such numbers (tables --columns names them all, map --exact makes them CHARACTER)");
    }
}

void tellSourceNames(const Document& document, const std::vector<const Table*>& tables,
                     const std::string& name) {
    std::vector<std::string> renamed;
    for (const Table* table : tables) {
        if (document.hasSourceColumn() && table->columns[0].name != name) {
            renamed.push_back(visible(table->name) + "." + table->columns[0].name);
        }
    }
    if (!renamed.empty()) {
        tell("the column of file names has another name where " + name +
             " is taken: " + firstOf(renamed));
    }
}

std::vector<Column> repeatedNames(const Table& table) {
    std::unordered_map<std::string, std::size_t> counts;
    std::vector<Column> repeated;
    for (const Column& column : table.columns) {
        if (++counts[column.name] == 2) {
            repeated.push_back(column);
        }
    }
    return repeated;
}

void tellSharedNames(const std::string& map, const std::vector<const Table*>& tables,
                     const Format& format) {
    if (format.sharedNames.empty()) {
        return;
    }
    std::vector<std::string> names;
    for (const Table* table : tables) {
        for (const Column& column : repeatedNames(*table)) {
            names.push_back(visible(table->name) + "." + column.name);
        }
    }
    if (!names.empty()) {
        tell(map + ": columns share a name, so " + std::string(format.sharedNames) + ": " +
             firstOf(names));
    }
}

void tellLosses(const std::string& file, const Document& document,
                const std::vector<WrittenTable>& written) {
    std::vector<const Table*> tables;
    std::vector<std::string> withoutRows;
    for (const WrittenTable& w : written) {
        tables.push_back(w.table);
        if (w.table->alldata && document.totals().labelsSlip != 0) {
            tell(file + ": in " + visible(w.table->name) +
                 " labels are cut at wrong places: the document has member names that are empty or "
                 "of 256 bytes and more");
        }
        if (w.rows == 0 && hasOwnValues(*w.table)) {
            withoutRows.push_back(visible(w.table->name));
        }
    }
    if (!withoutRows.empty()) {
        const bool one = withoutRows.size() == 1;
        const bool ownMap = &document.tables() != &document.automaticTables();
        tell(file + (one ? ": table " : ": tables ") + joined(withoutRows) +
             (one ? " has no rows" : " have no rows") +
             (ownMap ? std::string()
                     : (one ? "; its" : "; their") + std::string(" values are only in ") +
                           document.alldata().name));
    }
    tellInexact(file, document, tables, Inexact::ROUNDED);
}

MapOddities mapOddities(const std::vector<const Table*>& tables) {
    MapOddities odd;
    for (const Table* table : tables) {
        if (table->columns.empty()) {
            odd.empty.push_back(visible(table->name));
        }
        for (const Column& column : table->columns) {
            const std::string name = visible(table->name) + "." + column.name;
            if (column.type == ColumnType::ORDINAL && column.noretain) {
                odd.noretain.push_back(name);
            }
            if (column.type == ColumnType::ORDINAL && !column.informat.name.empty()) {
                odd.informat.push_back(name);
            }
            if (column.truncated) {
                odd.cut.push_back(name + " (" + std::to_string(column.length) + " of " +
                                  std::to_string(column.currentLength) + " bytes)");
            }
        }
    }
    return odd;
}

void tellMapOddities(const std::string& map, const std::vector<const Table*>& tables) {
    const MapOddities odd = mapOddities(tables);
    if (!odd.empty.empty()) {
        tell(map + ": tables without columns, whose rows are empty: " + joined(odd.empty));
    }
    if (!odd.noretain.empty()) {
        tell(map + ": NORETAIN does not change ordinal columns: " + joined(odd.noretain));
    }
    if (!odd.informat.empty()) {
        tell(map +
             ": ordinal columns count, INFORMAT does not change them: " + joined(odd.informat));
    }
}

void tellParents(const std::string& map, const std::vector<const Table*>& tables) {
    std::vector<std::string> names;
    for (const Table* table : tables) {
        for (const Column& column : table->columns) {
            if (!ancestorOf(*table, column).empty()) {
                const std::string_view start = firstCharacters(column.name, kLongestName);
                names.push_back(visible(table->name) + "." + std::string(start) +
                                (start.size() < column.name.size() ? "..." : ""));
            }
        }
    }
    if (!names.empty()) {
        tell(map + (names.size() == 1 ? ": a column" : ": columns") + " of a parent, where " +
             std::string(kWithoutCarry) +
             " (--carry takes the row's own parent): " + firstOf(names));
    }
}

void tellCuts(const std::string& map, const std::vector<const Table*>& tables) {
    const MapOddities odd = mapOddities(tables);
    if (!odd.cut.empty()) {
        tell(map + ": values are cut in: " + joined(odd.cut));
    }
}

}  // namespace qvej::cli
