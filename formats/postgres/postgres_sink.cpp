// See postgres_sink.h.
#include "formats/postgres/postgres_sink.h"

#include "client/error.h"

namespace qvej {

namespace {

constexpr std::size_t kMostHeld = std::size_t{4} << 20;  // bytes of a table

}  // namespace

void addRow(CopyRows& rows, const PassRow& row, const TargetTable& table,
            const PostgresDatabase& database) {
    rows.beginRow(table.columns.size());
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        const TargetColumn& column = table.columns[c];
        if (!rows.add(row.cell(c), column.type, column.shift)) {
            throw Error(QV_IO_REFUSED,
                        table.name + "." + column.name +
                            " has a text with U+0000, which PostgreSQL does not take (--drop "
                            "leaves a path out)",
                        database.shownAddress());
        }
    }
}

PostgresSink::PostgresSink(PostgresDatabase& database, const TargetTable& table,
                           const std::string& columnList)
    : database_(database),
      table_(table),
      copy_("COPY " + quotedName(table.name) + columnList + " FROM STDIN (FORMAT binary)") {}

void PostgresSink::row(const PassRow& row) {
    addRow(rows_, row, table_, database_);
    sendMany();
}

void PostgresSink::append(std::unique_ptr<Piece> piece) {
    rows_.append(static_cast<const CopyRowSink::Rows&>(*piece).rows);
    sendMany();
}

void PostgresSink::sendMany() {
    if (rows_.bytes().size() > kMostHeld) {
        send();
    }
}

void PostgresSink::flush() {
    send();
    rows_.release();
}

void PostgresSink::send() {
    if (!rows_.bytes().empty()) {
        database_.copy(copy_, rows_.bytes());
        rows_.clear();
    }
}

}  // namespace qvej
