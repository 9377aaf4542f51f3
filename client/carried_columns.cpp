// See carried_columns.h.
#include "client/carried_columns.h"

#include "client/error.h"

#include <algorithm>
#include <utility>

namespace qvej {

namespace {

constexpr char kSeparator = '\x02';

JMAPTableh newTable(const Document& document, std::string_view path) {
    JMAPTableh table = nullptr;
    check(
        jmapNewTable(document.handle(), path.data(), static_cast<QVStrSize>(path.size()), &table));
    return table;
}

void addOrdinal(const Document& document, JMAPTableh table, std::string_view path) {
    check(jmapNewColumn(document.handle(), table, nullptr, path.data(),
                        static_cast<QVStrSize>(path.size())));
}

void addColumn(const Document& document, JMAPTableh table, JMAPColumnh like) {
    check(jmapNewColumn(document.handle(), table, like, nullptr, 0));
}

std::string rawPathOf(JMAPTableh table) {
    JMAPTableInfo info = {};
    jmapTableInfo(table, &info);
    return pathOf(jmapTablePath, table, info.tablePathLen);
}

// Is it a value that a numeric column cannot take?
bool isNoNumber(const Document& document, const PassCell& cell) {
    double number = 0;
    return cell.kind == JMAP_CELL_CUT ||
           (cell.kind == JMAP_KIND_STRING &&
            jmapToNumber(document.handle(), cell.text, cell.textLen, &number) != QV_OK);
}

}  // namespace

std::string_view ancestorOf(std::string_view tablePath, std::string_view columnPath) {
    const auto length = static_cast<std::size_t>(
        std::mismatch(tablePath.begin(), tablePath.end(), columnPath.begin(), columnPath.end())
            .first -
        tablePath.begin());
    const auto endsAt = [length](std::string_view path) {
        return path.size() == length || path[length] == kSeparator;
    };
    if (endsAt(tablePath) && endsAt(columnPath)) {
        return length == tablePath.size() ? std::string_view{} : columnPath.substr(0, length);
    }
    const std::size_t end = columnPath.substr(0, length).rfind(kSeparator);
    return columnPath.substr(0, end == std::string_view::npos ? 0 : end);
}

std::string ancestorOf(const Table& table, const Column& column) {
    const std::string path = table.path();
    return column.type == ColumnType::ORDINAL ? std::string()
                                              : std::string(ancestorOf(path, column.path));
}

CarriedColumns::CarriedColumns(const Document& document, const std::vector<const Table*>& tables)
    : document_(document), uses_(tables.size()) {
    for (std::size_t i = 0; i < tables.size(); ++i) {
        addUses(tables[i]->handle, uses_[i]);
        tables_.push_back(uses_[i].empty() ? tables[i]->handle
                                           : standIn(tables[i]->handle, uses_[i]));
    }
    openWalks();
}

void CarriedColumns::addUses(JMAPTableh table, std::vector<Use>& uses) {
    const std::string tablePath = rawPathOf(table);
    std::size_t i = 0;
    for (JMAPColumnh column = nullptr; jmapNextColumn(table, &column) == QV_OK; ++i) {
        JMAPColumnInfo info = {};
        jmapColumnInfo(column, &info);
        const std::string columnPath = pathOf(jmapColumnPath, column, info.pathLen);
        const std::string_view path = ancestorOf(tablePath, columnPath);
        if (info.type == JMAP_ORDINAL || path.empty()) {
            continue;
        }
        Ancestor& ancestor = ancestorAt(path);
        addColumn(document_, ancestor.table, column);
        const bool number = info.type == JMAP_NUMERIC && info.informat.nameLen == 0;
        uses.push_back({i, &ancestor, ancestor.columns++, number, 0, 0});
    }
}

// The table with ordinals of ancestors for its carried columns.
JMAPTableh CarriedColumns::standIn(JMAPTableh table, const std::vector<Use>& uses) {
    JMAPTableh made = newTable(document_, rawPathOf(table));
    auto use = uses.begin();
    std::size_t i = 0;
    for (JMAPColumnh column = nullptr; jmapNextColumn(table, &column) == QV_OK; ++i) {
        if (use != uses.end() && use->column == i) {
            addOrdinal(document_, made, use->ancestor->path);
            ++use;
        } else {
            addColumn(document_, made, column);
        }
    }
    return made;
}

CarriedColumns::Ancestor& CarriedColumns::ancestorAt(std::string_view path) {
    const auto [at, isNew] = ancestors_.try_emplace(std::string(path));
    Ancestor& ancestor = at->second;
    if (isNew) {
        ancestor.path = at->first;
        ancestor.table = newTable(document_, path);
        addOrdinal(document_, ancestor.table, path);
        ancestor.columns = 1;
    }
    return ancestor;
}

void CarriedColumns::openWalks() {
    for (auto& [path, ancestor] : ancestors_) {
        const auto depth = std::count(path.begin(), path.end(), kSeparator);
        ancestor.walk = &walks_[static_cast<std::size_t>(depth)];
        ancestor.walk->ancestors.push_back(&ancestor);
    }
    for (auto& [depth, walk] : walks_) {
        std::vector<JMAPTableh> handles;
        for (Ancestor* ancestor : walk.ancestors) {
            ancestor->place = handles.size();
            handles.push_back(ancestor->table);
        }
        walk.pass = std::make_unique<TablePass>(document_, handles);
    }
}

// Goes on to the next instance of any of the ancestors.  An instance without values may be passed
// over, and the next one of its path then comes right after it.  False: there is none.
bool CarriedColumns::step(Walk& walk) {
    do {
        if (!walk.pass->next(walk.item)) {
            return false;
        }
    } while (walk.item.kind != PassItem::ROW);
    walk.ancestors[walk.item.table]->instance = walk.item.cells[0].count;
    return true;
}

// A value that strayed is of an earlier instance, or of none: this one does not have it.
PassCell CarriedColumns::valueOf(const Use& use, uint64_t instance) {
    Ancestor& ancestor = *use.ancestor;
    Walk& walk = *ancestor.walk;
    bool more = true;
    while (more && ancestor.instance < instance) {
        more = step(walk);
    }
    if (!more || ancestor.instance != instance || walk.item.table != ancestor.place) {
        return {};
    }
    const PassCell& cell = walk.item.cells[use.cell];
    return cell.fresh != 0 && cell.strayed == 0 ? cell : PassCell{};
}

void CarriedColumns::take(const PassItem& item) {
    item_ = item;
    taken_ = true;
    filled_ = false;
}

// After a failure it is filled again, and fails again.
bool CarriedColumns::handOut(PassItem& item) {
    if (!taken_) {
        return false;
    }
    if (!filled_) {
        fill();
        filled_ = true;
    }
    item = item_;
    taken_ = !notNumbers_.empty();
    if (taken_) {
        const std::size_t column = notNumbers_.back();
        notNumbers_.pop_back();
        item.kind = PassItem::NOT_NUMBER;
        item.column = column;
        item.text = {row_[column].text, static_cast<std::size_t>(row_[column].textLen)};
    }
    return true;
}

void CarriedColumns::fill() {
    std::vector<Use>& uses = uses_[item_.table];
    notNumbers_.clear();
    if (uses.empty()) {
        return;
    }
    row_.assign(item_.cells.begin(), item_.cells.end());
    item_.cells = row_;
    for (auto use = uses.rbegin(); use != uses.rend(); ++use) {
        PassCell& cell = row_[use->column];
        if (item_.kind == PassItem::ROW) {
            fillCell(*use, cell);
        } else {
            cell = {};  // the row is still in the making
        }
    }
}

// The value is fresh in the first row that shows it, and kept in the others.
void CarriedColumns::fillCell(Use& use, PassCell& cell) {
    const uint64_t instance = cell.kind == JMAP_CELL_COUNT ? cell.count : 0;
    cell = valueOf(use, instance);
    if (cell.kind == JMAP_CELL_MISSING) {
        return;
    }
    cell.fresh = std::exchange(use.last, instance) == instance ? 0 : 1;
    if (cell.fresh != 0) {
        ++use.shown;
        if (use.number && isNoNumber(document_, cell)) {
            notNumbers_.push_back(use.column);
        }
    }
}

void CarriedColumns::finish() {
    for (auto& [depth, walk] : walks_) {
        while (step(walk)) {
        }
    }
}

std::optional<CarriedColumns::Count> CarriedColumns::count(std::size_t table,
                                                           std::size_t column) const {
    const std::vector<Use>& uses = uses_[table];
    const auto use = std::lower_bound(uses.begin(), uses.end(), column,
                                      [](const Use& u, std::size_t c) { return u.column < c; });
    if (use == uses.end() || use->column != column) {
        return std::nullopt;
    }
    JMAPPassColumn info = use->ancestor->walk->pass->column(use->ancestor->place, use->cell);
    info.strayed = 0;  // they are in no row
    info.below = 0;
    return Count{info, use->shown};
}

}  // namespace qvej
