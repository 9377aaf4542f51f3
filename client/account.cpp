// See account.h.
#include "client/account.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>

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

// What the rows have of the values of columns.
struct CellCounts {
    // What few columns have.
    struct Odd {
        LostValues cut, strayed, rejected;
    };
    using Place = std::pair<std::size_t, std::size_t>;  // table and column

    std::vector<std::vector<uint64_t>> cells;  // of each table; empty: it has no rows
    std::map<Place, Odd> odd;

    explicit CellCounts(std::size_t tables) : cells(tables) {}

    // Those of the rows after these, of a part of which `before` comes.
    void add(const CellCounts& part, const TablePass& before) {
        for (std::size_t t = 0; t < cells.size(); ++t) {
            cells[t].resize(std::max(cells[t].size(), part.cells[t].size()));
            for (std::size_t c = 0; c < part.cells[t].size(); ++c) {
                cells[t][c] += part.cells[t][c];
            }
        }
        for (const auto& [place, more] : part.odd) {
            Odd& sum = odd[place];
            const uint64_t values = before.column(place.first, place.second).values;
            for (LostValues Odd::*const way : {&Odd::cut, &Odd::strayed, &Odd::rejected}) {
                if ((sum.*way).count == 0 && (more.*way).count != 0) {
                    (sum.*way).first = values + (more.*way).first;
                }
                (sum.*way).count += (more.*way).count;
            }
        }
    }

    // Completes the account of a column.
    void addTo(PathAccount& account, std::size_t table, std::size_t column) const {
        account.cells = cells[table].empty() ? 0 : cells[table][column];
        if (const auto found = odd.find({table, column}); found != odd.end()) {
            account.cut = found->second.cut;
            account.strayed = found->second.strayed;
            of(account, Loss::REJECTED) = found->second.rejected;
        }
    }
};

// Counts the cells of rows.
class CellCounter {
   public:
    // How many values have come for a column.
    using Values = std::function<uint64_t(std::size_t table, std::size_t column)>;

    CellCounter(const Document& document, const std::vector<const Table*>& tables, Values values)
        : document_(document),
          tables_(tables),
          values_(std::move(values)),
          rows_(tables.size()),
          counts_(tables.size()) {}
    CellCounter(const CellCounter&) = delete;
    CellCounter& operator=(const CellCounter&) = delete;

    void take(const PassItem& item) {
        PassRow& row = rowOf(item.table);
        if (!row.take(item)) {
            return;
        }
        std::vector<uint64_t>& cells = counts_.cells[item.table];
        cells.resize(item.cells.size());
        for (std::size_t i = 0; i < item.cells.size(); ++i) {
            if (!holdsValue(item.cells[i])) {
                continue;
            }
            const bool refused =
                item.cells[i].kind != JMAP_KIND_NULL && row.cell(i).kind == Cell::NUL;
            if (refused) {
                addOdd(&CellCounts::Odd::rejected, item.table, i);
                continue;
            }
            ++cells[i];
            if (item.cells[i].strayed != 0) {
                addOdd(&CellCounts::Odd::strayed, item.table, i);
            }
        }
    }

    // Those since the last call.
    [[nodiscard]] CellCounts counts() { return std::exchange(counts_, CellCounts(tables_.size())); }

   private:
    PassRow& rowOf(std::size_t table) {
        std::unique_ptr<PassRow>& row = rows_[table];
        if (row == nullptr) {
            row = std::make_unique<PassRow>(
                document_, *tables_[table],
                [this, table](const Row& /*row*/, const Rejected& value) {
                    if (value.cut) {
                        addOdd(&CellCounts::Odd::cut, table, value.column);
                    }
                });
        }
        return *row;
    }
    void addOdd(LostValues CellCounts::Odd::*way, std::size_t table, std::size_t column) {
        add(counts_.odd[{table, column}].*way, values_(table, column));
    }

    const Document& document_;
    const std::vector<const Table*>& tables_;
    const Values values_;
    std::vector<std::unique_ptr<PassRow>> rows_;  // null: no item of the table has come
    CellCounts counts_;
};

// The cells of a part, counted where its rows are made.
struct PartCells final : RowResult {
    explicit PartCells(CellCounts ofPart) : counts(std::move(ofPart)) {}
    CellCounts counts;
};

class CountWork final : public RowWork {
   public:
    CountWork(const Document& document, const std::vector<const Table*>& tables)
        : source_(document.hasSourceColumn() ? 1 : 0),
          counter_(document, tables, [this](std::size_t table, std::size_t column) {
              return values(table, column);
          }) {}

    void begin(JMAPPassh walk) override { walk_ = walk; }
    void take(const PassItem& item) override { counter_.take(item); }
    [[nodiscard]] bool full() const override { return false; }
    [[nodiscard]] std::unique_ptr<RowResult> result() override {
        return std::make_unique<PartCells>(counter_.counts());
    }

   private:
    [[nodiscard]] uint64_t values(std::size_t table, std::size_t column) const {
        if (column < source_) {
            return 0;
        }
        JMAPPassColumn info = {};
        jmapPassColumn(walk_, static_cast<QVStrSize>(table),
                       static_cast<QVStrSize>(column - source_), &info);
        return info.values;
    }

    const std::size_t source_;  // 1: the first column is none of the engine
    JMAPPassh walk_ = nullptr;
    CellCounter counter_;
};

CellCounts countCells(const Document& document, const std::vector<const Table*>& tables,
                      TablePass& pass) {
    if (!pass.works()) {
        CellCounter counter(document, tables, [&](std::size_t table, std::size_t column) {
            return pass.column(table, column).values;
        });
        for (PassItem item = {}; pass.next(item);) {
            counter.take(item);
        }
        return counter.counts();
    }
    CellCounts sum(tables.size());
    pass.work([&] { return std::make_unique<CountWork>(document, tables); },
              [&](std::unique_ptr<RowResult> part) {
                  sum.add(static_cast<const PartCells&>(*part).counts, pass);
              });
    return sum;
}

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
    const CellCounts counts = countCells(document, tables, pass);
    ByPath byPath;
    for (std::size_t t = 0; t < tables.size(); ++t) {
        for (std::size_t c = 0; c < tables[t]->columns.size(); ++c) {
            if (!takesValues(tables[t]->columns[c])) {
                continue;
            }
            PathAccount column = columnOf(pass, t, c);
            counts.addTo(column, t, c);
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
