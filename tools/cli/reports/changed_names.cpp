// See changed_names.h.
#include "tools/cli/reports/changed_names.h"

#include "client/path_names.h"
#include "client/text.h"
#include "tools/cli/reports/tell.h"

#include <algorithm>
#include <string_view>

namespace qvej::cli {

namespace {

constexpr std::size_t kLongest = 32;  // bytes that the map keeps of a name
constexpr std::size_t kShownCharacters = 64;

struct Changed {
    uint64_t count = 0;
    std::string own;  // of the first
    std::string name;

    void add(std::string_view ownName, const std::string& mapName) {
        if (count++ == 0) {
            own = ownName;
            name = mapName;
        }
    }
};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Does the map's name lack something of the piece?
bool isLost(std::string_view piece) {
    return piece.size() > kLongest ||
           std::any_of(piece.begin(), piece.end(), [](char c) { return (c & 0x80) != 0; });
}

bool beginsOtherwise(std::string_view piece, std::string_view name) {
    return !piece.empty() && isDigit(piece.front()) && name.starts_with('_');
}

// A table has the name of its last piece, or of its last two.
void checkTable(const qvej::Table& table, Changed& changed) {
    const std::string path = table.objectPath();
    const std::string_view last = qvej::lastPiece(path);
    const std::string_view around = qvej::withoutLastPiece(path);
    const bool joined = !qvej::withoutLastPiece(around).empty();
    const std::string_view first = joined ? qvej::lastPiece(around) : last;
    if (isLost(first) || isLost(last) || beginsOtherwise(first, table.name)) {
        changed.add(joined ? std::string(first) + "/" + std::string(last) : last, table.name);
    }
}

void checkColumns(const qvej::Columns& columns, Changed& changed) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns.type(i) == qvej::ColumnType::ORDINAL) {
            continue;  // of a deep table most are
        }
        const qvej::Column column = columns[i];
        const std::string_view last = qvej::lastPiece(column.path);
        if (isLost(last) || beginsOtherwise(last, column.name)) {
            changed.add(last, column.name);
        }
    }
}

}  // namespace

void tellChangedNames(const std::string& file, const std::vector<const qvej::Table*>& tables) {
    Changed changed;
    for (const qvej::Table* table : tables) {
        if (table->alldata) {
            continue;
        }
        checkTable(*table, changed);
        checkColumns(table->columns, changed);
    }
    if (changed.count != 0) {
        const bool one = changed.count == 1;
        const std::string_view start = qvej::firstCharacters(changed.own, kShownCharacters);
        tell(file + ": " + std::to_string(changed.count) +
             (one ? " name of a table or column is not the document's: "
                  : " names of tables and columns are not the document's, such as ") +
             changed.name + " for \"" + std::string(start) +
             (start.size() < changed.own.size() ? "..." : "") + "\" (--naming original keeps " +
             (one ? "it)" : "them)"));
    }
}

}  // namespace qvej::cli
