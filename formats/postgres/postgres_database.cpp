// See postgres_database.h.
#include "formats/postgres/postgres_database.h"

#include "client/error.h"
#include "formats/postgres/copy_rows.h"
#include "formats/postgres/postgres_sink.h"

#include <libpq-fe.h>

#include <utility>

namespace qvej {

namespace {

constexpr std::size_t kLongestName = 63;  // bytes
constexpr std::size_t kColumns = 1600;
constexpr std::size_t kExactDigits = 15;
constexpr int kPiece = 1 << 20;  // bytes that go to the library at once

constexpr std::string_view kForeignKeyViolation = "23503";

// Columns that every table has.
const std::vector<std::string> kSystemColumns = {"cmax",     "cmin", "ctid",
                                                 "tableoid", "xmax", "xmin"};

constexpr std::string_view kHere =
    "pg_class c JOIN pg_namespace n ON n.oid = c.relnamespace "
    "WHERE n.nspname = current_schema()";

void passOver(void* /*nothing*/, const char* /*notice*/) {}

std::string fieldOf(const PGresult* result, int field) {
    const char* const text = PQresultErrorField(result, field);
    return text == nullptr ? std::string() : text;
}

// The library's messages end with a line feed, and may have several lines.
std::string oneLine(const std::string& text) {
    std::string line;
    for (const char c : text) {
        if (c != '\n') {
            line += c == '\t' ? ' ' : c;
        }
    }
    return line;
}

}  // namespace

void PostgresDatabase::Finish::operator()(pg_conn* connection) const {
    PQfinish(connection);
}

void PostgresDatabase::Clear::operator()(pg_result* result) const {
    PQclear(result);
}

PostgresDatabase::PostgresDatabase(const std::string& address, std::string shownAddress,
                                   const std::string& schema)
    : shownAddress_(std::move(shownAddress)), connection_(PQconnectdb(address.c_str())) {
    PGconn* const connection = connection_.get();
    if (connection == nullptr) {
        throw Error(QV_NOMEM);
    }
    if (PQstatus(connection) != CONNECTION_OK) {
        throw Error(QV_IO_OPEN, oneLine(PQerrorMessage(connection)), shownAddress_);
    }
    (void)PQsetNoticeProcessor(connection, passOver, nullptr);
    if (PQsetClientEncoding(connection, "UTF8") != 0) {
        fail(nullptr);
    }
    run("SET standard_conforming_strings = on");
    run("BEGIN");
    run("SET CONSTRAINTS ALL DEFERRED");
    if (!schema.empty()) {
        run("CREATE SCHEMA IF NOT EXISTS " + quotedName(schema));
        run("SET LOCAL search_path TO " + quotedName(schema));
    }
}

const DatabaseLimits& PostgresDatabase::limits() const {
    static const DatabaseLimits limits = {
        .product = "PostgreSQL",
        .tableNames = {.longest = kLongestName, .forbidden = kNul},
        .columnNames = {.longest = kLongestName, .forbidden = kNul, .taken = kSystemColumns},
        .columns = kColumns,
        .joined = kColumns,
        .emptyTables = true,
        .laterKeys = true,
        .fewTypes = false,
        .tableEnd = "",
    };
    return limits;
}

// What the server says, or else the library.
std::string PostgresDatabase::sentenceOf(const pg_result* result) const {
    std::string sentence = fieldOf(result, PG_DIAG_MESSAGE_PRIMARY);
    for (const int more : {PG_DIAG_MESSAGE_DETAIL, PG_DIAG_MESSAGE_HINT}) {
        const std::string text = fieldOf(result, more);
        sentence += text.empty() ? text : "; " + text;
    }
    return oneLine(sentence.empty() ? PQerrorMessage(connection_.get()) : sentence);
}

void PostgresDatabase::fail(const pg_result* result) const {
    throw Error(QV_IO_WRITE, sentenceOf(result), shownAddress_);
}

PostgresDatabase::Result PostgresDatabase::take(Result result, int expected) {
    if (PQresultStatus(result.get()) != expected) {
        fail(result.get());
    }
    return result;
}

void PostgresDatabase::run(const std::string& sql) {
    (void)take(Result(PQexec(connection_.get(), sql.c_str())), PGRES_COMMAND_OK);
}

Database::Rows PostgresDatabase::query(const std::string& sql) {
    const Result result = take(Result(PQexec(connection_.get(), sql.c_str())), PGRES_TUPLES_OK);
    Rows rows;
    for (int r = 0; r < PQntuples(result.get()); ++r) {
        std::vector<std::string>& row = rows.emplace_back();
        for (int c = 0; c < PQnfields(result.get()); ++c) {
            row.emplace_back(PQgetvalue(result.get(), r, c),
                             static_cast<std::size_t>(PQgetlength(result.get(), r, c)));
        }
    }
    return rows;
}

void PostgresDatabase::copy(const std::string& sql, std::string_view rows) {
    PGconn* const connection = connection_.get();
    (void)take(Result(PQexec(connection, sql.c_str())), PGRES_COPY_IN);
    const auto put = [&](std::string_view bytes) {
        for (std::size_t at = 0; at < bytes.size(); at += kPiece) {
            const std::string_view piece = bytes.substr(at, kPiece);
            if (PQputCopyData(connection, piece.data(), static_cast<int>(piece.size())) != 1) {
                fail(nullptr);
            }
        }
    };
    put(kCopyBegin);
    put(rows);
    put(kCopyEnd);
    if (PQputCopyEnd(connection, nullptr) != 1) {
        fail(nullptr);
    }
    (void)take(Result(PQgetResult(connection)), PGRES_COMMAND_OK);
    (void)PQgetResult(connection);  // null: there are no more
}

std::unique_ptr<Sink> PostgresDatabase::sink(const TargetTable& table,
                                             const std::string& columnList) {
    return std::make_unique<PostgresSink>(*this, table, columnList);
}

std::unique_ptr<Sink> PostgresDatabase::pieceSink(const TargetTable& table) const {
    return std::make_unique<CopyRowSink>(*this, table);
}

// The server names the key and its table; which table that refers to, it tells only when the failed
// statement has been taken back.
void PostgresDatabase::checkForeignKeys() {
    run("SAVEPOINT rows");
    const Result result(PQexec(connection_.get(), "SET CONSTRAINTS ALL IMMEDIATE"));
    if (PQresultStatus(result.get()) == PGRES_COMMAND_OK) {
        return;
    }
    if (fieldOf(result.get(), PG_DIAG_SQLSTATE) != kForeignKeyViolation) {
        fail(result.get());
    }
    run("ROLLBACK TO rows");
    const std::string table = fieldOf(result.get(), PG_DIAG_TABLE_NAME);
    const Rows parents = query(
        "SELECT p.relname FROM pg_constraint k JOIN pg_class c ON c.oid = k.conrelid JOIN "
        "pg_namespace n ON n.oid = c.relnamespace JOIN pg_class p ON p.oid = k.confrelid "
        "WHERE k.conname = " +
        quotedText(fieldOf(result.get(), PG_DIAG_CONSTRAINT_NAME)) +
        " AND c.relname = " + quotedText(table) +
        " AND n.nspname = " + quotedText(fieldOf(result.get(), PG_DIAG_SCHEMA_NAME)));
    if (parents.empty()) {
        fail(result.get());
    }
    throw Error(QV_IO_REFUSED,
                parentsMissing("rows of " + table, parents[0][0]) + ": " + sentenceOf(result.get()),
                shownAddress_);
}

std::vector<DatabaseObject> PostgresDatabase::objects() {
    std::vector<DatabaseObject> objects;
    for (std::vector<std::string>& row :
         query("SELECT relname, relkind IN ('r', 'p') FROM " + std::string(kHere))) {
        objects.push_back({std::move(row[0]), row[1] == "t"});
    }
    return objects;
}

std::vector<DatabaseColumn> PostgresDatabase::columnsOf(const std::string& table) {
    std::vector<DatabaseColumn> columns;
    for (std::vector<std::string>& row :
         query("SELECT a.attname, format_type(a.atttypid, a.atttypmod), EXISTS (SELECT FROM "
               "pg_index i WHERE i.indrelid = a.attrelid AND i.indisprimary AND a.attnum = ANY "
               "(i.indkey)) FROM pg_attribute a JOIN " +
               std::string(kHere).insert(kHere.find(" WHERE"), " ON a.attrelid = c.oid") +
               " AND c.relname = " + quotedText(table) +
               " AND a.attnum > 0 AND NOT a.attisdropped ORDER BY a.attnum")) {
        columns.push_back({std::move(row[0]), std::move(row[1]), row[2] == "t"});
    }
    return columns;
}

std::string PostgresDatabase::typeOf(const Field& field) const {
    const DataType& type = field.type;
    switch (type.kind) {
        case DataType::BOOLEAN:
            return "boolean";
        case DataType::BIGINT:
            return "bigint";
        case DataType::DOUBLE:
            return "double precision";
        case DataType::DECIMAL:
            return "numeric(" + std::to_string(type.precision) + "," + std::to_string(type.scale) +
                   ")";
        case DataType::DATE:
            return "date";
        case DataType::TIMESTAMP:
            return type.fraction > kMostFraction ? "text"
                   : type.utc                    ? "timestamp with time zone"
                                                 : "timestamp without time zone";
        default:
            return "text";
    }
}

std::optional<DataType> PostgresDatabase::writtenAs(const Field& field,
                                                    const std::string& type) const {
    const DataType::Kind kind = field.type.kind;
    if (type == typeOf(field)) {
        return field.type;
    }
    if (type == "text") {
        return DataType{};
    }
    if (type == "double precision" && kind == DataType::BIGINT && field.longest <= kExactDigits) {
        return DataType{DataType::DOUBLE};
    }
    if (type == "bigint" && kind == DataType::BOOLEAN) {
        return DataType{DataType::BIGINT};
    }
    return std::nullopt;
}

}  // namespace qvej
