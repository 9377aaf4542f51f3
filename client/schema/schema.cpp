// See schema.h.
#include "client/schema/schema.h"

#include "client/pass_pipe.h"
#include "client/schema/fact_bytes.h"

#include <algorithm>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace qvej {
namespace {

std::optional<uint64_t> countOf(const PassRow& row, std::size_t column) {
    const Cell cell = row.cell(column);
    return cell.kind == Cell::COUNT ? std::optional(cell.count) : std::nullopt;
}

bool isOrdinal(const Column& column) {
    return column.type == ColumnType::ORDINAL && !column.path.empty();
}

std::size_t columnsOfAll(const std::vector<const Table*>& tables) {
    std::size_t count = 0;
    for (const Table* table : tables) {
        count += table->columns.size();
    }
    return count;
}

// The rows of the items, for a builder.
class ItemRows {
   public:
    ItemRows(const Document& document, const std::vector<const Table*>& tables)
        : document_(document), tables_(tables), rows_(tables.size()) {}

    // The number of rows that it completed: 0 or 1.
    uint64_t take(const PassItem& item, SchemaBuilder& builder) {
        std::unique_ptr<PassRow>& row = rows_[item.table];
        if (row == nullptr) {
            row = std::make_unique<PassRow>(document_, *tables_[item.table],
                                            [this](const Row&, const Rejected&) { ++rejected_; });
        }
        if (!row->take(item)) {
            return 0;
        }
        builder.take(item.table, *row);
        return 1;
    }

    // Values since the last call.
    uint64_t takeRejected() { return std::exchange(rejected_, 0); }

   private:
    const Document& document_;
    const std::vector<const Table*>& tables_;
    std::vector<std::unique_ptr<PassRow>> rows_;
    uint64_t rejected_ = 0;
};

// Facts of the rows of a part, found where they are made.
struct PartFacts final : RowResult {
    SchemaBuilder::Batch batch = {};
    uint64_t rows = 0;
    uint64_t rejected = 0;
};

class FactsWork final : public RowWork {
   public:
    FactsWork(const Document& document, const std::vector<const Table*>& tables,
              const SchemaBuilder& noRows)
        : noRows_(noRows), builder_(noRows), items_(document, tables) {}

    void take(const PassItem& item) override { rows_ += items_.take(item, builder_); }
    [[nodiscard]] bool full() const override { return false; }
    [[nodiscard]] std::unique_ptr<RowResult> result() override {
        auto facts = std::make_unique<PartFacts>();
        facts->batch = builder_.takeBatch(noRows_);
        facts->rows = std::exchange(rows_, 0);
        facts->rejected = items_.takeRejected();
        return facts;
    }

   private:
    const SchemaBuilder& noRows_;
    SchemaBuilder builder_;
    ItemRows items_;
    uint64_t rows_ = 0;
};

}  // namespace

SchemaBuilder::SchemaBuilder(const Document& document, const std::vector<const Table*>& tables,
                             const SchemaOptions& options)
    : document_(&document), tables_(&tables), options_(options) {
    facts_.reserve(tables.size());
    columns_.reserve(columnsOfAll(tables));
    for (const Table* table : tables) {
        OfTable& of = facts_.emplace_back(OfTable{columns_.size()});
        std::size_t depth = 0;  // bytes of the longest path
        for (std::size_t c = 0; c < table->columns.size(); ++c) {
            const Column column = table->columns[c];
            columns_.emplace_back(column);
            if (isOrdinal(column) && column.path.size() >= depth) {
                depth = column.path.size();
                of.own = c;
            }
        }
    }
    counts_.resize(options.counts ? columns_.size() : 0);
    findParents();
}

std::size_t SchemaBuilder::sizeFor(const std::vector<const Table*>& tables,
                                   const SchemaOptions& options) {
    const std::size_t ofColumn =
        sizeof(ColumnFacts) + (options.counts ? sizeof(ColumnCounts) : std::size_t{0});
    return tables.size() * sizeof(OfTable) + columnsOfAll(tables) * ofColumn;
}

// The parent of a table is the one whose own ordinal is the deepest of those above the own one.
void SchemaBuilder::findParents() {
    std::unordered_map<std::string, std::size_t> byOrdinal;  // path of the own one: the first table
    const std::vector<const Table*>& tables = *tables_;
    for (std::size_t t = 0; t < tables.size(); ++t) {
        if (facts_[t].own != kNone && !tables[t]->alldata) {
            byOrdinal.emplace(tables[t]->columns[facts_[t].own].path, t);
        }
    }
    for (std::size_t t = 0; t < tables.size(); ++t) {
        OfTable& of = facts_[t];
        std::size_t depth = 0;
        for (std::size_t c = 0; of.own != kNone && c < tables[t]->columns.size(); ++c) {
            const Column column = tables[t]->columns[c];
            const auto above = byOrdinal.find(column.path);
            if (c == of.own || !isOrdinal(column) || column.path.size() < depth ||
                above == byOrdinal.end() || above->second == t) {
                continue;
            }
            depth = column.path.size();
            of.parent = above->second;
            of.parentColumn = c;
        }
    }
}

std::vector<std::size_t> SchemaBuilder::withTablesAbove(std::size_t table) const {
    std::vector<std::size_t> tables;
    // A user's map can have two tables of which each is above the other.
    while (table != kNone && std::find(tables.begin(), tables.end(), table) == tables.end()) {
        tables.push_back(table);
        table = facts_[table].parent;
    }
    std::sort(tables.begin(), tables.end());
    return tables;
}

void SchemaBuilder::takeColumns(const OfTable& of, const PassRow& row) {
    const std::size_t count = row.columns().size();
    ColumnFacts* const columns = columns_.data() + of.firstColumn;
    for (std::size_t c = 0; c < count; ++c) {
        if (isOpen(columns[c])) {
            const Cell cell = row.at(c);
            columns[c].take(cell, *document_);
            if (options_.counts) {
                counts_[of.firstColumn + c].take(cell);
            }
        }
    }
}

void SchemaBuilder::take(std::size_t table, const PassRow& row) {
    OfTable& of = facts_[table];
    begin(table);
    ++of.rows;
    takeColumns(of, row);
    if (of.own != kNone) {
        of.ordinals.take(countOf(row, of.own));
    }
    if (of.parent != kNone) {
        of.parents.take(countOf(row, of.parentColumn), facts_[of.parent].ordinals);
    }
}

void SchemaBuilder::begin(std::size_t table) {
    if (facts_[table].rows == 0) {
        used_.push_back(table);
    }
}

SchemaBuilder::Batch SchemaBuilder::takeBatch(const SchemaBuilder& noRows) {
    Batch batch;
    for (const std::size_t t : used_) {
        const std::size_t first = facts_[t].firstColumn;
        for (std::size_t c = first; c < first + columnsOf(t); ++c) {
            batch.columns_.push_back(std::exchange(columns_[c], noRows.columns_[c]));
            if (options_.counts) {
                batch.counts_.push_back(std::exchange(counts_[c], {}));
            }
        }
        batch.facts_.push_back(std::exchange(facts_[t], noRows.facts_[t]));
    }
    batch.tables_ = std::exchange(used_, {});
    return batch;
}

std::string SchemaBuilder::Batch::bytes() {
    FactWriter writer;
    writer(tables_);
    for (OfTable& of : facts_) {
        writer(of.rows);
        writer(of.ordinals);
        writer(of.parents);
    }
    for (ColumnFacts& column : columns_) {
        writer(column);
    }
    for (ColumnCounts& counts : counts_) {
        writer(counts);
    }
    return writer.take();
}

SchemaBuilder::Batch::Batch(std::string_view bytes, const SchemaBuilder& noRows) {
    FactReader reader(bytes);
    reader(tables_);
    for (const std::size_t table : tables_) {
        reader.check(table < noRows.facts_.size());
        OfTable& of = facts_.emplace_back(noRows.facts_[table]);
        reader(of.rows);
        reader(of.ordinals);
        reader(of.parents);
    }
    for (const std::size_t table : tables_) {
        const std::size_t first = noRows.facts_[table].firstColumn;
        for (std::size_t c = first; c < first + noRows.columnsOf(table); ++c) {
            reader(columns_.emplace_back(noRows.columns_[c]));
        }
    }
    counts_.resize(noRows.options_.counts ? columns_.size() : 0);
    for (ColumnCounts& counts : counts_) {
        reader(counts);
    }
    reader.check(reader.atEnd());
}

void SchemaBuilder::add(const Batch& later) {
    std::size_t column = 0;  // of `later`
    for (std::size_t i = 0; i < later.tables_.size(); ++i) {
        const std::size_t t = later.tables_[i];
        OfTable& of = facts_[t];
        begin(t);
        of.rows += later.facts_[i].rows;
        of.ordinals.add(later.facts_[i].ordinals);
        for (std::size_t c = of.firstColumn; c < of.firstColumn + columnsOf(t); ++c, ++column) {
            if (isOpen(columns_[c])) {
                columns_[c].add(later.columns_[column]);
            }
            if (options_.counts) {
                counts_[c].add(later.counts_[column]);
            }
        }
    }
    // Now that all rows above are known.
    for (std::size_t i = 0; i < later.tables_.size(); ++i) {
        OfTable& of = facts_[later.tables_[i]];
        if (of.parent != kNone) {
            of.parents.add(later.facts_[i].parents, facts_[of.parent].ordinals);
        }
    }
}

Field SchemaBuilder::fieldOf(std::size_t column) const {
    const ColumnFacts& facts = columns_[column];
    const ColumnCounts counts = options_.counts ? counts_[column] : ColumnCounts{};
    return {facts.type(options_.dates),
            facts.any(),
            facts.minusZero(),
            facts.looksLikeSeconds()        ? Field::SECONDS
            : facts.looksLikeMilliseconds() ? Field::MILLISECONDS
                                            : Field::NO_UNIX,
            counts.filled,
            counts.longest};
}

Schema SchemaBuilder::end() const {
    Schema schema;
    schema.tables.reserve(facts_.size());
    for (std::size_t t = 0; t < facts_.size(); ++t) {
        const OfTable& of = facts_[t];
        TableSchema& table = schema.tables.emplace_back(TableSchema{(*tables_)[t], of.rows});
        const std::size_t columns = table.table->columns.size();
        table.fields.reserve(columns);
        for (std::size_t c = 0; c < columns; ++c) {
            table.fields.push_back(fieldOf(of.firstColumn + c));
        }
        table.missing = of.ordinals.missing();
        table.repeated = of.ordinals.repeated();
        if (of.own != kNone) {
            table.own = of.own;
            table.key = of.ordinals.unique();
        }
    }
    for (std::size_t t = 0; t < facts_.size(); ++t) {
        const OfTable& of = facts_[t];
        if (of.parent != kNone) {
            const OfTable& above = facts_[of.parent];
            const uint64_t orphans = of.parents.orphans(above.ordinals);
            schema.tables[t].parent = {
                of.parent, of.parentColumn,           above.own,
                orphans,   of.parents.onePerParent(), orphans == 0 && schema.tables[of.parent].key};
        }
    }
    return schema;
}

SchemaBuilder::Batch factsOf(const Document& document, const std::vector<const Table*>& tables,
                             bool carry, const SchemaBuilder& noRows) {
    TablePass pass(document, tables, false, carry);
    SchemaBuilder builder = noRows;
    ItemRows rows(document, tables);
    for (PassItem item; pass.next(item);) {
        rows.take(item, builder);
    }
    return builder.takeBatch(noRows);
}

Schema schemaOf(const Document& document, const std::vector<const Table*>& tables, bool retain,
                bool carry, unsigned threads, const SchemaOptions& options) {
    TablePass pass(document, tables, retain, carry);
    return schemaOf(document, tables, pass, threads, options);
}

Schema schemaOf(const Document& document, const std::vector<const Table*>& tables, TablePass& pass,
                unsigned threads, const SchemaOptions& options,
                const std::function<void(uint64_t)>& onRows, uint64_t* rejected) {
    SchemaBuilder builder(document, tables, options);
    const auto tell = [&](uint64_t rows, uint64_t rejectedValues) {
        if (onRows) {
            onRows(rows);
        }
        if (rejected != nullptr) {
            *rejected += rejectedValues;
        }
    };
    if (pass.works()) {
        const SchemaBuilder noRows = builder;
        pass.work([&] { return std::make_unique<FactsWork>(document, tables, noRows); },
                  [&](std::unique_ptr<RowResult> result) {
                      const auto& part = static_cast<const PartFacts&>(*result);
                      builder.add(part.batch);
                      tell(part.rows, part.rejected);
                  });
    } else {
        ItemRows rows(document, tables);
        runPass(pass, threads, [&](std::span<const PassItem> items) {
            uint64_t count = 0;
            for (const PassItem& item : items) {
                count += rows.take(item, builder);
            }
            tell(count, rows.takeRejected());
        });
    }
    return builder.end();
}

}  // namespace qvej
