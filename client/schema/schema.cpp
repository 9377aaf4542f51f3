// See schema.h.
#include "client/schema/schema.h"

#include "client/pass_pipe.h"

#include <algorithm>
#include <memory>
#include <string>
#include <unordered_map>

namespace qvej {
namespace {

std::optional<uint64_t> countOf(const PassRow& row, std::size_t column) {
    const Cell cell = row.cell(column);
    return cell.kind == Cell::COUNT ? std::optional(cell.count) : std::nullopt;
}

bool isOrdinal(const Column& column) {
    return column.type == ColumnType::ORDINAL && !column.path.empty();
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
            row = std::make_unique<PassRow>(document_, *tables_[item.table]);
        }
        if (!row->take(item)) {
            return 0;
        }
        builder.take(item.table, *row);
        return 1;
    }

   private:
    const Document& document_;
    const std::vector<const Table*>& tables_;
    std::vector<std::unique_ptr<PassRow>> rows_;
};

// Facts of the rows of a part, found where they are made.
struct PartFacts final : RowResult {
    explicit PartFacts(const SchemaBuilder& noRows) : builder(noRows) {}
    SchemaBuilder builder;
    uint64_t rows = 0;
};

class FactsWork final : public RowWork {
   public:
    FactsWork(const Document& document, const std::vector<const Table*>& tables,
              const SchemaBuilder& noRows)
        : noRows_(noRows), rows_(document, tables) {}

    void take(const PassItem& item) override {
        if (facts_ == nullptr) {
            facts_ = std::make_unique<PartFacts>(noRows_);
        }
        facts_->rows += rows_.take(item, facts_->builder);
    }
    [[nodiscard]] bool full() const override { return false; }
    [[nodiscard]] std::unique_ptr<RowResult> result() override { return std::move(facts_); }

   private:
    const SchemaBuilder& noRows_;
    ItemRows rows_;
    std::unique_ptr<PartFacts> facts_;
};

}  // namespace

SchemaBuilder::SchemaBuilder(const Document& document, const std::vector<const Table*>& tables,
                             const SchemaOptions& options)
    : tables_(tables), options_(options), facts_(tables.size()) {
    for (std::size_t t = 0; t < tables.size(); ++t) {
        OfTable& of = facts_[t];
        std::size_t depth = 0;  // bytes of the longest path
        for (std::size_t c = 0; c < tables[t]->columns.size(); ++c) {
            const Column column = tables[t]->columns[c];
            if (!of.columns.emplace_back(document, column).settled() || options.counts) {
                of.open.push_back(c);
            }
            if (isOrdinal(column) && column.path.size() >= depth) {
                depth = column.path.size();
                of.own = c;
            }
        }
    }
    findParents();
}

// The parent of a table is the one whose own ordinal is the deepest of those above the own one.
void SchemaBuilder::findParents() {
    std::unordered_map<std::string, std::size_t> byOrdinal;  // path of the own one: the first table
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        if (facts_[t].own && !tables_[t]->alldata) {
            byOrdinal.emplace(tables_[t]->columns[*facts_[t].own].path, t);
        }
    }
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        OfTable& of = facts_[t];
        std::size_t depth = 0;
        for (std::size_t c = 0; of.own && c < of.columns.size(); ++c) {
            const Column column = tables_[t]->columns[c];
            const auto above = byOrdinal.find(column.path);
            if (c == *of.own || !isOrdinal(column) || column.path.size() < depth ||
                above == byOrdinal.end() || above->second == t) {
                continue;
            }
            depth = column.path.size();
            of.parent = {above->second, c, *facts_[above->second].own};
        }
    }
}

void SchemaBuilder::takeOpen(OfTable& of, const PassRow& row) {
    bool settled = false;
    for (const std::size_t c : of.open) {
        of.columns[c].take(row.at(c));
        settled |= of.columns[c].settled();
    }
    if (settled) {
        closeSettled(of);
    }
}

void SchemaBuilder::closeSettled(OfTable& of) const {
    if (!options_.counts) {
        std::erase_if(of.open, [&](std::size_t c) { return of.columns[c].settled(); });
    }
}

void SchemaBuilder::take(std::size_t table, const PassRow& row) {
    OfTable& of = facts_[table];
    ++of.rows;
    takeOpen(of, row);
    if (of.own) {
        of.ordinals.take(countOf(row, *of.own));
    }
    if (of.parent) {
        of.parents.take(countOf(row, of.parent->column), facts_[of.parent->table].ordinals);
    }
}

void SchemaBuilder::add(const SchemaBuilder& later) {
    for (std::size_t t = 0; t < facts_.size(); ++t) {
        OfTable& of = facts_[t];
        const OfTable& more = later.facts_[t];
        if (more.rows == 0) {
            continue;
        }
        of.rows += more.rows;
        for (const std::size_t c : of.open) {
            of.columns[c].add(more.columns[c]);
        }
        closeSettled(of);
        of.ordinals.add(more.ordinals);
    }
    // Now that all rows above are known.
    for (std::size_t t = 0; t < facts_.size(); ++t) {
        OfTable& of = facts_[t];
        if (of.parent && later.facts_[t].rows != 0) {
            of.parents.add(later.facts_[t].parents, facts_[of.parent->table].ordinals);
        }
    }
}

Schema SchemaBuilder::end() const {
    Schema schema;
    schema.tables.reserve(tables_.size());
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        const OfTable& of = facts_[t];
        TableSchema table = {tables_[t], of.rows};
        for (const ColumnFacts& facts : of.columns) {
            table.fields.push_back({facts.type(options_.dates), facts.filled(), facts.longest(),
                                    facts.minusZero(),
                                    facts.looksLikeSeconds()        ? Field::SECONDS
                                    : facts.looksLikeMilliseconds() ? Field::MILLISECONDS
                                                                    : Field::NO_UNIX});
        }
        table.own = of.own;
        table.missing = of.ordinals.missing();
        table.repeated = of.ordinals.repeated();
        table.key = of.own && of.ordinals.unique();
        table.parent = of.parent;
        schema.tables.push_back(std::move(table));
    }
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        std::optional<ParentKey>& parent = schema.tables[t].parent;
        if (parent) {
            parent->orphans = facts_[t].parents.orphans(facts_[parent->table].ordinals);
            parent->one = facts_[t].parents.onePerParent();
            parent->foreignKey = parent->orphans == 0 && schema.tables[parent->table].key;
        }
    }
    return schema;
}

Schema schemaOf(const Document& document, const std::vector<const Table*>& tables, bool retain,
                bool carry, unsigned threads, const SchemaOptions& options) {
    TablePass pass(document, tables, retain, carry);
    return schemaOf(document, tables, pass, threads, options);
}

Schema schemaOf(const Document& document, const std::vector<const Table*>& tables, TablePass& pass,
                unsigned threads, const SchemaOptions& options,
                const std::function<void(uint64_t)>& onRows) {
    SchemaBuilder builder(document, tables, options);
    const auto tell = [&](uint64_t rows) {
        if (onRows) {
            onRows(rows);
        }
    };
    if (pass.works()) {
        const SchemaBuilder noRows = builder;
        pass.work([&] { return std::make_unique<FactsWork>(document, tables, noRows); },
                  [&](std::unique_ptr<RowResult> result) {
                      const auto& part = static_cast<const PartFacts&>(*result);
                      builder.add(part.builder);
                      tell(part.rows);
                  });
    } else {
        ItemRows rows(document, tables);
        runPass(pass, threads, [&](std::span<const PassItem> items) {
            uint64_t count = 0;
            for (const PassItem& item : items) {
                count += rows.take(item, builder);
            }
            tell(count);
        });
    }
    return builder.end();
}

}  // namespace qvej
