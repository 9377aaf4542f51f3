// See postgres_sink.h.
#include "formats/postgres/postgres_sink.h"

#include "client/error.h"

namespace qvej {

namespace {

constexpr std::size_t kMostHeld = std::size_t{4} << 20;  // bytes of a table

}  // namespace

PostgresSink::PostgresSink(PostgresDatabase& database, const TargetTable& table,
                           const std::string& columnList)
    : database_(database),
      table_(table),
      copy_("COPY " + quotedName(table.name) + columnList + " FROM STDIN (FORMAT binary)") {}

void PostgresSink::row(const PassRow& row) {
    rows_.beginRow(table_.columns.size());
    for (std::size_t c = 0; c < table_.columns.size(); ++c) {
        const TargetColumn& column = table_.columns[c];
        if (!rows_.add(row.cell(c), column.type, column.shift)) {
            throw Error(QV_IO_REFUSED,
                        table_.name + "." + column.name +
                            " has a text with U+0000, which PostgreSQL does not take (--drop "
                            "leaves a path out)",
                        database_.shownAddress());
        }
    }
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
