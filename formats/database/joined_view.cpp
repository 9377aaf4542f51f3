// See joined_view.h.
#include "formats/database/joined_view.h"

#include "client/text.h"

#include <unordered_set>
#include <utility>

namespace qvej {

namespace {

std::string lastName(const Table& table) {
    const std::string path = table.objectPath().empty() ? table.path() : table.objectPath();
    return path.empty() ? table.name : std::string(lastPiece(path));
}

class Join {
   public:
    Join(const Schema& schema, const std::vector<TargetTable>& tables,
         const std::vector<std::vector<std::size_t>>& children, const DatabaseLimits& limits)
        : schema_(schema), tables_(tables), children_(children), limits_(limits) {}

    void addBase(std::size_t table) {
        from_ = quotedName(tables_[table].name) + " AS t0";
        for (const TargetColumn& column : tables_[table].columns) {
            addColumn(0, column.name, column.name);
        }
        addChildren(table, 0);
    }

    [[nodiscard]] std::string select() const {
        if (joined_ > limits_.joined || names_.size() > limits_.columns) {
            return {};
        }
        const std::vector<std::string> names = fittedNames(names_, limits_.columnNames).names;
        std::string sql = "SELECT ";
        for (std::size_t i = 0; i < names.size(); ++i) {
            sql += (i == 0 ? "" : ", ") + places_[i] + " AS " + quotedName(names[i]);
        }
        return sql + " FROM " + from_;
    }

   private:
    void addChildren(std::size_t table, std::size_t alias) {
        for (const std::size_t child : children_[table]) {
            if (++joined_ <= limits_.joined) {
                addChild(child, joined_ - 1, alias);
            }
        }
    }

    void addChild(std::size_t child, std::size_t alias, std::size_t above) {
        const TableSchema& of = schema_.tables[child];
        const TargetTable& target = tables_[child];
        const std::string& parentKey = tables_[of.parent->table].columns[of.parent->ordinal].name;
        from_ += " LEFT JOIN " + quotedName(target.name) + " AS t" + std::to_string(alias) +
                 " ON " + place(alias, target.columns[of.parent->column].name) + " = " +
                 place(above, parentKey);
        for (std::size_t c = 0; c < target.columns.size(); ++c) {
            const std::string& name = target.columns[c].name;
            if (of.table->columns.type(c) != ColumnType::ORDINAL) {
                addColumn(
                    alias, name,
                    used_.contains(lowerCased(name)) ? lastName(*of.table) + "_" + name : name);
            }
        }
        addChildren(child, alias);
    }

    void addColumn(std::size_t alias, const std::string& column, std::string name) {
        used_.insert(lowerCased(name));
        names_.push_back(std::move(name));
        places_.push_back(place(alias, column));
    }

    static std::string place(std::size_t alias, const std::string& column) {
        return "t" + std::to_string(alias) + "." + quotedName(column);
    }

    const Schema& schema_;
    const std::vector<TargetTable>& tables_;
    const std::vector<std::vector<std::size_t>>& children_;
    const DatabaseLimits& limits_;
    std::size_t joined_ = 1;  // tables
    std::string from_;
    std::vector<std::string> names_, places_;
    std::unordered_set<std::string> used_;  // names in small letters
};

}  // namespace

std::vector<std::vector<std::size_t>> oneToOneChildren(const Schema& schema) {
    std::vector<std::vector<std::size_t>> children(schema.tables.size());
    for (std::size_t t = 0; t < schema.tables.size(); ++t) {
        const std::optional<ParentKey>& parent = schema.tables[t].parent;
        if (parent && parent->one && parent->foreignKey && schema.tables[t].rows != 0) {
            children[parent->table].push_back(t);
        }
    }
    return children;
}

std::string joinedSelect(const Schema& schema, const std::vector<TargetTable>& tables,
                         const std::vector<std::vector<std::size_t>>& children, std::size_t table,
                         const DatabaseLimits& limits) {
    Join join(schema, tables, children, limits);
    join.addBase(table);
    return join.select();
}

}  // namespace qvej
