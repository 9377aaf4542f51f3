// See map_merge.h.
#include "client/maps/map_merge.h"

#include "client/maps/map_pairs.h"
#include "client/messages.h"
#include "client/text.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <unordered_map>

namespace qvej {

namespace {

constexpr std::size_t kLongestName = 32;  // bytes of a name that gets a number, as the engine's

// One table or column of the result, and what it is made of.
template <class Item>
struct Group {
    const Item* first = nullptr;  // the first map's; null: it has none
    std::vector<const Item*> others;
    PairKey key;            // of those that the first map has not
    std::size_t count = 0;  // which of those with that key it is, in each map

    [[nodiscard]] const Item& any() const { return first != nullptr ? *first : *others.front(); }
};

// Groups what is the same in several lists, the first of which is the first map's.  First come its
// items, then what it has not, in the order of the others.
template <class Item>
std::vector<Group<Item>> group(const std::vector<const std::vector<Item>*>& lists,
                               PairKey (*near)(const Item&), PairKey (*far)(const Item&)) {
    const std::vector<Item>& first = *lists.front();
    std::vector<Group<Item>> groups(first.size());
    for (std::size_t i = 0; i < first.size(); ++i) {
        groups[i].first = &first[i];
    }
    std::map<std::pair<PairKey, std::size_t>, std::size_t> further;
    for (std::size_t l = 1; l < lists.size(); ++l) {
        const std::vector<Item>& list = *lists[l];
        const std::vector<std::size_t> partners = pairUp(first, list, {near, far});
        std::map<PairKey, std::size_t> counts;
        for (std::size_t i = 0; i < list.size(); ++i) {
            std::size_t at = partners[i];
            if (at == kUnpaired) {
                const PairKey key = far(list[i]);
                const std::size_t count = counts[key]++;
                at = further.try_emplace({key, count}, groups.size()).first->second;
                if (at == groups.size()) {
                    groups.push_back({nullptr, {}, key, count});
                }
            }
            groups[at].others.push_back(&list[i]);
        }
    }
    return groups;
}

// In an order that only depends on what the groups hold.
template <class Item>
bool before(const Group<Item>& a, const Group<Item>& b) {
    return std::tie(a.key, a.count) < std::tie(b.key, b.count);
}

// The text that the first map gives, else the smallest that another gives.
template <class Item, class Suits>
std::string settled(const Group<Item>& group, std::string Item::*text, const Suits& suits) {
    if (group.first != nullptr && suits(*group.first) && !(group.first->*text).empty()) {
        return group.first->*text;
    }
    std::string smallest;
    for (const Item* other : group.others) {
        if (suits(*other) && !(other->*text).empty() &&
            (smallest.empty() || other->*text < smallest)) {
            smallest = other->*text;
        }
    }
    return smallest;
}

constexpr auto kAll = [](const auto&) { return true; };

std::vector<const MapColumn*> membersOf(const Group<MapColumn>& group) {
    std::vector<const MapColumn*> members = group.others;
    if (group.first != nullptr) {
        members.push_back(group.first);
    }
    return members;
}

// Numbers and characters give characters; ordinals are among themselves.
ColumnType mergedType(const std::vector<const MapColumn*>& members) {
    ColumnType type = members.front()->type;
    for (const MapColumn* column : members) {
        type = std::max(type, column->type);
    }
    return type;
}

std::string mergedOption(const Group<MapColumn>& group) {
    if (group.first != nullptr && !group.first->option.empty()) {
        return group.first->option;
    }
    std::string option;
    for (const MapColumn* other : group.others) {
        option = other->option == "RETAIN" || option.empty() ? other->option : option;
    }
    return option;
}

// LENGTH, FORMAT and INFORMAT are only taken from columns of the type that comes out: those of a
// number would cut or spoil texts.
MapColumn mergedColumn(const Group<MapColumn>& group) {
    const std::vector<const MapColumn*> members = membersOf(group);
    MapColumn merged;
    merged.type = mergedType(members);
    const auto suits = [&](const MapColumn& column) { return column.type == merged.type; };
    merged.name = settled(group, &MapColumn::name, kAll);
    merged.path = group.any().path;
    merged.format = settled(group, &MapColumn::format, suits);
    merged.informat = settled(group, &MapColumn::informat, suits);
    merged.label = settled(group, &MapColumn::label, kAll);
    merged.option = mergedOption(group);
    for (const MapColumn* column : members) {
        merged.currentLength = std::max(merged.currentLength, column->currentLength);
        merged.length = std::max(merged.length, suits(*column) ? column->length : std::nullopt);
    }
    return merged;
}

using Remarks = std::vector<std::string>;

// Says what numbers had and the column, which became one of characters, cannot have.
void addLeftOut(Remarks& remarks, const MapTable& table, const MapColumn& merged,
                const Group<MapColumn>& group) {
    std::set<std::string> leftOut;
    for (const MapColumn* column : membersOf(group)) {
        if (column->type == merged.type) {
            continue;
        }
        if (column->length) {
            leftOut.insert("LENGTH " + std::to_string(*column->length));
        }
        if (!column->format.empty()) {
            leftOut.insert("FORMAT " + column->format);
        }
        if (!column->informat.empty()) {
            leftOut.insert("INFORMAT " + column->informat);
        }
    }
    std::string what;
    for (const std::string& attribute : leftOut) {
        what += (what.empty() ? "" : ", ") + attribute;
    }
    if (!what.empty()) {
        remarks.push_back(columnName(table, merged) + " is now CHARACTER, without the " + what +
                          " of a NUMERIC column");
    }
}

// The names of a table's columns: one that is taken gets the first number from 2 on that is free.
class ColumnNames {
   public:
    void take(const std::string& name) { next_.try_emplace(lowerCased(name), kFirst); }

    std::string unique(const std::string& name) {
        const auto [entry, isNew] = next_.try_emplace(lowerCased(name), kFirst);
        if (isNew) {
            return name;
        }
        // Names are never given back, so numbers once found taken need not be looked at again.
        int& number = entry->second;
        std::string candidate;
        do {
            const std::string digits = std::to_string(number++);
            const std::string_view kept(name.data(),
                                        std::min(name.size(), kLongestName - digits.size()));
            candidate = std::string(withoutUnfinished(kept)) + digits;
        } while (!next_.try_emplace(lowerCased(candidate), kFirst).second);
        return candidate;
    }

   private:
    static constexpr int kFirst = 2;
    // Names that are taken, and the next number to try for each.
    std::unordered_map<std::string, int> next_;
};

// Makes the names of those columns unique that the first map has not, and says which change.
void settleNames(Remarks& remarks, MapTable& table, const std::vector<Group<MapColumn>>& groups) {
    ColumnNames names;
    std::vector<std::size_t> further;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i].first != nullptr) {
            names.take(table.columns[i].name);
        } else {
            further.push_back(i);
        }
    }
    std::sort(further.begin(), further.end(),
              [&](std::size_t a, std::size_t b) { return before(groups[a], groups[b]); });
    for (const std::size_t i : further) {
        MapColumn& column = table.columns[i];
        const std::string name = names.unique(column.name);
        if (name != column.name) {
            remarks.push_back(columnName(table, column) + " of " + column.path + " is now named " +
                              name + ": the name was taken");
        }
        column.name = name;
    }
}

MapTable mergedTable(Remarks& remarks, const Group<MapTable>& tables) {
    static const std::vector<MapColumn> kNone;
    std::vector<const std::vector<MapColumn>*> lists = {
        tables.first != nullptr ? &tables.first->columns : &kNone};
    for (const MapTable* other : tables.others) {
        lists.push_back(&other->columns);
    }
    MapTable merged = {settled(tables, &MapTable::name, kAll), tables.any().path, {}};
    const std::vector<Group<MapColumn>> groups = group<MapColumn>(lists, exactKey, pathKey);
    for (const Group<MapColumn>& columns : groups) {
        merged.columns.push_back(mergedColumn(columns));
    }
    settleNames(remarks, merged, groups);
    for (std::size_t i = 0; i < groups.size(); ++i) {
        addLeftOut(remarks, merged, merged.columns[i], groups[i]);
    }
    return merged;
}

MapModel merged(Remarks& remarks, const std::vector<MapModel>& maps) {
    std::vector<const MapModel*> lists(maps.size());
    std::transform(maps.begin(), maps.end(), lists.begin(), [](const MapModel& m) { return &m; });
    std::vector<Group<MapTable>> groups = group<MapTable>(lists, exactKey, caselessKey);
    std::sort(groups.begin() + static_cast<std::ptrdiff_t>(maps.front().size()), groups.end(),
              before<MapTable>);
    MapModel result;
    for (const Group<MapTable>& tables : groups) {
        result.push_back(mergedTable(remarks, tables));
    }
    return result;
}

// Tables keep their names, so that they are found again when the result is merged with more.
void addSharedNames(Remarks& remarks, const MapModel& map) {
    std::map<std::string, int> counts;
    for (const MapTable& table : map) {
        if (++counts[lowerCased(table.name)] == 2) {
            remarks.push_back("more than one table is named " + visible(table.name) +
                              ": read opens the first");
        }
    }
}

}  // namespace

MergedMap mergedMap(const std::vector<MapModel>& maps) {
    MergedMap result;
    result.map = merged(result.remarks, maps);
    addSharedNames(result.remarks, result.map);
    return result;
}

}  // namespace qvej
