// See sqlite_database.h.
#include "formats/sqlite/sqlite_database.h"

#include "client/error.h"
#include "formats/sqlite/sqlite_sink.h"
#include "formats/sqlite/sqlite_types.h"

#include <utility>

namespace qvej {

namespace {

constexpr int kWaitMs = 5000;  // for another program that writes
constexpr std::size_t kExactDigits = 15;

// A new file needs neither journal nor locks.
constexpr char kNewFile[] =
    "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA locking_mode = EXCLUSIVE";

constexpr char kLargePages[] = "PRAGMA page_size = 16384";  // else 4096

QVStatus statusOf(int code) {
    switch (code & 0xFF) {
        case SQLITE_NOMEM:
            return QV_NOMEM;
        case SQLITE_CONSTRAINT:
            return QV_IO_REFUSED;
        case SQLITE_CANTOPEN:
        case SQLITE_BUSY:
        case SQLITE_NOTADB:
            return QV_IO_OPEN;
        default:
            return QV_IO_WRITE;
    }
}

std::string textAt(const SqliteStatement& statement, int column) {
    const auto* const text =
        reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), column));
    return text == nullptr
               ? std::string()
               : std::string(
                     text, static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), column)));
}

}  // namespace

SqliteDatabase::SqliteDatabase(const std::string& file, std::string shownFile, bool isNew,
                               bool largePages)
    : shownFile_(std::move(shownFile)) {
    sqlite3* database = nullptr;
    // With "./", no name means anything else to the library.
    const int code =
        sqlite3_open_v2((file.starts_with('/') ? file : "./" + file).c_str(), &database,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    database_.reset(database);
    check(code);
    check(sqlite3_extended_result_codes(database, 1));
    check(sqlite3_busy_timeout(database, kWaitMs));
    run("PRAGMA foreign_keys = OFF");  // rows of a child may come before those of its parent
    if (isNew) {
        run(largePages ? kLargePages : "");
        run(kNewFile);
    }
    run("BEGIN IMMEDIATE");
}

// After a failed write the library leaves what was there in the journal, for the next that reads
// the file: that is done here.
SqliteDatabase::~SqliteDatabase() {
    for (const char* const sql : {"ROLLBACK", "SELECT 1 FROM sqlite_schema"}) {
        if (database_ != nullptr) {
            (void)sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr);
        }
    }
}

const DatabaseLimits& SqliteDatabase::limits() const {
    return sqliteLimits();
}

void SqliteDatabase::fail(int code) const {
    const char* const sentence =
        database_ == nullptr ? sqlite3_errstr(code) : sqlite3_errmsg(database_.get());
    throw Error(statusOf(code), sentence, shownFile_);
}

void SqliteDatabase::run(const std::string& sql) {
    check(sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr));
}

SqliteStatement SqliteDatabase::prepare(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v3(database_.get(), sql.c_str(), static_cast<int>(sql.size()) + 1,
                             SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
    return SqliteStatement(statement);
}

void SqliteDatabase::step(const SqliteStatement& statement) {
    const int code = sqlite3_step(statement.get());
    if (code != SQLITE_DONE) {
        fail(code);
    }
    check(sqlite3_reset(statement.get()));
}

Database::Rows SqliteDatabase::query(const std::string& sql) {
    const SqliteStatement statement = prepare(sql);
    const int columns = sqlite3_column_count(statement.get());
    Rows rows;
    int code = 0;
    while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
        std::vector<std::string>& row = rows.emplace_back();
        for (int column = 0; column < columns; ++column) {
            row.push_back(textAt(statement, column));
        }
    }
    if (code != SQLITE_DONE) {
        fail(code);
    }
    return rows;
}

std::vector<DatabaseObject> SqliteDatabase::objects() {
    std::vector<DatabaseObject> objects;
    for (std::vector<std::string>& row :
         query("SELECT name, type FROM sqlite_schema WHERE type <> 'trigger'")) {
        objects.push_back({std::move(row[0]), row[1] == "table"});
    }
    return objects;
}

std::vector<DatabaseColumn> SqliteDatabase::columnsOf(const std::string& table) {
    std::vector<DatabaseColumn> columns;
    for (std::vector<std::string>& row :
         query("SELECT name, type, pk FROM pragma_table_info(" + quotedText(table) + ")")) {
        columns.push_back({std::move(row[0]), std::move(row[1]), row[2] != "0"});
    }
    return columns;
}

std::string SqliteDatabase::typeOf(const Field& field) const {
    return sqliteTypeOf(field);
}

std::optional<DataType> SqliteDatabase::writtenAs(const Field& field,
                                                  const std::string& type) const {
    if (type == typeOf(field)) {
        return field.type;
    }
    if (type == "TEXT") {
        return DataType{};
    }
    const bool whole = field.type.kind == DataType::BIGINT && field.longest <= kExactDigits;
    if ((type == "REAL" && whole) ||
        (type == "ANY" && (whole || field.type.kind == DataType::DOUBLE))) {
        return DataType{DataType::DOUBLE};
    }
    return std::nullopt;
}

std::unique_ptr<Sink> SqliteDatabase::sink(const TargetTable& table,
                                           const std::string& columnList) {
    return std::make_unique<SqliteSink>(*this, table, columnList);
}

std::unique_ptr<Sink> SqliteDatabase::pieceSink(const TargetTable& table) const {
    return std::make_unique<SqliteRowSink>(table);
}

void SqliteDatabase::checkForeignKeys() {
    const Rows broken =
        query("SELECT \"table\", parent, count(*) FROM pragma_foreign_key_check GROUP BY 1, 2");
    if (!broken.empty()) {
        const std::string& count = broken[0][2];
        throw Error(QV_IO_REFUSED,
                    parentsMissing(count + (count == "1" ? " row of " : " rows of ") + broken[0][0],
                                   broken[0][1]),
                    shownFile_);
    }
}

void SqliteDatabase::commit() {
    run("COMMIT");
    check(sqlite3_close(database_.release()));
}

}  // namespace qvej
