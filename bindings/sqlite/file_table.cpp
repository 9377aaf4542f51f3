// See file_table.h.
#include "bindings/sqlite/file_table.h"

#include "bindings/sqlite/failure.h"
#include "bindings/sqlite/interrupt.h"
#include "bindings/sqlite/open_file.h"
#include "bindings/sqlite/row_walk.h"
#include "client/error.h"
#include "formats/sqlite/sqlite_types.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace qvej::sqlite {

namespace {

// What a plan uses, as the number that it passes on: the ordinal column in the upper bits.
enum : int { EQUAL = 1, AT_LEAST = 2, AT_MOST = 4, COLUMN_SHIFT = 3 };

struct FileTable : sqlite3_vtab {
    FileTable(sqlite3* database, SharedFiles of)
        : sqlite3_vtab{}, connection(database), files(std::move(of)) {}
    sqlite3* connection;
    SharedFiles files;
    FileOptions options = {};
    std::string table = {};
    TableShape shape = {};  // as it was declared
    uint64_t rows = 0;
    uint64_t parents = 0;  // rows of the table above
};

struct RowCursor : sqlite3_vtab_cursor {
    explicit RowCursor(RowWalk rows) : sqlite3_vtab_cursor{}, walk(std::move(rows)) {}
    RowWalk walk;
    bool atEnd = true;
    std::string buffer = {};
};

FileTable& tableOf(sqlite3_vtab* table) {
    return *static_cast<FileTable*>(table);
}

RowCursor& cursorOf(sqlite3_vtab_cursor* cursor) {
    return *static_cast<RowCursor*>(cursor);
}

// A routine of a cursor, whose message goes to its table.
template <class Routine>
int guardedCursor(sqlite3_vtab_cursor* cursor, const Routine& routine) noexcept {
    return guarded(&cursor->pVtab->zErrMsg, [&] {
        const Interruptible work(tableOf(cursor->pVtab).connection);
        routine(cursorOf(cursor));
        return SQLITE_OK;
    });
}

void parseArguments(FileTable& table, int argc, const char* const* argv) {
    constexpr int kFirst = 3;  // after the names of module, database and table
    if (std::string_view(argv[1]) != "temp") {
        throw Error(QV_BADPARMS,
                    std::string("a database file keeps no tables of other files: create virtual "
                                "table temp.") +
                        argv[2]);
    }
    if (argc > kFirst) {
        table.options.file = unquoted(argv[kFirst]);
    }
    if (table.options.file.empty()) {
        throw Error(QV_BADPARMS, "a file was expected: qvejmap('orders.json', table=orders)");
    }
    for (int i = kFirst + 1; i < argc; ++i) {
        const Setting setting = settingOf(argv[i]);
        if (setting.name == "table") {
            table.table = setting.value;
        } else if (!table.options.set(setting.name, setting.value)) {
            throwUnknown(setting.name, ", table");
        }
    }
}

// The table that the arguments name: the only one, when they name none.
std::size_t positionIn(const OpenFile& file, const std::string& table) {
    return table.empty() && file.names().size() == 1 ? 0 : file.find(table);
}

std::string declarationOf(const TableShape& shape) {
    std::string sql;
    for (std::size_t c = 0; c < shape.names.size(); ++c) {
        sql += (sql.empty() ? "" : ", ") + quotedName(shape.names[c]) + " " + shape.types[c];
    }
    return "CREATE TABLE x(" + sql + ")";
}

int connect(sqlite3* database, void* files, int argc, const char* const* argv, sqlite3_vtab** made,
            char** message) noexcept {
    return guarded(message, [&] {
        const Interruptible work(database);
        auto table = std::make_unique<FileTable>(database, *static_cast<SharedFiles*>(files));
        parseArguments(*table, argc, argv);
        const std::shared_ptr<const OpenFile> file = table->files->open(table->options);
        const std::size_t position = positionIn(*file, table->table);
        const TableSchema& schema = file->schema().tables[position];
        table->shape = file->shapeOf(position);
        table->rows = schema.rows;
        table->parents = schema.parent ? file->schema().tables[schema.parent->table].rows : 0;
        (void)sqlite3_vtab_config(database, SQLITE_VTAB_DIRECTONLY);
        const int code = sqlite3_declare_vtab(database, declarationOf(table->shape).c_str());
        if (code != SQLITE_OK) {
            throw Error(QV_UNSUPPORTED, sqlite3_errmsg(database), table->options.file);
        }
        *made = table.release();
        return SQLITE_OK;
    });
}

// Another routine than `connect`: else there would be a table without arguments.
int create(sqlite3* database, void* files, int argc, const char* const* argv, sqlite3_vtab** made,
           char** message) noexcept {
    return connect(database, files, argc, argv, made, message);
}

int disconnect(sqlite3_vtab* table) noexcept {
    delete &tableOf(table);
    return SQLITE_OK;
}

// ---- plans ----

int useOf(unsigned char op) {
    switch (op) {
        case SQLITE_INDEX_CONSTRAINT_EQ:
            return EQUAL;
        case SQLITE_INDEX_CONSTRAINT_GT:
        case SQLITE_INDEX_CONSTRAINT_GE:
            return AT_LEAST;
        case SQLITE_INDEX_CONSTRAINT_LT:
        case SQLITE_INDEX_CONSTRAINT_LE:
            return AT_MOST;
        default:
            return 0;
    }
}

// Gives the conditions on one ordinal to the filter, which needs not be exact: SQLite looks at the
// rows again.  Returns the uses.
int useConstraints(sqlite3_index_info& plan, int column) {
    int uses = 0;
    int arguments = 0;
    // In the order of the bits, as the filter takes them.
    for (const int use : {int{EQUAL}, int{AT_LEAST}, int{AT_MOST}}) {
        for (int i = 0; i < plan.nConstraint && (uses & (use | EQUAL)) == 0; ++i) {
            const auto& constraint = plan.aConstraint[i];
            if (constraint.usable != 0 && constraint.iColumn == column &&
                useOf(constraint.op) == use) {
                plan.aConstraintUsage[i].argvIndex = ++arguments;
                uses |= use;
            }
        }
    }
    return uses;
}

// The ordinal whose conditions leave the fewest rows: the own one, else that of the parents, else
// any other with a condition.
int bestColumn(const sqlite3_index_info& plan, const TableShape& shape) {
    int best = -1;
    int bestRank = 0;
    for (int i = 0; i < plan.nConstraint; ++i) {
        const auto& constraint = plan.aConstraint[i];
        const int use = useOf(constraint.op);
        if (constraint.usable == 0 || use == 0 || constraint.iColumn < 0) {
            continue;
        }
        const auto column = static_cast<std::size_t>(constraint.iColumn);
        const int rank = !shape.ordinals[column]  ? 0
                         : column == shape.own    ? 3
                         : column == shape.parent ? 2
                                                  : 1;
        const int weighted = rank == 0 ? 0 : rank + (use == EQUAL ? 3 : 0);
        if (weighted > bestRank) {
            bestRank = weighted;
            best = constraint.iColumn;
        }
    }
    return best;
}

// Rows that are left, nearly.
double rowsLeft(const FileTable& table, int column, int uses) {
    const auto rows = static_cast<double>(std::max<uint64_t>(table.rows, 1));
    if (uses == 0) {
        return rows;
    }
    if ((uses & EQUAL) == 0) {
        return rows / (uses == (AT_LEAST | AT_MOST) ? 16 : 4);
    }
    const bool own = static_cast<std::size_t>(column) == table.shape.own;
    return own && table.shape.key
               ? 1
               : rows / static_cast<double>(std::max<uint64_t>(table.parents, 1));
}

int bestIndex(sqlite3_vtab* vtab, sqlite3_index_info* plan) noexcept {
    constexpr double kStart = 10;  // of a walk, in rows
    const FileTable& table = tableOf(vtab);
    const int column = bestColumn(*plan, table.shape);
    const int uses = column < 0 ? 0 : useConstraints(*plan, column);
    plan->idxNum = uses == 0 ? 0 : column << COLUMN_SHIFT | uses;
    const double rows = std::max(1.0, rowsLeft(table, column, uses));
    plan->estimatedRows = static_cast<sqlite3_int64>(rows);
    plan->estimatedCost = kStart + rows;
    const bool key = table.shape.key;
    const int own = key ? static_cast<int>(*table.shape.own) : -1;
    if (key && column == own && (uses & EQUAL) != 0) {
        plan->idxFlags = SQLITE_INDEX_SCAN_UNIQUE;
    }
    if (key && plan->nOrderBy != 0 && plan->aOrderBy[0].iColumn == own &&
        plan->aOrderBy[0].desc == 0) {
        plan->orderByConsumed = 1;  // what follows orders nothing: no two are equal
    }
    return SQLITE_OK;
}

// ---- rows ----

// The file may have changed since the table was declared, or the statement prepared.
int open(sqlite3_vtab* vtab, sqlite3_vtab_cursor** made) noexcept {
    return guarded(&vtab->zErrMsg, [&] {
        FileTable& table = tableOf(vtab);
        const Interruptible work(table.connection);
        std::shared_ptr<const OpenFile> file = table.files->open(table.options);
        const std::size_t position = positionIn(*file, table.table);
        if (file->shapeOf(position) != table.shape) {
            throw Error(QV_UNSUPPORTED,
                        "it has changed, and its table " + file->names()[position] +
                            " has other columns, types or keys now: drop the virtual table and "
                            "create it anew",
                        table.options.file);
        }
        table.rows = file->schema().tables[position].rows;
        *made = new RowCursor(RowWalk(std::move(file), position));
        return SQLITE_OK;
    });
}

int close(sqlite3_vtab_cursor* cursor) noexcept {
    delete &cursorOf(cursor);
    return SQLITE_OK;
}

// Narrows the range by a condition.  False: no row can meet it.
bool narrow(OrdinalRange& range, int use, sqlite3_value* value) {
    constexpr double kTooLarge = 9.2e18;
    int64_t low = range.low;
    int64_t high = range.high;
    switch (sqlite3_value_numeric_type(value)) {
        case SQLITE_NULL:
            return false;
        case SQLITE_INTEGER:
            low = high = sqlite3_value_int64(value);
            break;
        case SQLITE_FLOAT: {
            const double number = std::clamp(sqlite3_value_double(value), -kTooLarge, kTooLarge);
            low = static_cast<int64_t>(std::floor(number));
            high = static_cast<int64_t>(std::ceil(number));
            break;
        }
        default:  // SQLite will see
            break;
    }
    range.low = (use & AT_MOST) != 0 ? range.low : low;
    range.high = (use & AT_LEAST) != 0 ? range.high : high;
    return true;
}

int filter(sqlite3_vtab_cursor* vtabCursor, int plan, const char* /*text*/, int argc,
           sqlite3_value** argv) noexcept {
    return guardedCursor(vtabCursor, [&](RowCursor& cursor) {
        OrdinalRange range;
        cursor.atEnd = true;
        int argument = 0;
        for (const int use : {int{EQUAL}, int{AT_LEAST}, int{AT_MOST}}) {
            if ((plan & use) != 0 && argument < argc && !narrow(range, use, argv[argument++])) {
                return;
            }
        }
        const auto column = static_cast<std::size_t>(plan >> COLUMN_SHIFT);
        const std::size_t table = cursor.walk.table();
        if (plan != 0 && cursor.walk.file().ascends(table, column)) {
            range.column = column;
        } else {
            range = {};
        }
        cursor.walk.begin(range);
        cursor.atEnd = !cursor.walk.next();
    });
}

int next(sqlite3_vtab_cursor* vtabCursor) noexcept {
    return guardedCursor(vtabCursor, [](RowCursor& cursor) {
        cursor.atEnd = true;
        cursor.atEnd = !cursor.walk.next();
    });
}

int eof(sqlite3_vtab_cursor* cursor) noexcept {
    return cursorOf(cursor).atEnd ? 1 : 0;
}

// Values are made for those columns only that are asked for.
int column(sqlite3_vtab_cursor* vtabCursor, sqlite3_context* result, int at) noexcept {
    return guardedCursor(vtabCursor, [&](RowCursor& cursor) {
        const auto c = static_cast<std::size_t>(at);
        const SqliteValue value = sqliteValueOf(cursor.walk.row().cell(c),
                                                cursor.walk.schema().fields[c].type, cursor.buffer);
        switch (value.kind) {
            case SqliteValue::NUL:
                sqlite3_result_null(result);
                break;
            case SqliteValue::WHOLE:
                sqlite3_result_int64(result, value.whole);
                break;
            case SqliteValue::REAL:
                sqlite3_result_double(result, value.real);
                break;
            case SqliteValue::TEXT:
                sqlite3_result_text64(result, value.text.empty() ? "" : value.text.data(),
                                      value.text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
        }
    });
}

int rowid(sqlite3_vtab_cursor* cursor, sqlite3_int64* number) noexcept {
    *number = static_cast<sqlite3_int64>(cursorOf(cursor).walk.row().rows());
    return SQLITE_OK;
}

sqlite3_module moduleOf() {
    sqlite3_module module = {};
    module.iVersion = 1;
    module.xCreate = create;
    module.xConnect = connect;
    module.xBestIndex = bestIndex;
    module.xDisconnect = disconnect;
    module.xDestroy = disconnect;
    module.xOpen = open;
    module.xClose = close;
    module.xFilter = filter;
    module.xNext = next;
    module.xEof = eof;
    module.xColumn = column;
    module.xRowid = rowid;
    return module;
}

}  // namespace

const sqlite3_module kFileTable = moduleOf();

}  // namespace qvej::sqlite
