// See account.h.
#include "client/account.h"

#include <memory>
#include <unordered_map>
#include <unordered_set>

namespace qvej {

namespace {

bool holdsValue(const PassCell& cell) {
    return cell.fresh != 0 && cell.kind != JMAP_CELL_MISSING && cell.kind != JMAP_CELL_COUNT;
}

uint64_t scalarsOf(const PathStatistics& path) {
    uint64_t count = 0;
    for (const KindStatistics& kind : path.kinds) {
        count += kind.kind == JMAP_KIND_FAKE_VARIABLE ? 0 : static_cast<uint64_t>(kind.count);
    }
    return count;
}

LostValues& of(PathAccount& account, Loss loss) {
    return account.lost[static_cast<std::size_t>(loss)];
}

void add(LostValues& lost, uint64_t number) {
    if (lost.count++ == 0) {
        lost.first = number;
    }
}

// The columns of a document by path: the best of each.
class ByPath {
   public:
    void offer(const std::string& path, const PathAccount& column) {
        const auto [at, isNew] = best_.try_emplace(path, column);
        if (!isNew && inPlace(column) > inPlace(at->second)) {
            at->second = column;
        }
    }

    // Values of all paths that are in no cell.
    [[nodiscard]] uint64_t missing() const {
        uint64_t sum = 0;
        for (const auto& [path, account] : best_) {
            sum += account.values - account.cells;
        }
        return sum;
    }

    [[nodiscard]] RowLosses rowLosses() const {
        RowLosses sum;
        for (const auto& [path, account] : best_) {
            sum.overwritten += account.lost[static_cast<std::size_t>(Loss::OVERWRITTEN)].count;
            sum.strayed += account.strayed.count;
        }
        return sum;
    }

    [[nodiscard]] bool has(const std::string& path) const { return best_.contains(path); }

    // What the values of a path came to.
    [[nodiscard]] PathAccount account(const PathStatistics& path) const {
        const auto found = best_.find(path.path);
        PathAccount account = found == best_.end() ? PathAccount{} : found->second;
        account.path = path.path;
        account.values = scalarsOf(path);
        if (found == best_.end() && account.values != 0) {
            of(account, Loss::NO_COLUMN) = {account.values, 1};
        }
        return account;
    }

   private:
    static uint64_t inPlace(const PathAccount& column) {
        return column.cells - column.strayed.count;
    }

    std::unordered_map<std::string, PathAccount> best_;
};

// What the engine knows of a column when the pass has ended: all but the cells.
PathAccount columnOf(const TablePass& pass, std::size_t table, std::size_t column) {
    PathAccount account;
    const JMAPPassColumn info = pass.column(table, column);
    of(account, Loss::OVERWRITTEN) = {info.overwritten, info.firstOverwritten};
    if (const auto shown = pass.shown(table, column)) {  // a value is counted once, not by its rows
        const bool none = *shown == 0 && info.overwritten == 0;
        of(account, Loss::NO_ROW) = {info.values - info.overwritten - *shown,
                                     none ? uint64_t{1} : 0};
    } else if (holdsValue(pass.left(table, column))) {
        add(of(account, Loss::NO_ROW), info.values);
    }
    account.values = info.values;
    return account;
}

bool takesValues(const Column& column) {
    return column.type != ColumnType::ORDINAL && !column.path.empty();
}

// The same with the cells, rejected values among them.
PathAccount shownBy(const TablePass& pass, std::size_t table, std::size_t column) {
    PathAccount account = columnOf(pass, table, column);
    account.cells =
        account.values - of(account, Loss::OVERWRITTEN).count - of(account, Loss::NO_ROW).count;
    account.strayed.count = pass.column(table, column).strayed;
    return account;
}

// Counts the cells of the rows of a pass.
class CellCount {
   public:
    CellCount(const Document& document, const std::vector<const Table*>& tables,
              const TablePass& pass)
        : pass_(pass) {
        for (std::size_t t = 0; t < tables.size(); ++t) {
            rows_.push_back(std::make_unique<PassRow>(
                document, *tables[t], [this, t](const Row& /*row*/, const Rejected& value) {
                    if (value.cut) {
                        add(columns_[t][value.column].cut, pass_.column(t, value.column).values);
                    }
                }));
            columns_.emplace_back(tables[t]->columns.size());
        }
    }
    CellCount(const CellCount&) = delete;
    CellCount& operator=(const CellCount&) = delete;

    void take(const PassItem& item) {
        PassRow& row = *rows_[item.table];
        if (!row.take(item)) {
            return;
        }
        for (std::size_t i = 0; i < item.cells.size(); ++i) {
            if (!holdsValue(item.cells[i])) {
                continue;
            }
            PathAccount& column = columns_[item.table][i];
            const bool refused =
                item.cells[i].kind != JMAP_KIND_NULL && row.cell(i).kind == Cell::NUL;
            if (refused) {
                add(of(column, Loss::REJECTED), pass_.column(item.table, i).values);
                continue;
            }
            ++column.cells;
            if (item.cells[i].strayed != 0) {
                add(column.strayed, pass_.column(item.table, i).values);
            }
        }
    }

    [[nodiscard]] const PathAccount& column(std::size_t table, std::size_t column) const {
        return columns_[table][column];
    }

   private:
    const TablePass& pass_;
    std::vector<std::unique_ptr<PassRow>> rows_;
    std::vector<std::vector<PathAccount>> columns_;
};

}  // namespace

std::string_view nameOf(Loss loss) {
    static constexpr std::string_view kNames[kLosses] = {"overwritten", "no column", "no row",
                                                         "rejected"};
    return kNames[static_cast<std::size_t>(loss)];
}

bool PathAccount::meets() const {
    uint64_t sum = cells;
    for (const LostValues& one : lost) {
        sum += one.count;
    }
    return sum == values;
}

std::vector<PathAccount> accountOf(const Document& document, bool retain, bool carry) {
    std::vector<const Table*> tables;
    for (const Table& table : document.tables()) {
        tables.push_back(&table);
    }
    return accountOf(document, tables, retain, carry);
}

std::vector<PathAccount> accountOf(const Document& document,
                                   const std::vector<const Table*>& tables, bool retain,
                                   bool carry) {
    TablePass pass(document, tables, retain, carry);
    CellCount count(document, tables, pass);
    for (PassItem item = {}; pass.next(item);) {
        count.take(item);
    }
    ByPath byPath;
    for (std::size_t t = 0; t < tables.size(); ++t) {
        for (std::size_t c = 0; c < tables[t]->columns.size(); ++c) {
            if (!takesValues(tables[t]->columns[c])) {
                continue;
            }
            PathAccount column = columnOf(pass, t, c);
            column.cells = count.column(t, c).cells;
            column.cut = count.column(t, c).cut;
            column.strayed = count.column(t, c).strayed;
            of(column, Loss::REJECTED) =
                count.column(t, c).lost[static_cast<std::size_t>(Loss::REJECTED)];
            byPath.offer(tables[t]->columns[c].path, column);
        }
    }
    const bool some = tables.size() != document.tables().size();
    std::vector<PathAccount> accounts;
    for (const PathStatistics& path : document.pathStatistics()) {
        if (scalarsOf(path) != 0 && (!some || byPath.has(path.path))) {
            accounts.push_back(byPath.account(path));
        }
    }
    return accounts;
}

uint64_t lostOf(const Document& document, const TablePass& pass,
                const std::vector<const Table*>& tables) {
    const bool oneColumnAPath = &document.tables() == &document.automaticTables() &&
                                tables.size() == document.tables().size();
    ByPath byPath;
    uint64_t shown = 0;
    for (std::size_t t = 0; t < tables.size(); ++t) {
        for (std::size_t c = 0; c < tables[t]->columns.size(); ++c) {
            if (!takesValues(tables[t]->columns[c])) {
                continue;
            }
            const PathAccount column = shownBy(pass, t, c);
            shown += column.cells;
            if (!oneColumnAPath) {
                byPath.offer(tables[t]->columns[c].path, column);
            }
        }
    }
    return oneColumnAPath ? document.totals().values - shown : byPath.missing();
}

RowLosses rowLossesOf(const TablePass& pass, const std::vector<const Table*>& tables) {
    std::unordered_set<std::string> lossy;  // paths; mostly there are none
    for (std::size_t t = 0; t < tables.size(); ++t) {
        for (std::size_t c = 0; c < tables[t]->columns.size(); ++c) {
            const JMAPPassColumn info = pass.column(t, c);
            if (info.strayed != 0 || (info.below != 0 && info.overwritten != 0)) {
                lossy.insert(tables[t]->columns[c].path);
            }
        }
    }
    ByPath byPath;
    for (std::size_t t = 0; t < tables.size() && !lossy.empty(); ++t) {
        for (std::size_t c = 0; c < tables[t]->columns.size(); ++c) {
            const Column& column = tables[t]->columns[c];
            if (!takesValues(column) || lossy.find(column.path) == lossy.end()) {
                continue;
            }
            PathAccount account = shownBy(pass, t, c);
            if (pass.column(t, c).below == 0) {
                // Mostly values of an ancestor, which has no row of its own in this table.
                of(account, Loss::OVERWRITTEN) = {};
            }
            byPath.offer(column.path, account);
        }
    }
    return byPath.rowLosses();
}

}  // namespace qvej
