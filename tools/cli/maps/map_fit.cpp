// See map_fit.h.
#include "tools/cli/maps/map_fit.h"

#include "client/carried_columns.h"
#include "tools/cli/reports/remarks.h"

#include <algorithm>
#include <set>
#include <unordered_set>

namespace qvej::cli {

namespace {

constexpr char kSeparator = '\x02';
constexpr std::size_t kLongestName = 32;  // bytes of a table name that a map keeps
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

std::string columnName(const Table& table, const Column& column) {
    return visible(table.name) + "." + column.name;
}

std::string inBrackets(const std::string& path) {
    return " (" + withSlashes(path) + ")";
}

// Paths of values, and paths of what encloses them.
struct KnownPaths {
    std::unordered_set<std::string> values;
    std::unordered_set<std::string> containers;
};

KnownPaths knownPaths(const Document& document) {
    KnownPaths known;
    for (const PathStatistics& statistics : document.pathStatistics()) {
        const std::string& path = statistics.path;
        (statistics.type <= JMAP_CHARACTER ? known.values : known.containers).insert(path);
        for (std::size_t end = path.rfind(kSeparator); end != std::string::npos && end != 0;
             end = path.rfind(kSeparator, end - 1)) {
            if (!known.containers.insert(path.substr(0, end)).second) {
                break;  // and so are all above it
            }
        }
    }
    return known;
}

bool isUtf8(std::string_view text) {
    return withoutUnfinished(text).size() == text.size();
}

}  // namespace

Findings neverOccurring(const Document& document) {
    const KnownPaths known = knownPaths(document);
    Findings findings;
    for (const Table& table : document.tables()) {
        if (!known.containers.contains(table.path())) {
            findings.push_back("table " + visible(table.name) + inBrackets(table.path()));
        }
        for (const Column& column : table.columns) {
            const bool ordinal = column.type == ColumnType::ORDINAL;
            if (!(ordinal ? known.containers : known.values).contains(column.path)) {
                findings.push_back(columnName(table, column) + inBrackets(column.path));
            }
        }
    }
    return findings;
}

LeftOut leftOut(const Document& document) {
    std::unordered_set<std::string> taken;
    for (const Table& table : document.tables()) {
        for (const Column& column : table.columns) {
            if (column.type != ColumnType::ORDINAL) {
                taken.insert(column.path);
            }
        }
    }
    LeftOut left;
    for (const Table& table : document.automaticTables()) {
        const std::size_t before = left.columns.size();
        for (const Column& column : table.columns) {
            if (column.type == ColumnType::ORDINAL) {
                continue;
            }
            ++left.of;
            if (!taken.contains(column.path)) {
                left.columns.push_back(columnName(table, column) + inBrackets(column.path));
            }
        }
        left.tables += left.columns.size() == before ? 0 : 1;
    }
    return left;
}

Findings columnsOfParents(const std::vector<Table>& tables) {
    Findings findings;
    for (const Table& table : tables) {
        for (const Column& column : table.columns) {
            const std::string parent = ancestorOf(table, column);
            if (!parent.empty()) {
                findings.push_back(columnName(table, column) + " is of " + withSlashes(parent) +
                                   ": " + std::string(kWithoutCarry) + ", unless --carry");
            }
        }
    }
    return findings;
}

Findings doubtfulNames(const std::vector<Table>& tables, const std::vector<TableText>& texts) {
    Findings findings;
    std::set<std::string> names;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const Table& table = tables[i];
        const std::string& name = texts.empty() ? table.name : texts[i].name;
        if (name.empty()) {
            findings.push_back("empty name: the table at" + inBrackets(table.path()));
        }
        if (name.size() > kLongestName) {
            findings.push_back("long name: table " + table.name + " was cut to " +
                               std::to_string(kLongestName) + " bytes");
        }
        if (!names.insert(lowerCased(table.name)).second) {
            findings.push_back("shared name: table " + visible(table.name) +
                               ": read opens the first of that name");
        }
        for (const Column& column : repeatedNames(table)) {
            findings.push_back("shared name: " + columnName(table, column) +
                               inBrackets(column.path) +
                               ": an earlier column has it, NDJSON objects have both members");
        }
        for (const Column& column : table.columns) {
            if (column.name.empty()) {
                findings.push_back("no name: a column of table " + visible(table.name) +
                                   inBrackets(column.path));
            }
            if (column.name.find(kReplacement) != std::string::npos || !isUtf8(column.name)) {
                findings.push_back("broken name: " + columnName(table, column) +
                                   " holds bytes that are no UTF-8, or U+FFFD in their place");
            }
        }
    }
    return findings;
}

Findings namesWithSlash(const Document& document, const PathFilter& wanted) {
    Findings findings;
    for (const PathStatistics& statistics : document.pathStatistics()) {
        if (statistics.path.find('/') != std::string::npos &&
            (!wanted || wanted(statistics.path))) {
            findings.push_back(withSlashes(statistics.path) + ", a name holds \"/\"");
        }
    }
    return findings;
}

Findings namesWithSeparator(const Document& document, const PathFilter& wanted) {
    Findings findings;
    for (const PathStatistics& statistics : document.pathStatistics()) {
        const std::string& path = statistics.path;
        if (std::count(path.begin(), path.end(), kSeparator) > statistics.labels + 1 &&
            (!wanted || wanted(path))) {
            findings.push_back(withSlashes(path) + ", a name holds the byte 0x02");
        }
    }
    return findings;
}

}  // namespace qvej::cli
