// See map_difference.h.
#include "client/maps/map_difference.h"

#include "client/escape.h"
#include "client/maps/map_pairs.h"
#include "client/messages.h"

namespace qvej {

namespace {

std::string orNone(const std::string& text) {
    return text.empty() ? "none" : text;
}

std::string nameText(const std::string& name) {
    return escaped(visible(name));
}

// What counts: LENGTH, else CURRENT_LENGTH.
std::string lengthText(const MapColumn& column) {
    const std::optional<uint64_t>& length = column.length ? column.length : column.currentLength;
    return length ? std::to_string(*length) : std::string();
}

std::string labelText(const MapColumn& column) {
    return column.label.empty() ? std::string() : jsonText(column.label);
}

// The attributes that differ: "type NUMERIC -> CHARACTER, length 3 -> 12".
std::string columnChanges(const MapColumn& a, const MapColumn& b) {
    std::string text;
    const auto compare = [&](std::string_view what, const std::string& before,
                             const std::string& after) {
        if (before != after) {
            text += text.empty() ? "" : ", ";
            text += what;
            text += " " + orNone(before) + " -> " + orNone(after);
        }
    };
    compare("name", nameText(a.name), nameText(b.name));
    compare("type", std::string(typeName(a.type)), std::string(typeName(b.type)));
    compare("length", lengthText(a), lengthText(b));
    compare("format", shown(a.format), shown(b.format));
    compare("informat", shown(a.informat), shown(b.informat));
    compare("label", labelText(a), labelText(b));
    compare("option", a.option, b.option);
    return text;
}

using Lines = std::vector<std::string>;

void addTable(Lines& lines, char mark, const MapTable& table) {
    lines.push_back(std::string(1, mark) + " table " + nameText(table.name) + " " +
                    escaped(table.path));
}

void addColumn(Lines& lines, char mark, const MapTable& table, const MapColumn& column) {
    lines.push_back(std::string(1, mark) + " column " + columnName(table, column) + " " +
                    std::string(typeName(column.type)) + " " + escaped(column.path));
}

// The index in `b` of the partner of each item of `a`.
std::vector<std::size_t> inverse(const std::vector<std::size_t>& partners, std::size_t size) {
    std::vector<std::size_t> result(size, kUnpaired);
    for (std::size_t i = 0; i < partners.size(); ++i) {
        if (partners[i] != kUnpaired) {
            result[partners[i]] = i;
        }
    }
    return result;
}

// Calls `removed(a)`, `changed(a, b)`, `added(b)`: what `a` has in its order, then what it has not.
template <class Item, class Removed, class Changed, class Added>
void walk(const std::vector<Item>& a, const std::vector<Item>& b,
          std::initializer_list<PairKey (*)(const Item&)> keys, const Removed& removed,
          const Changed& changed, const Added& added) {
    const std::vector<std::size_t> ofB = pairUp(a, b, keys);
    const std::vector<std::size_t> ofA = inverse(ofB, a.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        ofA[i] == kUnpaired ? removed(a[i]) : changed(a[i], b[ofA[i]]);
    }
    for (std::size_t i = 0; i < b.size(); ++i) {
        if (ofB[i] == kUnpaired) {
            added(b[i]);
        }
    }
}

void compareTables(Lines& lines, const MapTable& a, const MapTable& b) {
    if (a.name != b.name) {
        lines.push_back("~ table " + nameText(a.name) + ": name " + nameText(a.name) + " -> " +
                        nameText(b.name));
    }
    walk<MapColumn>(
        a.columns, b.columns, {exactKey, pathKey},
        [&](const MapColumn& column) { addColumn(lines, '-', a, column); },
        [&](const MapColumn& before, const MapColumn& after) {
            const std::string changes = columnChanges(before, after);
            if (!changes.empty()) {
                lines.push_back("~ column " + columnName(a, before) + ": " + changes);
            }
        },
        [&](const MapColumn& column) { addColumn(lines, '+', b, column); });
}

}  // namespace

std::vector<std::string> mapDifferences(const MapModel& a, const MapModel& b) {
    Lines lines;
    walk<MapTable>(
        a, b, {exactKey, pathKey}, [&](const MapTable& table) { addTable(lines, '-', table); },
        [&](const MapTable& before, const MapTable& after) { compareTables(lines, before, after); },
        [&](const MapTable& table) { addTable(lines, '+', table); });
    return lines;
}

}  // namespace qvej
