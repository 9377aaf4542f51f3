// See catalog.h.
#include "bindings/sqlite/catalog.h"

#include "bindings/sqlite/failure.h"
#include "bindings/sqlite/interrupt.h"
#include "bindings/sqlite/open_file.h"
#include "client/document.h"
#include "client/error.h"
#include "client/text.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>

namespace qvej::sqlite {

namespace {

using Value = std::variant<std::monostate, int64_t, std::string>;

// The rows of a listing, one after the other.
class Listing {
   public:
    Listing() = default;
    virtual ~Listing() = default;
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;

    // False after the last row.
    virtual bool next() = 0;
    [[nodiscard]] virtual Value value(int column) const = 0;
};

// name, path, rows, columns, key, parent
class TableListing final : public Listing {
   public:
    static constexpr char kFunction[] = "qvejmap_tables";
    static constexpr int kVisible = 6;
    static constexpr bool kRecords = false;
    static constexpr char kDeclaration[] =
        "name TEXT, path TEXT, rows INTEGER, columns INTEGER, "
        "key TEXT, parent TEXT";

    explicit TableListing(const OpenFile& file) : file_(file) {}

    bool next() override { return next_++ < file_.names().size(); }
    [[nodiscard]] Value value(int column) const override {
        const std::size_t at = next_ - 1;
        const TableSchema& of = file_.schema().tables[at];
        switch (column) {
            case 0:
                return file_.names()[at];
            case 1:
                return withSlashes(of.table->path());
            case 2:
                return static_cast<int64_t>(of.rows);
            case 3:
                return static_cast<int64_t>(of.table->columns.size());
            case 4:
                return of.key ? Value(file_.shapeOf(at).names[*of.own]) : Value();
            default:
                return of.parent ? Value(file_.names()[of.parent->table]) : Value();
        }
    }

   private:
    const OpenFile& file_;
    std::size_t next_ = 0;
};

// table, position, name, type, path, label
class ColumnListing final : public Listing {
   public:
    static constexpr char kFunction[] = "qvejmap_columns";
    static constexpr int kVisible = 6;
    static constexpr bool kRecords = false;
    static constexpr char kDeclaration[] =
        "\"table\" TEXT, position INTEGER, name TEXT, "
        "type TEXT, path TEXT, label TEXT";

    explicit ColumnListing(const OpenFile& file) : file_(file) {}

    bool next() override {
        ++column_;
        while (table_ < file_.names().size() && column_ >= shape_.names.size()) {
            if (begun_) {
                ++table_;
            }
            begun_ = true;
            column_ = 0;
            shape_ = table_ < file_.names().size() ? file_.shapeOf(table_) : TableShape{};
        }
        return table_ < file_.names().size();
    }
    [[nodiscard]] Value value(int column) const override {
        const auto text = [](std::string known) {
            return known.empty() ? Value() : Value(std::move(known));
        };
        switch (column) {
            case 0:
                return file_.names()[table_];
            case 1:
                return static_cast<int64_t>(column_) + 1;
            case 2:
                return shape_.names[column_];
            case 3:
                return shape_.types[column_];
            case 4:
                return text(withSlashes(described().path));
            default:
                return text(described().label);
        }
    }

   private:
    [[nodiscard]] Column described() const {
        return file_.schema().tables[table_].table->columns[column_];
    }

    const OpenFile& file_;
    bool begun_ = false;  // with a table
    std::size_t table_ = 0;
    std::size_t column_ = 0;
    TableShape shape_;  // of the table
};

// path, key, kind, value, ordinals: every value, with the number of each object and array that it
// is in, from the root on, as the ordinal columns of tables have them.
class ValueListing final : public Listing {
   public:
    static constexpr char kFunction[] = "qvejmap_all";
    static constexpr int kVisible = 5;
    static constexpr bool kRecords = true;
    static constexpr char kDeclaration[] =
        "path TEXT, key TEXT, kind TEXT, value TEXT, "
        "ordinals TEXT";

    explicit ValueListing(const OpenFile& file) : records_(file.document()) {}

    bool next() override {
        while (records_.next(record_)) {
            if (record_.kind == JMAP_KIND_NOVAL) {
                ++counts_[std::string(record_.path)];
            } else if (record_.kind != JMAP_KIND_FAKE_VARIABLE) {
                return true;
            }
        }
        return false;
    }
    [[nodiscard]] Value value(int column) const override {
        switch (column) {
            case 0:
                return withSlashes(record_.path);
            case 1:
                return std::string(lastPiece(record_.path));
            case 2:
                return std::string(record_.kindName);
            case 3:
                return record_.kind == JMAP_KIND_NULL
                           ? Value()
                           : Value(std::string(withoutUnfinished(record_.value)));
            default:
                return ordinals();
        }
    }

   private:
    // As a JSON array.
    [[nodiscard]] std::string ordinals() const {
        constexpr char kSeparator = 0x02;
        std::string text = "[";
        for (std::size_t at = 1; (at = record_.path.find(kSeparator, at)) != std::string_view::npos;
             ++at) {
            const auto count = counts_.find(std::string(record_.path.substr(0, at)));
            text += text.size() == 1 ? "" : ",";
            text += std::to_string(count == counts_.end() ? 0 : count->second);
        }
        return text + "]";
    }

    RecordCursor records_;
    Record record_ = {};
    std::unordered_map<std::string, uint64_t> counts_;  // by path
};

// ---- the modules; what the file and its options are, hidden columns say ----

constexpr int kOptions = 8;

struct ListingTable : sqlite3_vtab {
    ListingTable(sqlite3* database, SharedFiles of)
        : sqlite3_vtab{}, connection(database), files(std::move(of)) {}
    sqlite3* connection;
    SharedFiles files;
};

struct ListingCursor : sqlite3_vtab_cursor {
    std::array<std::optional<std::string>, 1 + kOptions> arguments;
    std::shared_ptr<const OpenFile> file;
    std::unique_ptr<Listing> listing;  // dies before the file
    bool atEnd = true;
    int64_t row = 0;
};

ListingTable& tableOf(sqlite3_vtab* table) {
    return *static_cast<ListingTable*>(table);
}

ListingCursor& cursorOf(sqlite3_vtab_cursor* cursor) {
    return *static_cast<ListingCursor*>(cursor);
}

template <class Rows>
int connect(sqlite3* database, void* files, int, const char* const*, sqlite3_vtab** made,
            char** message) noexcept {
    return guarded(message, [&] {
        std::string sql = std::string("CREATE TABLE x(") + Rows::kDeclaration + ", file HIDDEN";
        for (int i = 1; i <= kOptions; ++i) {
            sql += ", option" + std::to_string(i) + " HIDDEN";
        }
        (void)sqlite3_vtab_config(database, SQLITE_VTAB_DIRECTONLY);
        const int code = sqlite3_declare_vtab(database, (sql + ")").c_str());
        if (code == SQLITE_OK) {
            auto table =
                std::make_unique<ListingTable>(database, *static_cast<SharedFiles*>(files));
            *made = table.release();
        }
        return code;
    });
}

int disconnect(sqlite3_vtab* table) noexcept {
    delete &tableOf(table);
    return SQLITE_OK;
}

// Passes the hidden columns on that have a value; bits say which.
template <class Rows>
int bestIndex(sqlite3_vtab*, sqlite3_index_info* plan) noexcept {
    constexpr double kCost = 1000;
    std::array<int, 1 + kOptions> constraints;
    constraints.fill(-1);
    for (int i = 0; i < plan->nConstraint; ++i) {
        const auto& constraint = plan->aConstraint[i];
        const int hidden = constraint.iColumn - Rows::kVisible;
        if (hidden < 0 || constraint.op != SQLITE_INDEX_CONSTRAINT_EQ) {
            continue;
        }
        if (constraint.usable == 0) {
            return SQLITE_CONSTRAINT;  // another order of the join gives it
        }
        constraints.at(static_cast<std::size_t>(hidden)) = i;
    }
    int arguments = 0;
    for (std::size_t hidden = 0; hidden < constraints.size(); ++hidden) {
        if (constraints[hidden] >= 0) {
            plan->aConstraintUsage[constraints[hidden]] = {++arguments, 1};
            plan->idxNum |= 1 << hidden;
        }
    }
    plan->estimatedCost = kCost;
    plan->estimatedRows = static_cast<sqlite3_int64>(kCost);
    return SQLITE_OK;
}

int open(sqlite3_vtab* vtab, sqlite3_vtab_cursor** made) noexcept {
    return guarded(&vtab->zErrMsg, [&] {
        *made = new ListingCursor();
        return SQLITE_OK;
    });
}

int close(sqlite3_vtab_cursor* cursor) noexcept {
    delete &cursorOf(cursor);
    return SQLITE_OK;
}

FileOptions optionsOf(const ListingCursor& cursor, const std::string& function) {
    FileOptions options{cursor.arguments[0].value_or("")};
    if (options.file.empty()) {
        throw Error(QV_BADPARMS, "a file was expected: " + function + "('orders.json')");
    }
    for (std::size_t i = 1; i < cursor.arguments.size(); ++i) {
        if (cursor.arguments[i]) {
            const Setting setting = settingOf(*cursor.arguments[i]);
            if (!options.set(setting.name, setting.value)) {
                throwUnknown(setting.name, "");
            }
        }
    }
    return options;
}

int next(sqlite3_vtab_cursor* vtabCursor) noexcept {
    return guarded(&vtabCursor->pVtab->zErrMsg, [&] {
        const Interruptible work(tableOf(vtabCursor->pVtab).connection);
        ListingCursor& cursor = cursorOf(vtabCursor);
        cursor.atEnd = true;
        cursor.atEnd = !cursor.listing->next();
        ++cursor.row;
        return SQLITE_OK;
    });
}

template <class Rows>
int filter(sqlite3_vtab_cursor* vtabCursor, int plan, const char*, int,
           sqlite3_value** argv) noexcept {
    const int code = guarded(&vtabCursor->pVtab->zErrMsg, [&] {
        ListingCursor& cursor = cursorOf(vtabCursor);
        cursor.arguments = {};
        for (std::size_t i = 0; i < cursor.arguments.size(); ++i) {
            if ((plan >> i & 1) != 0) {
                const auto* const text = reinterpret_cast<const char*>(sqlite3_value_text(*argv++));
                cursor.arguments[i] = text == nullptr ? std::nullopt : std::optional(text);
            }
        }
        ListingTable& table = tableOf(vtabCursor->pVtab);
        const Interruptible work(table.connection);
        cursor.listing.reset();
        cursor.file = table.files->open(optionsOf(cursor, Rows::kFunction), Rows::kRecords);
        cursor.listing = std::make_unique<Rows>(*cursor.file);
        cursor.row = 0;
        return SQLITE_OK;
    });
    return code == SQLITE_OK ? next(vtabCursor) : code;
}

int eof(sqlite3_vtab_cursor* cursor) noexcept {
    return cursorOf(cursor).atEnd ? 1 : 0;
}

void give(sqlite3_context* result, const Value& value) {
    if (const auto* const number = std::get_if<int64_t>(&value)) {
        sqlite3_result_int64(result, *number);
    } else if (const auto* const text = std::get_if<std::string>(&value)) {
        sqlite3_result_text64(result, text->data(), text->size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    } else {
        sqlite3_result_null(result);
    }
}

template <class Rows>
int column(sqlite3_vtab_cursor* vtabCursor, sqlite3_context* result, int at) noexcept {
    return guarded(&vtabCursor->pVtab->zErrMsg, [&] {
        const ListingCursor& cursor = cursorOf(vtabCursor);
        if (at < Rows::kVisible) {
            give(result, cursor.listing->value(at));
        } else {
            const auto& argument =
                cursor.arguments.at(static_cast<std::size_t>(at - Rows::kVisible));
            give(result, argument ? Value(*argument) : Value());
        }
        return SQLITE_OK;
    });
}

int rowid(sqlite3_vtab_cursor* cursor, sqlite3_int64* number) noexcept {
    *number = cursorOf(cursor).row;
    return SQLITE_OK;
}

// Without xCreate: there is no table to be made, only the function.
template <class Rows>
sqlite3_module moduleOf() {
    sqlite3_module module = {};
    module.iVersion = 1;
    module.xConnect = connect<Rows>;
    module.xBestIndex = bestIndex<Rows>;
    module.xDisconnect = disconnect;
    module.xOpen = open;
    module.xClose = close;
    module.xFilter = filter<Rows>;
    module.xNext = next;
    module.xEof = eof;
    module.xColumn = column<Rows>;
    module.xRowid = rowid;
    return module;
}

}  // namespace

const sqlite3_module kTables = moduleOf<TableListing>();
const sqlite3_module kColumns = moduleOf<ColumnListing>();
const sqlite3_module kAll = moduleOf<ValueListing>();

}  // namespace qvej::sqlite
